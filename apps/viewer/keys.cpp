#include "viewer/keys.h"

#include <cstdio>

#include "common/desktop_window.h"

namespace viewer {

namespace {

std::string help_line(const char* name, const char* does) {
  char line[80];
  std::snprintf(line, sizeof(line), "%-12s %s", name, does);
  return line;
}

}  // namespace

const std::vector<KeyRow>& key_table() {
  static const std::vector<KeyRow> rows = {
      {Action::WIREFRAME, 'w', 0, "W", "wireframe on and off"},
      {Action::GRID, 'g', 0, "G", "grid on and off"},
      {Action::AXES, 'a', 0, "A", "axes on and off: x red, y green, z blue"},
      {Action::SCREENSHOT, 's', 0, "S", "picture of the window to a PNG file in this folder"},
      {Action::RELOAD, 'r', 0, "R", "load the file again; when broken, the last good one stays"},
      {Action::NEXT_FILE, 'n', ' ', "N, Space", "next file"},
      {Action::RESET_VIEW, 'f', 0, "F", "frame the model as at first"},
      {Action::HELP, 'h', 0, "H", "these keys"},
      {Action::QUIT, 'q', orv_app::DesktopEvent::KEY_ESCAPE, "Q, Escape", "quit"},
  };
  return rows;
}

Action action_of_key(int key) {
  if (key == 0) return Action::NONE;
  for (const KeyRow& row : key_table()) {
    if (row.key == key || row.other_key == key) return row.action;
  }
  return Action::NONE;
}

std::vector<std::string> key_help() {
  std::vector<std::string> lines = {help_line("drag", "orbit"), help_line("wheel", "zoom")};
  for (const KeyRow& row : key_table()) lines.push_back(help_line(row.name, row.does));
  return lines;
}

}  // namespace viewer
