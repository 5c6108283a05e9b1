#include "viewer/options.h"

#include <orv/version.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cstdio>

#include "viewer/keys.h"

namespace viewer {

namespace {

constexpr int max_side = 16384;

// An empty text when the size is good, as validators of the parser answer.
std::string parse_size(const std::string& text, int* width, int* height) {
  char end = 0;
  if (std::sscanf(text.c_str(), "%5dx%5d%c", width, height, &end) == 2 && *width >= 1 &&
      *height >= 1 && *width <= max_side && *height <= max_side) {
    return {};
  }
  return "'" + text + "' is no size from 1x1 to 16384x16384, such as 1280x720";
}

std::string check_picture_name(const std::string& name) {
  for (const char* known : {".png", ".jpg", ".jpeg"}) {
    if (has_extension(name, known)) return {};
  }
  return "'" + name + "' ends neither in .png nor in .jpg";
}

std::string footer() {
  std::string text = "In the window:\n";
  for (const std::string& line : key_help()) text += "  " + line + "\n";
  text +=
      "\nReads OBJ, 3DS and binary STL. A broken file is shown as far as it can be read, with a ";
  text += "line that says so; one that became broken is not loaded again. ";
  return text + "Exit code: 0 done, 1 cannot read or show the file, 2 wrong usage.";
}

struct Inputs {
  Options options;
  std::string size = "1280x720";
  std::string profile = "compat";
  bool window = false;
};

void describe(CLI::App& app, Inputs& in) {
  Options& o = in.options;
  app.set_version_flag("--version",
                       "orv-viewer " + std::to_string(ORV_VERSION_MAJOR) + "." +
                           std::to_string(ORV_VERSION_MINOR) + "." +
                           std::to_string(ORV_VERSION_PATCH),
                       "Print the version and end");
  app.add_option("FILE", o.files, "Models; the first is shown, the others follow by key")
      ->required();
  app.add_option("--texture", o.texture, "Picture for a model without textures of its own")
      ->type_name("FILE");
  app.add_option("--output", o.output, "Write a picture, and open no window unless --window")
      ->type_name("FILE.png|.jpg")
      ->check(check_picture_name);
  app.add_option("--size", in.size, "Size of window or picture")
      ->capture_default_str()
      ->type_name("WxH")
      ->check([&o](const std::string& text) { return parse_size(text, &o.width, &o.height); });
  app.add_option("--frames", o.frames, "Frames to draw, then end (1 without a window)")
      ->type_name("N")
      ->check(CLI::Range(1, 1000000));
  app.add_option("--profile", in.profile, "OpenGL profile")
      ->capture_default_str()
      ->type_name("compat|core")
      ->check(CLI::IsMember({"compat", "core"}));
  app.add_option("--msaa", o.msaa, "Samples per pixel: 0, 2, 4 or 8")
      ->capture_default_str()
      ->type_name("N")
      ->check(CLI::IsMember({0, 2, 4, 8}));
  app.add_flag("--wireframe", o.wireframe, "Draw edges only");
  app.add_flag("--grid", o.grid, "Draw a grid under the model");
  app.add_flag("--stats", o.stats, "Print counts, times and the OpenGL driver");
  app.add_flag("--verbose", o.verbose, "Print the library's log, debug lines included, to stderr");
  auto* headless = app.add_flag("--headless", o.headless, "Open no window");
  app.add_flag("--window", in.window, "Open a window also with --output")->excludes(headless);
}

ParsedOptions refuse(std::string why) {
  std::replace(why.begin(), why.end(), '\n', ' ');
  ParsedOptions parsed;
  parsed.exit_code = EXIT_WRONG_USAGE;
  parsed.text = why + " (see --help)";
  return parsed;
}

}  // namespace

bool has_extension(const std::string& path, const std::string& extension) {
  if (path.size() < extension.size()) return false;
  return std::equal(
      extension.begin(), extension.end(), path.end() - static_cast<long>(extension.size()),
      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

ParsedOptions parse_options(int argc, const char* const* argv) {
  CLI::App app("Shows 3D models.", "orv-viewer");
  app.get_formatter()->column_width(32);
  app.footer(footer());
  Inputs in;
  describe(app, in);
  ParsedOptions parsed;
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    parsed.text = app.help();
    return parsed;
  } catch (const CLI::CallForVersion& version) {
    parsed.text = std::string(version.what()) + "\n";
    return parsed;
  } catch (const CLI::ParseError& error) {
    return refuse(error.what());
  }
  parsed.options = in.options;
  parsed.options.core = in.profile == "core";
  if (!in.options.output.empty() && !in.window) parsed.options.headless = true;
  parsed.run = true;
  return parsed;
}

}  // namespace viewer
