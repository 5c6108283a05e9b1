#include "cubes.h"
#include "ours.h"

namespace bench {

namespace {

constexpr int COLUMNS = 100;

float share_of(int index, int factor) { return static_cast<float>(index * factor % 97) / 96.0f; }

class OurCubes : public CubeSide {
 public:
  explicit OurCubes(CubeField* field)
      : renderer_(started_opengl()), context_(renderer_, CubeField::WIDTH, CubeField::HEIGHT) {
    program_ = load_program(renderer_, CUBE_VERTEX_TEXT, CUBE_PIXEL_TEXT);
    camera_.build_projection_persp(50.0f, 1.0f, 1.0f, 400.0f, true);
    camera_.set_viewport(0, 0, CubeField::WIDTH, CubeField::HEIGHT);
    camera_.set_position(0.0f, 60.0f, 115.0f);
    camera_.set_lookat(0.0f, 0.0f, 0.0f);
    for (int i = 0; i < CubeField::NUM_CUBES; ++i) add_cube(i);
    camera_.bind(renderer_, true, true, true, true, true);
    field->projection = renderer_->get_projection_matrix();
    field->view = renderer_->get_modelview_matrix();
    for (orv::Mesh* mesh : meshes_) {
      field->transforms.push_back(mesh->get_absolute_transform());
      field->colors.push_back(mesh->get_material_by_index(0)->get_diffuse());
    }
    field->cube = raw_copy(*meshes_[0]);
    renderer_->enable_depth_test(true);
  }

  void make_current() override { context_.make_current(); }

  void draw() override {
    camera_.bind(renderer_, true, true, true, true, true);
    renderer_->clear_color_depth_buffers_rgba(0.1f, 0.1f, 0.1f, 1.0f, 1.0f);
    for (orv::Mesh* mesh : meshes_) {
      program_->set_uniform_4f(nullptr, "surface_color",
                               mesh->get_material_by_index(0)->get_diffuse());
      mesh->render(renderer_, nullptr);
    }
    renderer_->flush_gl();
  }

 private:
  void add_cube(int i) {
    auto* mesh = new orv::MeshBox;
    mesh->set_build_params(0.6f, 0.6f, 0.6f, 1, 1, 1);
    mesh->build(nullptr);
    mesh->set_position(static_cast<float>(i % COLUMNS - COLUMNS / 2), 3.0f * share_of(i, 31),
                       static_cast<float>(i / COLUMNS - COLUMNS / 2));
    mesh->set_orientation_euler_xyz(90.0f * share_of(i, 7), 90.0f * share_of(i, 13), 0.0f);
    orv::Material* material = orv::MaterialMgr::get()->create_material("cube");
    material->set_diffuse(share_of(i, 5), share_of(i, 11), share_of(i, 17), 1.0f);
    material->set_gpu_program(program_);
    mesh->remove_all_materials(nullptr, nullptr);
    mesh->add_material(material, nullptr);
    meshes_.push_back(mesh);
  }

  orv::Renderer* renderer_;
  OurContext context_;
  orv::Camera camera_;
  orv::GpuProgram* program_ = nullptr;
  std::vector<orv::Mesh*> meshes_;  // live as long as the program
};

}  // namespace

std::unique_ptr<CubeSide> make_our_cubes(CubeField* field) {
  return std::make_unique<OurCubes>(field);
}

}  // namespace bench
