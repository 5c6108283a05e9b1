#pragma once

#include <orv/fwd.h>

#include <memory>
#include <string>
#include <vector>

#include "viewer/keys.h"
#include "viewer/log_tap.h"
#include "viewer/model_file.h"
#include "viewer/options.h"
#include "viewer/overlay.h"
#include "viewer/viewer_scene.h"

namespace viewer {

/// The files, the one that is shown, and what the user does with it. Knows no window.
class Viewer {
 public:
  Viewer(const Options& options, LogTap& log);

  /// Loads the first file, which needs no context. False with a reason that names the file.
  bool load_first(std::string* reason);
  /// Makes what drawing needs, in the current context. False with a reason.
  bool start(orv::Renderer* renderer, float text_scale, std::string* reason);
  /// Frees everything; load_first may have succeeded or not.
  void stop(orv::Renderer* renderer);

  /// Does what a key asks for. False when the program is to end.
  bool act(Action action);
  /// Turns the view by a movement of the mouse, as shares of the window's height.
  void drag(float x, float y);
  /// Zooms by notches of the wheel.
  void zoom(float notches);

  /// Draws a frame of this size, and takes the picture that a key asked for.
  void draw(int width, int height);
  /// Name of what is shown, for the title of a window.
  std::string get_title() const;
  /// Prints what --stats asks for of the file that is shown.
  void print_file_stats() const;
  /// Prints what --stats asks for of the drawing.
  void print_drawing_stats() const;

 private:
  bool show(const std::string& path, const ModelFile::Settings& settings, std::string* reason);
  void reload();
  void show_next();
  void toggle_help();
  void take_picture(int width, int height);
  std::vector<std::string> get_text() const;

  Options options_;
  LogTap& log_;
  orv::Renderer* renderer_ = nullptr;
  std::unique_ptr<ModelFile> file_;
  std::size_t index_ = 0;  ///< of the file that is shown
  std::size_t turn_ = 0;   ///< of the file that was asked for last
  ViewerScene scene_;
  Overlay overlay_;
  orv_app::Orbit orbit_;
  Look look_;
  bool help_ = false;
  bool picture_wanted_ = false;
  std::string message_;  ///< on the screen until the next key
  std::vector<double> frame_milliseconds_;
};

}  // namespace viewer
