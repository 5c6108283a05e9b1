#include "viewer/viewer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

#include "viewer/picture.h"
#include "viewer/say.h"

namespace viewer {

namespace {

constexpr float degrees_per_height = 240.0f;
constexpr float zoom_per_notch = 0.88f;

/// Frames that the statistics look at.
constexpr std::size_t most_frames_kept = 1024;

const char* text_or_none(const char* text) { return text ? text : "unknown"; }

}  // namespace

Viewer::Viewer(const Options& options, LogTap& log)
    : options_(options), log_(log), orbit_(ViewerScene::make_orbit()) {
  look_.wireframe = options.wireframe;
  look_.grid = options.grid;
}

// ---- files -------------------------------------------------------------------------------------

bool Viewer::load_first(std::string* reason) {
  return show(options_.files[0], {options_.texture}, reason);
}

// The file that is shown stays when the new one cannot be.
bool Viewer::show(const std::string& path, const ModelFile::Settings& settings,
                  std::string* reason) {
  std::unique_ptr<ModelFile> loaded = ModelFile::load(path, settings, log_, reason);
  if (!loaded) return false;
  if (!loaded->get_warning().empty()) print_problem(loaded->get_warning());
  if (file_) file_->release(renderer_);
  file_ = std::move(loaded);
  if (renderer_) scene_.set_model(file_.get());
  return true;
}

void Viewer::reload() {
  std::string reason;
  // One that was broken from the first may stay so.
  const ModelFile::Settings settings = {options_.texture, file_->is_whole()};
  if (show(file_->get_path(), settings, &reason)) {
    say("loaded again: " + file_->get_path());
    if (options_.stats) print_file_stats();
    return;
  }
  message_ = reason + " (still showing what was loaded before)";
  print_problem(message_);
}

void Viewer::show_next() {
  if (options_.files.size() < 2) {
    message_ = "there is one file only";
    say(message_);
    return;
  }
  // Goes on behind a file that could not be shown.
  turn_ = (turn_ + 1) % options_.files.size();
  std::string reason;
  if (!show(options_.files[turn_], {options_.texture}, &reason)) {
    message_ = reason + " (still showing " + file_->get_path() + ")";
    print_problem(message_);
    return;
  }
  index_ = turn_;
  orbit_ = ViewerScene::make_orbit();
  say("showing " + file_->get_path());
  if (options_.stats) print_file_stats();
}

// ---- life --------------------------------------------------------------------------------------

bool Viewer::start(orv::Renderer* renderer, float text_scale, std::string* reason) {
  renderer_ = renderer;
  if (!scene_.create(renderer, options_.core, reason)) return false;
  scene_.set_model(file_.get());
  overlay_.create(renderer, text_scale);
  return true;
}

void Viewer::stop(orv::Renderer* renderer) {
  if (renderer_) {
    overlay_.destroy(renderer);
    scene_.destroy(renderer);
  }
  renderer_ = nullptr;
  if (file_) file_->release(renderer);
  file_.reset();
}

// ---- what the user does ------------------------------------------------------------------------

bool Viewer::act(Action action) {
  if (action == Action::NONE) return true;
  message_.clear();
  switch (action) {
    case Action::WIREFRAME:
      look_.wireframe = !look_.wireframe;
      break;
    case Action::GRID:
      look_.grid = !look_.grid;
      break;
    case Action::AXES:
      look_.axes = !look_.axes;
      break;
    case Action::SCREENSHOT:
      picture_wanted_ = true;
      break;
    case Action::RELOAD:
      reload();
      break;
    case Action::NEXT_FILE:
      show_next();
      break;
    case Action::RESET_VIEW:
      orbit_ = ViewerScene::make_orbit();
      break;
    case Action::HELP:
      toggle_help();
      break;
    case Action::QUIT:
      return false;
    case Action::NONE:
      break;
  }
  return true;
}

void Viewer::toggle_help() {
  help_ = !help_;
  if (overlay_.is_usable()) return;
  for (const std::string& line : key_help()) say(line);
}

void Viewer::drag(float x, float y) {
  orbit_.turn(-x * degrees_per_height, y * degrees_per_height);
}

void Viewer::zoom(float notches) { orbit_.zoom(std::pow(zoom_per_notch, notches)); }

// ---- drawing -----------------------------------------------------------------------------------

void Viewer::draw(int width, int height) {
  const auto begin = std::chrono::steady_clock::now();
  scene_.draw(renderer_, orbit_, look_, width, height);
  if (options_.stats) {
    renderer_->finish_gl();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    if (frame_milliseconds_.size() < most_frames_kept) frame_milliseconds_.push_back(took.count());
  }
  if (picture_wanted_) take_picture(width, height);
  overlay_.draw(renderer_, get_text(), width, height);
}

void Viewer::take_picture(int width, int height) {
  picture_wanted_ = false;
  const std::string path = free_picture_name(file_->get_path());
  std::string reason;
  if (write_picture(renderer_, path, width, height, &reason)) {
    message_ = "saved " + path;
    say(message_);
  } else {
    message_ = reason;
    print_problem(reason);
  }
}

std::vector<std::string> Viewer::get_text() const {
  std::vector<std::string> lines;
  if (!message_.empty()) lines.push_back(message_);
  if (help_) {
    for (const std::string& line : key_help()) lines.push_back(line);
  }
  return lines;
}

std::string Viewer::get_title() const {
  std::string title = file_->get_path().substr(file_->get_path().rfind('/') + 1) + " - orv-viewer";
  if (options_.files.size() > 1) {
    title +=
        " (" + std::to_string(index_ + 1) + " of " + std::to_string(options_.files.size()) + ")";
  }
  return in_one_line(title);
}

void Viewer::print_file_stats() const {
  say("file       " + file_->get_path());
  std::printf("triangles  %u\n", file_->get_num_triangles());
  std::printf("vertices   %u\n", file_->get_num_vertices());
  std::printf("load       %.2f ms\n", file_->get_load_milliseconds());
  if (look_.grid) std::printf("grid       %g units a square\n", scene_.get_grid_step());
  std::fflush(stdout);
}

void Viewer::print_drawing_stats() const {
  std::vector<double> times = frame_milliseconds_;
  // The first frame brings the model to the GPU.
  if (times.size() > 1) times.erase(times.begin());
  if (!times.empty()) {
    const auto middle = times.begin() + static_cast<long>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    std::printf("frame      %.2f ms (median of %zu)\n", *middle, times.size());
  }
  std::printf("OpenGL     %s\n", text_or_none(renderer_->get_gl_version()));
  std::printf("renderer   %s\n", text_or_none(renderer_->get_gl_renderer()));
  std::printf("vendor     %s\n", text_or_none(renderer_->get_gl_vendor()));
  std::fflush(stdout);
}

}  // namespace viewer
