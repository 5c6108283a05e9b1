#pragma once

#include <string>
#include <vector>

namespace viewer {

/// What the command line asks for.
struct Options {
  std::vector<std::string> files;
  std::string texture;  ///< for models without textures of their own; "" for none
  std::string output;   ///< picture to write; "" for none
  int width = 1280;
  int height = 720;
  int frames = 0;  ///< 0 when not given: one frame off screen, no end in a window
  bool core = false;
  int msaa = 4;
  bool wireframe = false;
  bool grid = false;
  bool stats = false;
  bool verbose = false;
  bool headless = false;
};

/// Exit codes of the program.
enum ExitCode { EXIT_DONE = 0, EXIT_CANNOT_SHOW = 1, EXIT_WRONG_USAGE = 2 };

/// The options, or why the program ends without them.
struct ParsedOptions {
  Options options;
  bool run = false;           ///< false: print the text and end
  int exit_code = EXIT_DONE;  ///< when not to run
  std::string text;           ///< help or version for the standard output, or one line of complaint
};

ParsedOptions parse_options(int argc, const char* const* argv);

/// Whether the file's name ends in this extension, such as ".png", in any case.
bool has_extension(const std::string& path, const std::string& extension);

}  // namespace viewer
