/// @file
/// A drawable surface of the host as the renderer sees it.
#pragma once

#include <orv/core/api.h>
#include <orv/render/render_window_data.h>

namespace orv {

/// What a window remembers of contexts; owned by the window.
struct RenderWindowContextRecord {
  void* context = nullptr;        ///< the window's own context
  void* spare = nullptr;          ///< not used
  void* saved_context = nullptr;  ///< see Renderer::render_window_save_current_context
};

/// The record of a window: made and deleted by Renderer::render_window_alloc and
/// render_window_free, given a context by render_window_create_context. The native window belongs
/// to the host. The public fields are filled in by the renderer.
///
/// A context belongs to the thread that made it current.
class ORV_API RenderWindow {
 public:
  /// Without a context; hosts call Renderer::render_window_alloc.
  RenderWindow();
  virtual ~RenderWindow();
  RenderWindow(const RenderWindow&) = delete;
  RenderWindow& operator=(const RenderWindow&) = delete;

  /// Process-wide number.
  int getid() const { return id; }

  /// @{
  /// Size in pixels as last told by the host, or as the surface has it where the renderer follows
  /// it: off screen, and where it had to put a window of its own into the host's.
  int get_width() const { return data.width; }
  int get_height() const { return data.height; }
  /// @}

  /// Tells the window its new size after the native window changed. Negative values count as 0.
  void update_size(int width, int height);
  /// The context record, a RenderWindowContextRecord with windows made by a renderer.
  void* getrdata() const { return rdata; }
  /// Replaces the context record; the old one is not freed.
  void setrdata(void* record) { rdata = record; }
  /// Whether the driver tells of free memory by GL_ATI_meminfo; known once there is a context.
  bool check_GL_ATI_meminfo() const { return ati_meminfo; }

  /// Id of the X11 visual to make a host window with, so that the renderer can draw straight into
  /// it with the wanted bits and samples. Without `app_instance` the default display is asked. 0
  /// when there is none.
  static unsigned long find_x11_visual_id(const RenderWindowData& data);

  RenderWindowData data;              ///< as asked for; the major version is the driver's
  char name[128] = {};                ///< for the host's own use
  void* rdata = nullptr;              ///< see getrdata
  bool core_profile_granted = false;  ///< a core profile was asked for, and the driver gave it
  bool ati_meminfo = false;           ///< see check_GL_ATI_meminfo
  bool context_created = false;       ///< there is a context, of the renderer or of the host
  void* device = nullptr;             ///< the window system's side of the window
  void* native_handle = nullptr;      ///< as handed in
  void* saved_device = nullptr;       ///< belongs to saved_context
  int id;                             ///< see getid
};

}  // namespace orv
