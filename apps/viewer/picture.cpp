#include "viewer/picture.h"

#include <orv/gpu/texture_mgr.h>
#include <orv/render/renderer.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <vector>

#include "common/png_writer.h"
#include "viewer/options.h"

namespace viewer {

namespace {

bool write_png(orv::Renderer* renderer, const std::string& path, int width, int height) {
  std::vector<unsigned char> pixels(static_cast<std::size_t>(width) *
                                    static_cast<std::size_t>(height) * 4);
  return renderer->read_back_buffer_rect_rgba(pixels.data(), 0, 0, width, height) &&
         orv_app::write_png(path.c_str(), pixels.data(), width, height);
}

}  // namespace

bool write_picture(orv::Renderer* renderer, const std::string& path, int width, int height,
                   std::string* reason) {
  // Opened here first, since not each writer tells why it failed.
  errno = 0;
  if (!std::ofstream(path, std::ios::binary | std::ios::app)) {
    *reason = path + ": " + std::strerror(errno);
    return false;
  }
  errno = 0;
  const bool written = has_extension(path, ".png")
                           ? write_png(renderer, path, width, height)
                           : orv::TextureMgr::get()->do_screenshot_v2(renderer, path.c_str(), 0, 0,
                                                                      width, height, true);
  if (!written) {
    *reason = path + ": cannot write the picture";
    if (errno != 0) *reason += std::string(": ") + std::strerror(errno);
  }
  return written;
}

std::string free_picture_name(const std::string& model_path) {
  std::string name = model_path.substr(model_path.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  if (dot != std::string::npos && dot > 0) name.erase(dot);
  for (int number = 1;; ++number) {
    const std::string path = name + "-" + std::to_string(number) + ".png";
    if (access(path.c_str(), F_OK) != 0) return path;
  }
}

}  // namespace viewer
