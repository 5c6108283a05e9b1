// A lit torus knot of 32,000 triangles, drawn by software: what the library adds to real frames.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include "ours.h"

namespace {

constexpr int SIDE = 512;

constexpr const char* VERTEX_TEXT = R"(#version 150
in vec4 orvex_Position;
in vec4 orvex_Normal;
uniform mat4 orvex_ModelMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
out vec3 place;
out vec3 normal;
void main() {
  place = (orvex_ModelMatrix * vec4(orvex_Position.xyz, 1.0)).xyz;
  normal = mat3(orvex_ModelMatrix) * orvex_Normal.xyz;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
}
)";
constexpr const char* PIXEL_TEXT = R"(#version 150
in vec3 place;
in vec3 normal;
uniform vec4 surface_color;
uniform vec4 light_position;
out vec4 pixel;
void main() {
  vec3 to_light = normalize(light_position.xyz - place);
  vec3 n = normalize(normal);
  float diffuse = max(dot(n, to_light), 0.0);
  float shine = pow(max(reflect(-to_light, n).z, 0.0), 24.0);
  pixel = vec4(surface_color.rgb * (0.15 + 0.85 * diffuse) + vec3(0.4 * shine), 1.0);
}
)";

struct Knot {
  orv::mat4 transform;
  orv::mat4 view;
  orv::mat4 projection;
  bench::RawMesh mesh;
};

class OurKnot {
 public:
  explicit OurKnot(Knot* knot)
      : renderer_(bench::started_opengl()), context_(renderer_, SIDE, SIDE) {
    program_ = bench::load_program(renderer_, VERTEX_TEXT, PIXEL_TEXT);
    mesh_->set_build_params(800, 20, 1.0f, 0.2f, 0.0f, 0.0f, 0.0f, 1.0f, 8.0f, 2.0f, 3.0f);
    mesh_->build(nullptr);
    mesh_->set_orientation_euler_xyz(20.0f, 25.0f, 0.0f);
    orv::Material* material = orv::MaterialMgr::get()->create_material("knot");
    material->set_gpu_program(program_);
    mesh_->add_material(material, nullptr);
    camera_.build_projection_persp(45.0f, 1.0f, 0.1f, 100.0f, true);
    camera_.set_viewport(0, 0, SIDE, SIDE);
    camera_.set_position(0.0f, 0.0f, 6.0f);
    camera_.set_lookat(0.0f, 0.0f, 0.0f);
    camera_.bind(renderer_, true, true, true, true, true);
    *knot = {mesh_->get_absolute_transform(), renderer_->get_modelview_matrix(),
             renderer_->get_projection_matrix(), bench::raw_copy(*mesh_)};
    renderer_->enable_depth_test(true);
  }

  void make_current() { context_.make_current(); }

  void draw() {
    camera_.bind(renderer_, true, true, true, true, true);
    renderer_->clear_color_depth_buffers_rgba(0.1f, 0.1f, 0.1f, 1.0f, 1.0f);
    program_->set_uniform_4f(nullptr, "surface_color", 0.2f, 0.5f, 0.8f, 1.0f);
    program_->set_uniform_4f(nullptr, "light_position", 3.0f, 5.0f, 6.0f, 1.0f);
    mesh_->render(renderer_, nullptr);
    renderer_->finish_gl();
  }

 private:
  orv::Renderer* renderer_;
  bench::OurContext context_;
  orv::Camera camera_;
  orv::GpuProgram* program_ = nullptr;
  orv::MeshPQTorus* mesh_ = new orv::MeshPQTorus;  // lives as long as the program
};

class RawKnot {
 public:
  explicit RawKnot(const Knot& knot)
      : knot_(knot),
        context_(SIDE, SIDE, bench::RawContext::CORE_3_3),
        program_(bench::create_raw_program(VERTEX_TEXT, PIXEL_TEXT)),
        vertex_array_(knot.mesh.create_vertex_array()) {
    gl_.glEnable(GL_DEPTH_TEST);
  }

  void make_current() { context_.make_current(); }

  void draw() {
    gl_.glViewport(0, 0, SIDE, SIDE);
    gl_.glClearColor(0.1f, 0.1f, 0.1f, 1.0f);
    gl_.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const orv::mat4 matrix = knot_.projection * (knot_.view * knot_.transform);
    gl_.glUseProgram(program_);
    gl_.glUniformMatrix4fv(at("orvex_ModelMatrix"), 1, GL_FALSE, knot_.transform.ptr());
    gl_.glUniformMatrix4fv(at("orvex_ModelViewProjectionMatrix"), 1, GL_FALSE, matrix.ptr());
    gl_.glUniform4f(at("surface_color"), 0.2f, 0.5f, 0.8f, 1.0f);
    gl_.glUniform4f(at("light_position"), 3.0f, 5.0f, 6.0f, 1.0f);
    gl_.glBindVertexArray(vertex_array_);
    gl_.glDrawElements(knot_.mesh.mode, knot_.mesh.num_indices, knot_.mesh.index_type, nullptr);
    gl_.glFinish();
  }

 private:
  GLint at(const char* name) const { return gl_.glGetUniformLocation(program_, name); }

  const bench::RawGl& gl_ = bench::raw_gl();
  const Knot& knot_;
  bench::RawContext context_;
  GLuint program_;
  GLuint vertex_array_;
};

template <class Side>
void add(const char* name, Side& side) {
  // Software drivers draw on threads of their own.
  benchmark::RegisterBenchmark(name,
                               [&side](benchmark::State& state) {
                                 side.make_current();
                                 side.draw();
                                 for (auto _ : state) side.draw();
                               })
      ->MeasureProcessCPUTime()
      ->Unit(benchmark::kMillisecond);
}

template <class Side>
bench::DrawnFrame look_at(Side& side) {
  side.make_current();
  side.draw();
  return bench::look_at(SIDE, SIDE, [&] { side.draw(); });
}

}  // namespace

int main(int argc, char** argv) {
  Knot knot;
  OurKnot ours(&knot);
  RawKnot raw(knot);
  const bench::DrawnFrame our_frame = look_at(ours), raw_frame = look_at(raw);
  if (our_frame.triangles < 32000u || raw_frame.triangles != our_frame.triangles ||
      our_frame.pixels != raw_frame.pixels) {
    std::fprintf(stderr, "the knots differ: %u and %u triangles, %.2f%% of the pixels\n",
                 our_frame.triangles, raw_frame.triangles,
                 bench::differing_share(our_frame, raw_frame) * 100.0);
    return 1;
  }
  add("frame of a torus knot/ours", ours);
  add("frame of a torus knot/raw OpenGL", raw);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::fflush(nullptr);
  _exit(0);
}
