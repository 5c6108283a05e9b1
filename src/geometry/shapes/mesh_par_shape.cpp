#include <orv/geometry/shapes/mesh_par_shape.h>

#include <orv/core/log_mgr.h>

#include <cstring>
#include <exception>
#include <string>
#include <string_view>

#include "geometry/primitives/shape_build.h"
#include "geometry/shapes/lsystem.h"
#include "geometry/shapes/par_shape.h"

namespace orv {

namespace {

constexpr const char* DEFAULT_PROGRAM =
    "  sx 2 sy 2 \n"
    "  ry 90 rx 90 \n"
    "  shape tube rx 15  call rlimb rx - 15 \n"
    "  shape tube rx - 15 call llimb rx 15 \n"
    "  shape tube ry 15  call rlimb ry - 15 \n"
    "  shape tube ry 15  call llimb ry - 15 \n"
    "  rule rlimb \n"
    "   sx 0.925 sy 0.925 tz 1 rx 1.2 \n"
    "   call rlimb2 \n"
    "  rule rlimb2.1 \n"
    "   shape connect \n"
    "   call rlimb \n"
    "  rule rlimb2.1 \n"
    "   rx 15  shape tube call rlimb rx - 15 \n"
    "   rx - 15 shape tube call llimb rx 15 \n"
    "  rule rlimb.1 \n"
    "   call llimb \n"
    "  rule llimb.1 \n"
    "   call rlimb \n"
    "  rule llimb.10 \n"
    "   sx 0.925 sy 0.925 \n"
    "   tz 1 \n"
    "   rx - 1.2 \n"
    "   shape connect \n"
    "   call llimb";

}  // namespace

struct MeshParShapeData {
  std::string shape_type = "trefoil_knot";
  int slices = 4;
  int stacks = 4;
  int seed = 1;
  int num_subdivisions = 3;
  int lsystem_slices = 60;
  std::string lsystem_program = DEFAULT_PROGRAM;
};

MeshParShape::MeshParShape() : MeshParShape(VERTEX_FORMAT_DEFAULT) {}

MeshParShape::MeshParShape(VERTEX_FORMAT format) : Mesh(format), par_data_(new MeshParShapeData) {
  set_type(NODE_TYPE_MESH_PAR_SHAPE);
}

MeshParShape::~MeshParShape() { delete par_data_; }

MeshParShape::MeshParShape(const MeshParShape& other) : MeshParShape() { *this = other; }

MeshParShape& MeshParShape::operator=(const MeshParShape& other) {
  if (this == &other) return *this;
  Mesh::operator=(other);
  *par_data_ = *other.par_data_;
  return *this;
}

// ---- parameters ----

bool MeshParShape::set_shape_type(const char* name) {
  if (!name || !*name) return false;
  par_data_->shape_type.assign(name, strnlen(name, MAX_SHAPE_TYPE));
  return true;
}

const char* MeshParShape::get_shape_type() const { return par_data_->shape_type.c_str(); }

bool MeshParShape::set_build_params_klein_bottle(int slices, int stacks) {
  par_data_->slices = slices;
  par_data_->stacks = stacks;
  update_build_state(true);
  return true;
}

bool MeshParShape::set_build_params_parametric_sphere(int slices, int stacks) {
  return set_build_params_klein_bottle(slices, stacks);
}

bool MeshParShape::set_build_params_trefoil_knot(int slices, int stacks) {
  return set_build_params_klein_bottle(slices, stacks);
}

bool MeshParShape::set_build_params_subdivided_sphere(int num_subdivisions) {
  par_data_->num_subdivisions = num_subdivisions;
  update_build_state(true);
  return true;
}

bool MeshParShape::set_build_params_rock(int seed, int num_subdivisions) {
  par_data_->seed = seed;
  return set_build_params_subdivided_sphere(num_subdivisions);
}

bool MeshParShape::set_build_params_lsystem(int slices, int depth, const char* program) {
  par_data_->slices = slices;
  par_data_->lsystem_slices = depth;
  // The text may be the present one.
  par_data_->lsystem_program = std::string(program && *program ? program : DEFAULT_PROGRAM);
  update_build_state(true);
  return true;
}

int MeshParShape::get_slices() const { return par_data_->slices; }
int MeshParShape::get_stacks() const { return par_data_->stacks; }
int MeshParShape::get_seed() const { return par_data_->seed; }
int MeshParShape::get_num_subdivisions() const { return par_data_->num_subdivisions; }
int MeshParShape::get_lsystem_slices() const { return par_data_->lsystem_slices; }

const char* MeshParShape::get_lsystem_program() const { return par_data_->lsystem_program.c_str(); }

const char* MeshParShape::get_default_lsystem_program() { return DEFAULT_PROGRAM; }

// ---- building ----

namespace {

using detail::ParShape;

bool make_flat_solid(const MeshParShapeData& params, ParShape& shape) {
  if (!detail::make_solid(params.shape_type, shape)) return false;
  if (params.shape_type == "cube") {
    for (vec3& p : shape.points) p -= vec3(0.5f, 0.5f, 0.5f);
  }
  detail::unweld(shape);
  detail::compute_normals(shape);
  return true;
}

struct Maker {
  std::string_view name;
  bool (*make)(const MeshParShapeData& params, ParShape& shape);
};

constexpr Maker MAKERS[] = {
    {"dodecahedron", make_flat_solid},
    {"icosahedron", make_flat_solid},
    {"octohedron", make_flat_solid},
    {"tetrahedron", make_flat_solid},
    {"cube", make_flat_solid},
    {"subdivided_sphere",
     [](const MeshParShapeData& params, ParShape& shape) {
       return detail::make_subdivided_sphere(params.num_subdivisions, shape);
     }},
    {"trefoil_knot",
     [](const MeshParShapeData& params, ParShape& shape) {
       return detail::make_trefoil_knot(params.slices, params.stacks, shape);
     }},
    {"klein_bottle",
     [](const MeshParShapeData& params, ParShape& shape) {
       return detail::make_klein_bottle(params.slices, params.stacks, shape);
     }},
    {"sphere",
     [](const MeshParShapeData& params, ParShape& shape) {
       return detail::make_parametric_sphere(params.slices, params.stacks, shape);
     }},
    {"rock",
     [](const MeshParShapeData& params, ParShape& shape) {
       return detail::make_rock(params.seed, params.num_subdivisions, shape);
     }},
    {"lsystem",
     [](const MeshParShapeData& params, ParShape& shape) {
       return detail::grow_lsystem(params.lsystem_program,
                                   {params.slices, params.lsystem_slices, params.seed}, shape);
     }},
};

bool make_shape(const MeshParShapeData& params, ParShape& shape) {
  for (const Maker& maker : MAKERS) {
    if (maker.name == params.shape_type) return maker.make(params, shape);
  }
  return false;
}

void write_shape(const ParShape& shape, MeshData& data) {
  AttribAccess positions(data, VERTEX_ATTRIB_POSITION);
  AttribAccess normals(data, VERTEX_ATTRIB_NORMAL);
  AttribAccess uvs(data, VERTEX_ATTRIB_UV0);
  AttribAccess colors(data, VERTEX_ATTRIB_COLOR);
  for (std::size_t i = 0; i < shape.points.size(); ++i) {
    const auto vertex = static_cast<unsigned int>(i);
    positions.set(vertex, vec4(shape.points[i]));
    colors.set(vertex, vec4(1.0f, 1.0f, 1.0f, 1.0f));
    if (!shape.normals.empty()) {
      const vec3& n = shape.normals[i];
      normals.set(vertex, vec4(n.x, n.y, n.z, 0.0f));
    }
    if (!shape.tcoords.empty()) uvs.set(vertex, vec4(shape.tcoords[i].x, shape.tcoords[i].y, 0.0f));
  }
  FaceAccess faces(data);
  unsigned int face = 0;
  for (const ParShape::Triangle& t : shape.triangles) faces.set(face++, t.a, t.b, t.c);
}

}  // namespace

bool MeshParShape::build(Node*) { return _build(); }

bool MeshParShape::_build() {
  return build_when_dirty(*this, [this] { return build_shape(); });
}

bool MeshParShape::build_shape() {
  if (!get_mesh_data()) return false;
  ParShape shape;
  try {
    if (!make_shape(*par_data_, shape)) {
      LogMgr::get().tracef_debug("Mesh %s - shape %s unknown or refused", get_name(),
                                 get_shape_type());
      return false;
    }
  } catch (const std::exception& e) {
    LogMgr::get().tracef_debug("Mesh %s - shape %s: %s", get_name(), get_shape_type(), e.what());
    return false;
  }
  if (!begin_shape(*this, shape.points.size(), shape.triangles.size())) return false;
  write_shape(shape, *get_mesh_data());
  return true;
}

}  // namespace orv
