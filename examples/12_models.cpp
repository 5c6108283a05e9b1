// Models from files of three formats; the loaders know their own by the name.
#include <algorithm>

#include "common/example.h"

using namespace examples;
using orv::vec4;

class Models : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 5.0f, 11.3f), vec4(0.0f, 0.6f, 0.0f), 25.0f);
    orv::MeshEllipse* floor = keep(new orv::MeshEllipse);
    floor->set_build_params(3.3f, 2.3f, 96, 2, 360.0f);
    floor->build(nullptr);
    floor->set_vertices_color(GREY, nullptr);
    floor->add_material(lit_material(), nullptr);
    floor_ = floor;

    // The texture's rows come top first from the file, its coordinates count from the bottom.
    orv::Texture* spots = orv::TextureMgr::get()->create_texture_2d_from_file(
        demo_data("spot_texture.png").c_str(), false, orv::PF_RGB_U8);
    if (!spots) return fail("cannot read " + demo_data("spot_texture.png"));
    spots->flip_vertical();
    orv::Material* spotted = textured_material("spotted", spots);

    return add("spot.obj", demo_data(""), vec4(-1.8f, 0.0f, 0.4f), vec4(0.0f, 215.0f, 0.0f), WHITE,
               spotted, true) &&
           add("rock.3ds", data(""), vec4(0.0f, 0.0f, -1.0f), vec4(0.0f, 12.0f, 0.0f), ORANGE,
               lit_material(), true) &&
           add("part.stl", data(""), vec4(1.8f, 0.0f, 0.4f), vec4(-70.0f, 0.0f, 0.0f), TEAL,
               lit_material(), false);
  }

  void draw(float) override {
    floor_->render(renderer, nullptr);
    for (orv::Model* model : models_) model->render(renderer, nullptr);
  }

 private:
  // The name tells the loaders whether a file is theirs. The model has a mesh for each part of the
  // file; normals are computed, since not every file has them, and `smooth` joins those of faces
  // that meet.
  bool add(const char* file, const std::string& folder, const vec4& place, const vec4& turn,
           const vec4& color, orv::Material* material, bool smooth) {
    orv::Model* model = orv::Kernel::get()->load_model_from_file(
        orv::MeshDataVertexAttribsAllocParams(), file, folder.c_str(), nullptr);
    if (!model) return fail(std::string("cannot load ") + file);
    models_.push_back(keep(model));
    model->remove_all_materials(renderer, model);
    model->compute_faces_normal(model);
    if (smooth) model->average_vertices_normal(1e-5f, model);
    model->set_vertices_color(color, model);
    model->add_material(material, model);

    // Files come in any size and with any axis upwards.
    model->rotate_vertices_position(turn.x, turn.y, turn.z, model);
    model->bounding_volume_compute(nullptr);
    const vec4 low = model->get_bounding_box_min();
    const vec4 size = model->get_bounding_box_size();
    const float scale = 2.0f / std::max({size.x, size.y, size.z});
    model->set_scale(scale, scale, scale);
    model->set_position(place.x - (low.x + size.x * 0.5f) * scale, place.y - low.y * scale,
                        place.z - (low.z + size.z * 0.5f) * scale);
    return true;
  }

  orv::Mesh* floor_ = nullptr;
  std::vector<orv::Model*> models_;
};

int main(int argc, char** argv) { return run<Models>(argc, argv, "OBJ, 3DS and STL models"); }
