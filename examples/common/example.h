#pragma once

#include <orv/orv.h>

#include <memory>
#include <string>
#include <vector>

/// What the examples share: a window or a picture, a camera, two materials and the tidying up.
namespace examples {

/// Colours of the examples, as seen on the screen.
inline const orv::vec4 WHITE(0.92f, 0.92f, 0.90f, 1.0f);
inline const orv::vec4 GREY(0.45f, 0.47f, 0.52f, 1.0f);
inline const orv::vec4 RED(0.84f, 0.29f, 0.26f, 1.0f);
inline const orv::vec4 ORANGE(0.94f, 0.56f, 0.22f, 1.0f);
inline const orv::vec4 YELLOW(0.96f, 0.79f, 0.33f, 1.0f);
inline const orv::vec4 GREEN(0.44f, 0.70f, 0.36f, 1.0f);
inline const orv::vec4 TEAL(0.17f, 0.62f, 0.62f, 1.0f);
inline const orv::vec4 BLUE(0.27f, 0.49f, 0.84f, 1.0f);
inline const orv::vec4 VIOLET(0.55f, 0.41f, 0.76f, 1.0f);

/// An example: it makes things once and draws them in each frame.
class Example {
 public:
  Example() = default;
  virtual ~Example() = default;
  Example(const Example&) = delete;
  Example& operator=(const Example&) = delete;

  /// Makes what is to be drawn. False ends the program; fail and missing say why.
  virtual bool create() = 0;
  /// Draws a frame. The picture is cleared and the camera is bound already.
  /// @param time  seconds since the start; `still_time` when a single picture is taken
  virtual void draw(float time) = 0;
  /// Frees what neither keep nor a manager of the library knows of.
  virtual void destroy() {}

 protected:
  /// The node is released at the end.
  template <class T>
  T* keep(T* node) {
    nodes_.push_back(node);
    return node;
  }
  /// Where the camera stands, what it looks at, and its vertical field of view in degrees. In a
  /// window the mouse turns it.
  void look(const orv::vec4& eye, const orv::vec4& target, float fov = 35.0f);

  /// Shades the vertices' colours by a light over the viewer's shoulder.
  orv::Material* lit_material();
  /// Shades a texture in the same light. A material of its own for each name.
  orv::Material* textured_material(const char* name, orv::Texture* texture);
  /// The vertices' colours as they are.
  orv::Material* flat_material();
  /// A program from two shaders that are written for any version of OpenGL by means of the words
  /// ATTRIBUTE, VARYING, SAMPLE, SAMPLE_CUBE and PIXEL. Null, with the compiler's words printed,
  /// when it does not compile.
  orv::GpuProgram* make_program(const char* name, const char* vertex, const char* pixel);
  /// A material of a program, which may be null.
  orv::Material* make_material(const char* name, orv::GpuProgram* program);

  /// Path of a file in examples/data.
  static std::string data(const char* file);
  /// Path of a file that the demo reads, too.
  static std::string demo_data(const char* file);
  /// False; the program ends with this message.
  bool fail(const std::string& message);
  /// False; the program ends, saying that this OpenGL has no such feature.
  bool missing(const std::string& feature);

  orv::Renderer* renderer = nullptr;
  orv::Camera camera;
  int width = 0;   ///< of the picture, in pixels
  int height = 0;  ///< of the picture, in pixels
  float still_time = 2.0f;
  orv::vec4 background_top{0.16f, 0.20f, 0.27f, 1.0f};
  orv::vec4 background_bottom{0.36f, 0.40f, 0.46f, 1.0f};

 private:
  friend class Host;
  std::vector<orv::Node*> nodes_;
  orv::vec4 eye_{0.0f, 0.0f, 10.0f, 1.0f};
  orv::vec4 target_;
  float fov_ = 35.0f;
  std::string problem_;
  bool missing_ = false;
};

using MakeExample = std::unique_ptr<Example> (*)();
int run_example(int argc, char** argv, const char* title, MakeExample make);

/// The whole of main: takes the options (--help lists them), starts the library, makes a context,
/// has the example draw into a window or, with --output, once into a picture.
template <class T>
int run(int argc, char** argv, const char* title) {
  return run_example(argc, argv, title, [] { return std::unique_ptr<Example>(new T); });
}

}  // namespace examples
