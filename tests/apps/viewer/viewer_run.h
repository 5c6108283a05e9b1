#pragma once

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "support/temp_folder.h"

namespace orv::test {

/// What a run of the viewer left.
struct ViewerRun {
  int code = -1;
  std::string out;
  std::string err;

  long count_error_lines() const { return std::count(err.begin(), err.end(), '\n'); }
};

/// Runs the viewer in this folder, without a display. Arguments are words of the shell.
inline ViewerRun run_viewer(const TempFolder& folder, const std::string& arguments) {
  const std::string command = "cd '" + folder.path() + "' && env -u DISPLAY '" VIEWER_PROGRAM "' " +
                              arguments + " >out.txt 2>err.txt";
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("out.txt"),
          folder.read("err.txt")};
}

/// A file of the tests, quoted for the shell.
inline std::string viewer_data(const std::string& name) {
  return "'" ORV_TEST_DATA_DIR "/" + name + "'";
}

}  // namespace orv::test
