#pragma once

#include <string>
#include <vector>

namespace viewer {

/// What a key does in the window.
enum class Action {
  NONE,
  WIREFRAME,
  GRID,
  AXES,
  SCREENSHOT,
  RELOAD,
  NEXT_FILE,
  RESET_VIEW,
  HELP,
  QUIT,
};

/// A row of the table of keys.
struct KeyRow {
  Action action;
  int key;           ///< as DesktopEvent has it
  int other_key;     ///< does the same; 0 for none
  const char* name;  ///< as printed
  const char* does;
};

const std::vector<KeyRow>& key_table();

/// Action::NONE for a key that is not in the table.
Action action_of_key(int key);

/// The table as lines of text, the mouse first.
std::vector<std::string> key_help();

}  // namespace viewer
