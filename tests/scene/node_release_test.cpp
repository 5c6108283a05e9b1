// Counts of references, release, kill and the end of nodes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "scene/node_fixture.h"

namespace orv {
namespace {

using test::Events;
using test::NodeTree;
using test::Recorder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Node, CountsAreNotClamped) {
  Node node;
  node.remove_ref();
  node.remove_ref();
  EXPECT_EQ(node.get_ref(), -2);
  node.add_ref();
  EXPECT_EQ(node.get_ref(), -1);
}

TEST_F(NodeTree, ReleaseOfAFreshNodeDestroysIt) {
  EXPECT_EQ(root->get_ref(), 0);
  EXPECT_EQ(root->release(renderer, nullptr), 0);
  EXPECT_THAT(events, ElementsAre("cleanup c", "~ c", "cleanup a", "~ a", "cleanup b", "~ b",
                                  "cleanup root", "~ root"));
}

TEST_F(NodeTree, ReleaseOfANodeThatLivesOnStillEmptiesItsList) {
  c->add_ref();
  a->add_ref();
  EXPECT_EQ(a->get_ref(), 2);
  EXPECT_EQ(a->release(renderer, nullptr), 1);
  EXPECT_EQ(a->get_num_children(), 0u);
  EXPECT_EQ(c->get_ref(), 1);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(NodeTree, ReleaseWithTwoRefsAndOneChildReturnsOneWithoutChildren) {
  a->add_ref();
  EXPECT_EQ(a->release(renderer, nullptr), 1);
  EXPECT_EQ(a->get_num_children(), 0u);
  EXPECT_TRUE(gone(c));
  EXPECT_FALSE(gone(a));
}

TEST_F(NodeTree, ReleaseWorkerLeavesTheChildren) {
  c->add_ref();
  EXPECT_EQ(a->get_ref(), 1);
  a->add_ref();
  EXPECT_EQ(a->_release(renderer), 1);
  EXPECT_EQ(a->get_num_children(), 1u);
  EXPECT_EQ(a->_release(renderer), 0);
  EXPECT_TRUE(gone(a));
  EXPECT_EQ(c->get_parent(), nullptr) << "its parent is gone";
  EXPECT_EQ(c->get_ref(), 2) << "counts stay";
}

TEST_F(NodeTree, ReleaseTakesTheChildrenOfTheNamedNode) {
  b->add_ref();
  EXPECT_EQ(b->release(renderer, a), 1);
  EXPECT_EQ(a->get_num_children(), 0u);
  EXPECT_TRUE(gone(c));
  EXPECT_FALSE(gone(a));
}

TEST_F(NodeTree, KillIsTrueWhetherOrNotTheNodeGoes) {
  b->add_ref();
  EXPECT_TRUE(b->kill(renderer, nullptr));
  EXPECT_FALSE(gone(b));
  EXPECT_TRUE(b->kill(renderer, nullptr));
  EXPECT_TRUE(gone(b));
}

TEST_F(NodeTree, KillWorkerCleansUpAndDestroysWhateverTheCount) {
  b->add_ref();
  EXPECT_TRUE(b->_kill(renderer));
  EXPECT_THAT(events, ElementsAre("cleanup b", "~ b"));
}

TEST_F(NodeTree, SecondHolderKeepsANode) {
  c->add_ref();
  root->kill(renderer, nullptr);
  EXPECT_TRUE(gone(root) && gone(a) && gone(b));
  EXPECT_FALSE(gone(c));
  EXPECT_EQ(c->get_ref(), 1);
  EXPECT_EQ(c->get_parent(), nullptr);
}

TEST_F(NodeTree, ChildKilledByItselfLeavesItsParentsList) {
  EXPECT_EQ(b->release(renderer, nullptr), 0);
  EXPECT_EQ(root->get_num_children(), 1u);
  EXPECT_EQ(root->get_child(0), a);
  root->kill(renderer, nullptr);
  EXPECT_EQ(std::count(events.begin(), events.end(), "~ b"), 1);
}

TEST_F(NodeTree, ChildOfSeveralParentsLeavesAllListsAtItsEnd) {
  b->add_child(c);
  root->add_child(c);
  c->_kill(renderer);
  EXPECT_EQ(a->get_num_children(), 0u);
  EXPECT_EQ(b->get_num_children(), 0u);
  EXPECT_EQ(root->get_num_children(), 2u);
  root->kill(renderer, nullptr);
}

TEST_F(NodeTree, ChildListedTwiceCountsTwice) {
  a->add_child(c);
  EXPECT_EQ(c->get_ref(), 2);
  EXPECT_EQ(a->remove_child(c), 1);
  EXPECT_EQ(a->get_num_children(), 1u);
  EXPECT_EQ(c->get_parent(), nullptr);
  a->add_child(c);
  a->add_ref();
  a->release(renderer, nullptr);
  EXPECT_TRUE(gone(c));
  EXPECT_EQ(std::count(events.begin(), events.end(), "~ c"), 1);
}

TEST_F(NodeTree, DestructorFreesNodesThatNameItAsParent) {
  root->clear_children_list();
  delete root;
  EXPECT_EQ(a->get_parent(), nullptr);
  EXPECT_EQ(b->get_parent(), nullptr);
  EXPECT_EQ(a->get_ref(), 1) << "the destructor counts nothing";
}

TEST_F(NodeTree, DestroyedParentTouchesNoChild) {
  delete a;
  EXPECT_FALSE(gone(c));
  EXPECT_EQ(c->get_ref(), 1);
  EXPECT_EQ(root->get_num_children(), 1u);
}

TEST_F(NodeTree, NodeReleasedThroughItsParentsListGoesOnce) {
  EXPECT_EQ(a->release(renderer, root), 0);
  EXPECT_TRUE(gone(a) && gone(b) && gone(c));
  EXPECT_FALSE(gone(root));
  EXPECT_EQ(std::count(events.begin(), events.end(), "~ a"), 1);
  EXPECT_EQ(root->get_num_children(), 0u);
}

TEST_F(NodeTree, ChildThatKillsItsSiblingDuringTheReleaseIsSafe) {
  class Murderer : public Node {
   public:
    explicit Murderer(Node* prey) : prey_(prey) {}
    bool _cleanup(Renderer* r) override { return prey_->_kill(r); }

   private:
    Node* prey_;
  };
  Node* parent = new Node;
  parent->add_child(new Murderer(b));
  parent->add_child(b);
  parent->add_child(new Node);
  parent->kill(renderer, nullptr);
  EXPECT_EQ(std::count(events.begin(), events.end(), "~ b"), 1);
  EXPECT_EQ(root->get_num_children(), 1u);
}

TEST_F(NodeTree, ChildThatKillsItsParentDuringTheReleaseIsSafe) {
  class Rebel : public Node {
   public:
    bool _cleanup(Renderer* r) override { return get_parent()->_kill(r); }
  };
  a->add_child(new Rebel);
  root->release(renderer, nullptr);
  for (const Recorder* node : {root, a, b, c}) EXPECT_TRUE(gone(node));
  EXPECT_EQ(std::count(events.begin(), events.end(), "~ a"), 1);
}

TEST(Node, ManyChildrenAreReleasedInStraightTime) {
  Node* parent = new Node;
  Node* kept = new Node;
  for (int i = 0; i < 200000; ++i) parent->add_child(new Node);
  parent->add_child(kept);
  kept->add_ref();
  parent->kill(nullptr, nullptr);
  EXPECT_EQ(kept->get_parent(), nullptr);
  kept->kill(nullptr, nullptr);
}

TEST(Node, DeepTreesAreReleasedFoundAndRemovedWithoutTheStack) {
  constexpr int DEPTH = 200000;
  Node* top = new Node;
  Node* bottom = top;
  for (int i = 0; i < DEPTH; ++i) {
    Node* child = new Node;
    bottom->add_child(child);
    bottom = child;
  }
  bottom->set_name("bottom");
  EXPECT_EQ(top->find_child("bottom", top), bottom);
  EXPECT_EQ(top->find_child(bottom->get_id(), top), bottom);
  EXPECT_EQ(top->find_child("nowhere", top), nullptr);
  EXPECT_EQ(top->remove_child(bottom), 0);
  EXPECT_EQ(bottom->get_parent(), nullptr);
  EXPECT_EQ(top->remove_child(bottom), -1);
  top->add_child(bottom);
  bottom->add_ref();
  top->kill(nullptr, nullptr);
  EXPECT_EQ(bottom->get_ref(), 1);
  bottom->kill(nullptr, nullptr);
}

TEST_F(NodeTree, ReleaseEndsEachChildAfterWhatStandsBelowIt) {
  root->release(renderer, nullptr);
  EXPECT_THAT(events, ElementsAre("cleanup c", "~ c", "cleanup a", "~ a", "cleanup b", "~ b",
                                  "cleanup root", "~ root"));
}

}  // namespace
}  // namespace orv
