#include "viewer/keys.h"

#include <gtest/gtest.h>

#include <set>

namespace viewer {
namespace {

TEST(Keys, EachActionHasOneRowAndEachKeyOneAction) {
  std::set<Action> actions;
  std::set<int> keys;
  for (const KeyRow& row : key_table()) {
    EXPECT_TRUE(actions.insert(row.action).second) << row.name;
    EXPECT_TRUE(keys.insert(row.key).second) << row.name;
    if (row.other_key) {
      EXPECT_TRUE(keys.insert(row.other_key).second) << row.name;
    }
    EXPECT_EQ(action_of_key(row.key), row.action);
  }
  EXPECT_EQ(actions.size(), 9u);
  EXPECT_EQ(actions.count(Action::NONE), 0u);
}

TEST(Keys, KnownKeysDoWhatTheySay) {
  EXPECT_EQ(action_of_key('w'), Action::WIREFRAME);
  EXPECT_EQ(action_of_key('g'), Action::GRID);
  EXPECT_EQ(action_of_key('a'), Action::AXES);
  EXPECT_EQ(action_of_key('s'), Action::SCREENSHOT);
  EXPECT_EQ(action_of_key('r'), Action::RELOAD);
  EXPECT_EQ(action_of_key('n'), Action::NEXT_FILE);
  EXPECT_EQ(action_of_key(' '), Action::NEXT_FILE);
  EXPECT_EQ(action_of_key('h'), Action::HELP);
  EXPECT_EQ(action_of_key('q'), Action::QUIT);
  EXPECT_EQ(action_of_key(27), Action::QUIT);
}

TEST(Keys, OtherKeysDoNothing) {
  EXPECT_EQ(action_of_key(0), Action::NONE);
  EXPECT_EQ(action_of_key('x'), Action::NONE);
  EXPECT_EQ(action_of_key(-5), Action::NONE);
  EXPECT_EQ(action_of_key(1 << 30), Action::NONE);
}

TEST(Keys, HelpHasALineForTheMouseTheWheelAndEachRow) {
  const std::vector<std::string> lines = key_help();
  ASSERT_EQ(lines.size(), key_table().size() + 2);
  for (std::size_t i = 0; i < key_table().size(); ++i) {
    EXPECT_NE(lines[i + 2].find(key_table()[i].does), std::string::npos);
    EXPECT_EQ(lines[i + 2].rfind(key_table()[i].name, 0), 0u);
  }
}

}  // namespace
}  // namespace viewer
