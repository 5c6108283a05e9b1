// A frame of a million instanced cubes on Mesa's driver that draws nothing: what is timed is the
// way to the driver. In one road the cubes stand still, in the other each moves in every frame.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "ours.h"

namespace {

using orv::vec4;

constexpr int SIDE = 512;
constexpr unsigned int MANY = 1000000;
constexpr unsigned int FEW = 2000;  // enough for a look at them

constexpr const char* VERTEX_TEXT = R"(#version 150
in vec4 orvex_Position;
in vec4 orvex_Normal;
in vec4 orvex_Instance_Position;
in vec4 orvex_Instance_Rotation;
in vec4 orvex_Instance_Scale;
in vec4 orvex_Instance_Color;
uniform mat4 orvex_ModelViewProjectionMatrix;
out vec4 color;
vec3 turned(vec3 v, vec4 q) { return v + 2.0 * cross(q.xyz, cross(q.xyz, v) + q.w * v); }
void main() {
  vec3 place = turned(orvex_Position.xyz * orvex_Instance_Scale.xyz, orvex_Instance_Rotation);
  vec3 normal = turned(orvex_Normal.xyz, orvex_Instance_Rotation);
  color = vec4(orvex_Instance_Color.rgb * (0.6 + 0.4 * dot(normal, vec3(0.48, 0.64, 0.6))), 1.0);
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(place + orvex_Instance_Position.xyz, 1.0);
}
)";
constexpr const char* PIXEL_TEXT = R"(#version 150
in vec4 color;
out vec4 pixel;
void main() { pixel = color; }
)";

constexpr unsigned int COLUMNS = 1000;

/// Where a cube is in a frame: they swing up and down.
vec4 place_of(unsigned int cube, float height) {
  const float swing = cube % 2 == 0 ? height : -height;
  return vec4(static_cast<float>(cube % COLUMNS) - 0.5f * COLUMNS, swing,
              -static_cast<float>(cube / COLUMNS), 1.0f);
}

void place_all(vec4* positions, unsigned int count, unsigned int frame) {
  const float height = static_cast<float>(frame % 64) / 64.0f;
  for (unsigned int i = 0; i < count; ++i) positions[i] = place_of(i, height);
}

/// What both sides draw.
struct Field {
  unsigned int cubes = 0;
  orv::mat4 transform;
  orv::mat4 view;
  orv::mat4 projection;
  bench::RawMesh mesh;
  std::size_t positions_at = 0;  // bytes into the vertex buffer
};

class OurCubes {
 public:
  OurCubes(orv::Renderer* renderer, unsigned int cubes, Field* field)
      : renderer_(renderer), context_(renderer, SIDE, SIDE) {
    program_ = bench::load_program(renderer_, VERTEX_TEXT, PIXEL_TEXT);
    camera_.build_projection_persp(50.0f, 1.0f, 1.0f, 2000.0f, true);
    camera_.set_viewport(0, 0, SIDE, SIDE);
    camera_.set_position(0.0f, 60.0f, 80.0f);
    camera_.set_lookat(0.0f, 0.0f, -100.0f);
    mesh_->set_build_params(0.6f, 0.6f, 0.6f, 1, 1, 1);
    mesh_->build(nullptr);
    orv::Material* material = orv::MaterialMgr::get()->create_material("cubes");
    material->set_gpu_program(program_);
    mesh_->remove_all_materials(nullptr, nullptr);
    mesh_->add_material(material, nullptr);
    place_cubes(cubes);
    renderer_->enable_depth_test(true);
    camera_.bind(renderer_, true, true, true, true, true);
    *field = {cubes,
              mesh_->get_absolute_transform(),
              renderer_->get_modelview_matrix(),
              renderer_->get_projection_matrix(),
              bench::raw_copy(*mesh_),
              0};
    for (const bench::RawAttrib& attrib : field->mesh.attribs) {
      if (attrib.location == mesh_->get_instance_pos_va_index())
        field->positions_at = attrib.offset;
    }
  }

  void make_current() { context_.make_current(); }

  void draw() {
    camera_.bind(renderer_, true, true, true, true, true);
    renderer_->clear_color_depth_buffers_rgba(0.1f, 0.1f, 0.1f, 1.0f, 1.0f);
    mesh_->render(renderer_, nullptr);
    renderer_->flush_gl();
  }

  void draw_moved(unsigned int frame) {
    place_all(mesh_->get_instance_positions_vec4_ptr(), mesh_->get_num_instances(), frame);
    mesh_->get_data()
        ->get_vertex_attrib_array(mesh_->get_instance_pos_va_index())
        ->update_needed(true);
    draw();
  }

 private:
  void place_cubes(unsigned int cubes) {
    orv::InstancingInitParams params;
    params.num_vertex_streams = 4;
    if (!mesh_->instancing_init(cubes, params)) std::exit(1);
    for (unsigned int i = 0; i < cubes; ++i) {
      const float share = static_cast<float>(i * 31 % 97) / 96.0f;
      orv::quat turn;
      turn.from_euler(90.0f * share, 45.0f * share, 0.0f);
      mesh_->set_instance_position(i, place_of(i, 0.0f));
      mesh_->set_instance_rotation(i, turn);
      mesh_->set_instance_scale(i, vec4(0.5f + share, 1.0f, 1.0f, 1.0f));
      mesh_->set_instance_color(i, vec4(share, 1.0f - share, 0.5f, 1.0f));
    }
  }

  orv::Renderer* renderer_;
  bench::OurContext context_;
  orv::Camera camera_;
  orv::GpuProgram* program_ = nullptr;
  orv::MeshBox* mesh_ = new orv::MeshBox;  // lives as long as the program
};

class RawCubes {
 public:
  explicit RawCubes(const Field& field)
      : field_(field),
        context_(SIDE, SIDE, bench::RawContext::CORE_3_3),
        program_(bench::create_raw_program(VERTEX_TEXT, PIXEL_TEXT)),
        matrix_at_(gl_.glGetUniformLocation(program_, "orvex_ModelViewProjectionMatrix")),
        vertex_array_(field.mesh.create_vertex_array(&vertex_buffer_)),
        positions_(field.cubes) {
    gl_.glEnable(GL_DEPTH_TEST);
  }

  void make_current() { context_.make_current(); }

  void draw() {
    gl_.glViewport(0, 0, SIDE, SIDE);
    gl_.glScissor(0, 0, SIDE, SIDE);
    gl_.glClearColor(0.1f, 0.1f, 0.1f, 1.0f);
    gl_.glClearDepthf(1.0f);
    gl_.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const orv::mat4 matrix = field_.projection * (field_.view * field_.transform);
    gl_.glUseProgram(program_);
    gl_.glUniformMatrix4fv(matrix_at_, 1, GL_FALSE, matrix.ptr());
    gl_.glBindVertexArray(vertex_array_);
    gl_.glDrawElementsInstanced(field_.mesh.mode, field_.mesh.num_indices, field_.mesh.index_type,
                                nullptr, static_cast<GLsizei>(field_.cubes));
    gl_.glBindVertexArray(0);
    gl_.glUseProgram(0);
    gl_.glFlush();
  }

  void draw_moved(unsigned int frame) {
    place_all(positions_.data(), field_.cubes, frame);
    gl_.glBindBuffer(GL_ARRAY_BUFFER, vertex_buffer_);
    gl_.glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(field_.positions_at),
                        static_cast<GLsizeiptr>(positions_.size() * sizeof(vec4)),
                        positions_.data());
    draw();
  }

 private:
  const bench::RawGl& gl_ = bench::raw_gl();
  const Field& field_;
  bench::RawContext context_;
  GLuint program_;
  GLint matrix_at_;
  GLuint vertex_buffer_ = 0;
  GLuint vertex_array_;
  std::vector<vec4> positions_;
};

template <class Side>
bench::DrawnFrame look_at(Side& side, unsigned int frame) {
  side.make_current();
  side.draw();  // uploads
  return bench::look_at(SIDE, SIDE, [&] { side.draw_moved(frame); });
}

// Both sides must draw all triangles and the same picture, also of cubes that have moved.
int compare_pictures() {
  Field field;
  OurCubes ours(bench::started_opengl(), FEW, &field);
  RawCubes raw(field);
  for (const unsigned int frame : {0u, 40u}) {
    const bench::DrawnFrame a = look_at(ours, frame), b = look_at(raw, frame);
    if (a.triangles == 12u * FEW && b.triangles == a.triangles && a.pixels == b.pixels) continue;
    std::fprintf(stderr, "frame %u: %u and %u triangles, %.2f%% of the pixels differ\n", frame,
                 a.triangles, b.triangles, bench::differing_share(a, b) * 100.0);
    return 1;
  }
  return 0;
}

// In a process of its own: the driver is chosen once for each.
void check_answers() {
  const pid_t child = fork();
  if (child == 0) {
    unsetenv("GALLIUM_NOOP");
    _exit(compare_pictures());
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
    std::fprintf(stderr, "the sides don't draw the same\n");
    std::exit(1);
  }
}

template <class Side>
void add_roads(const std::string& name, Side& side) {
  benchmark::RegisterBenchmark(("1 M instanced cubes that stand/" + name).c_str(),
                               [&side](benchmark::State& state) {
                                 side.make_current();
                                 side.draw();
                                 for (auto _ : state) side.draw();
                               })
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark(("1 M instanced cubes that move/" + name).c_str(),
                               [&side](benchmark::State& state) {
                                 side.make_current();
                                 unsigned int frame = 0;
                                 for (auto _ : state) side.draw_moved(++frame);
                               })
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char** argv) {
  check_answers();
  setenv("GALLIUM_NOOP", "1", 1);
  // The driver's own thread takes objects of this driver for larger ones than they are.
  setenv("GALLIUM_THREAD", "0", 1);
  Field field;
  OurCubes ours(bench::started_opengl(), MANY, &field);
  RawCubes raw(field);
  add_roads("ours", ours);
  add_roads("raw OpenGL", raw);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::fflush(nullptr);
  _exit(0);
}
