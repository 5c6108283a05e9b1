#pragma once

#include <orv/render/render_window_data.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "render/window/context.h"
#include "support/fake_gl.h"

namespace orv::test {

/// A window system without windows, with faults to choose. Writes down what it is asked.
class FakeBackEnd : public detail::ContextBackEnd {
 public:
  explicit FakeBackEnd(FakeGl& gl) : gl_(gl) {}
  ~FakeBackEnd() override = default;

  // ---- faults and answers ----

  bool opens = true;
  bool multisample = true;
  int most_samples = 4;  ///< formats with more there are none
  bool has_format = true;
  bool sets_format = true;
  bool attributes = true;
  bool refuses_legacy = false;
  bool refuses_attributes = false;
  bool binds = true;
  bool intervals = true;
  std::string extensions = "FAKE_one FAKE_two";
  int followed_width = 0;  ///< 0: the host tells the size
  int followed_height = 0;
  void* bound_elsewhere = nullptr;  ///< a context that cannot be bound here

  std::vector<std::string> calls;
  detail::ContextRequest last_request;
  void* last_shared = nullptr;
  std::set<void*> contexts;
  void* current = nullptr;
  int interval = 1;
  int num_open = 0;

  // ---- the window system ----

  bool takes(const RenderWindowData&) const override { return true; }
  std::unique_ptr<detail::WindowSurface> open(const RenderWindowData&) override {
    if (!opens) return nullptr;
    ++num_open;
    return std::make_unique<detail::WindowSurface>(this);
  }
  void close(detail::WindowSurface&) override { --num_open; }
  bool has_multisample(detail::WindowSurface&) override { return multisample; }
  bool choose_format(detail::WindowSurface&, const detail::PixelRequest& request) override {
    calls.push_back("choose " + std::to_string(request.samples) +
                    (request.existing ? " existing" : ""));
    return has_format && request.samples <= most_samples;
  }
  bool set_format(detail::WindowSurface&) override {
    calls.push_back("set format");
    return sets_format;
  }
  bool has_attributes(detail::WindowSurface&) override { return attributes; }
  void* create_context(detail::WindowSurface&, const detail::ContextRequest& request,
                       void* shared) override {
    const bool legacy = request.major == 0;
    calls.push_back(legacy ? "create legacy"
                           : "create " + std::to_string(request.major) + "." +
                                 std::to_string(request.minor));
    last_request = request;
    last_shared = shared;
    if (legacy ? refuses_legacy : refuses_attributes) return nullptr;
    void* context = reinterpret_cast<void*>(++last_context_);
    contexts.insert(context);
    return context;
  }
  void destroy_context(detail::WindowSurface&, void* context) override {
    calls.push_back("destroy");
    contexts.erase(context);
    if (current == context) current = nullptr;
  }
  bool make_current(detail::WindowSurface&, void* context) override {
    calls.push_back(context ? "bind" : "unbind");
    if (context && (!binds || context == bound_elsewhere)) return false;
    current = context;
    return true;
  }
  bool swap(detail::WindowSurface&) override {
    calls.push_back("swap");
    return true;
  }
  bool set_interval(detail::WindowSurface&, int value) override {
    if (intervals) interval = value;
    return intervals;
  }
  bool get_interval(detail::WindowSurface&, int* value) override {
    if (intervals) *value = interval;
    return intervals;
  }
  bool get_size(detail::WindowSurface&, int* width, int* height) override {
    if (followed_width == 0) return false;
    *width = followed_width;
    *height = followed_height;
    return true;
  }
  const char* extension_names(const detail::WindowSurface&) override { return extensions.c_str(); }
  GlProc proc_address(const char* name) override { return gl_.proc_address(name); }
  void* current_context() override { return current; }
  std::unique_ptr<detail::WindowSurface> open_current() override {
    if (!current) return nullptr;
    auto surface = std::make_unique<detail::WindowSurface>(this);
    surface->host_made = true;
    return surface;
  }

 private:
  FakeGl& gl_;
  std::uintptr_t last_context_ = 0x1000;
};

}  // namespace orv::test
