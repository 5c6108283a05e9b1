#include "loaders/obj_model_builder.h"

#include <orv/geometry/mesh.h>
#include <orv/gpu/material.h>
#include <orv/scene/model.h>

#include <algorithm>
#include <limits>

#include "geometry/face_access.h"
#include "loaders/attrib_writer.h"

namespace orv::detail {

namespace {

vec4 widen(const vec2& v) { return vec4(v.x, v.y, 0.0f); }
vec4 widen(const vec3& v) { return v; }

/// A list of which each index that names no element names the first one.
template <class Element>
class ElementList {
 public:
  explicit ElementList(const GrowingArray<Element>& elements)
      : elements_(elements.data()), count_(static_cast<std::uint32_t>(elements.size())) {}

  bool empty() const { return count_ == 0; }
  vec4 get(int one_based) const {
    const std::uint32_t i = static_cast<std::uint32_t>(one_based) - 1;
    if (i < count_) return widen(elements_[i]);
    return count_ == 0 ? vec4() : widen(elements_[0]);
  }

 private:
  const Element* elements_;
  std::uint32_t count_;
};

class ObjModelBuilder {
 public:
  ObjModelBuilder(ObjDocument& document, Model& model)
      : document_(document),
        model_(model),
        model_materials_(&model),
        positions_(document.positions),
        normals_(document.normals),
        texcoords_(document.texcoords) {}

  void build() {
    for (ObjMaterial& material : document_.materials) {
      if (material.num_faces > 0) build_material(material);
    }
    for (const ObjGroup& group : document_.groups) {
      if (group.num_triangles > 0) build_mesh(group);
    }
  }

 private:
  Material* build_material(ObjMaterial& record);
  ObjMaterial& pick_material(const ObjGroup& group);
  void build_mesh(const ObjGroup& group);
  void write_faces(const ObjGroup& group, MeshData& data, unsigned int material_id);

  ObjDocument& document_;
  Model& model_;
  SharedMaterials shared_;
  ModelMaterials model_materials_;
  const ElementList<vec3> positions_;
  const ElementList<vec3> normals_;
  const ElementList<vec2> texcoords_;
};

/// The triangles of one mesh, three vertices each, as they are written one after the other.
class TriangleWriter {
 public:
  TriangleWriter(MeshData& data, const ElementList<vec3>& positions,
                 const ElementList<vec3>& normals, const ElementList<vec2>& texcoords)
      : data_(data),
        faces_(data),
        positions_(positions),
        normals_(normals),
        texcoords_(texcoords),
        position_writer_(data, VERTEX_ATTRIB_POSITION),
        normal_writer_(data, VERTEX_ATTRIB_NORMAL),
        texcoord_writer_(data, VERTEX_ATTRIB_UV0) {}

  void write(const ObjCorner& a, const ObjCorner& b, const ObjCorner& c) {
    const unsigned int v = face_ * 3;
    if (!texcoords_.empty()) {
      texcoord_writer_.set(v, texcoords_.get(a.texcoord));
      texcoord_writer_.set(v + 1, texcoords_.get(b.texcoord));
      texcoord_writer_.set(v + 2, texcoords_.get(c.texcoord));
    }
    const vec4 p0 = positions_.get(a.position);
    const vec4 p1 = positions_.get(b.position);
    const vec4 p2 = positions_.get(c.position);
    position_writer_.set(v, p0);
    position_writer_.set(v + 1, p1);
    position_writer_.set(v + 2, p2);
    const vec4 normal = normals_.empty() ? write_flat_normal(v, p0, p1, p2)
                                         : write_normals(v, a.normal, b.normal, c.normal);
    if (data_.face_normals && face_ < data_.num_faces) data_.face_normals[face_] = normal;
    faces_.set(face_, v, v + 1, v + 2);
    ++face_;
  }

 private:
  vec4 write_flat_normal(unsigned int v, const vec4& p0, const vec4& p1, const vec4& p2) {
    vec4 normal = (p2 - p1).cross(p0 - p1);
    normal.normalize();
    normal.w = 1.0f;
    for (unsigned int i = 0; i < 3; ++i) normal_writer_.set(v + i, normal);
    return normal;
  }

  vec4 write_normals(unsigned int v, int a, int b, int c) {
    const vec4 n0 = normals_.get(a);
    const vec4 n1 = normals_.get(b);
    const vec4 n2 = normals_.get(c);
    normal_writer_.set(v, n0);
    normal_writer_.set(v + 1, n1);
    normal_writer_.set(v + 2, n2);
    return (n0 + n1 + n2) / vec4(3.0f, 3.0f, 3.0f, 3.0f);
  }

  MeshData& data_;
  FaceAccess faces_;
  const ElementList<vec3> positions_;
  const ElementList<vec3> normals_;
  const ElementList<vec2> texcoords_;
  AttribWriter position_writer_;
  AttribWriter normal_writer_;
  AttribWriter texcoord_writer_;
  unsigned int face_ = 0;
};

// ---- materials ----

Material* ObjModelBuilder::build_material(ObjMaterial& record) {
  const auto [material, created] = shared_.find_or_create(record.name);
  record.built = material;
  if (created) {
    material->set_ambient(record.ambient);
    material->set_diffuse(record.diffuse);
    material->set_specular(record.specular);
    material->set_shininess(shininess_from_wavefront(record.exponent));
    material->set_opacity(record.opacity);
    for (const std::string& map : record.maps) {
      if (!map.empty()) material->async_loading_add_texture_filename(map.c_str());
    }
  }
  model_materials_.add(material);
  return material;
}

/// Without a `usemtl` of its own, a group takes the first material behind the default one.
ObjMaterial& ObjModelBuilder::pick_material(const ObjGroup& group) {
  if (!group.materials.empty()) return document_.materials[group.materials[0]];
  return document_.materials[document_.materials.size() >= 2 ? 1 : 0];
}

// ---- meshes ----

void ObjModelBuilder::build_mesh(const ObjGroup& group) {
  Mesh* mesh = model_.create_mesh();
  mesh->set_name(group.name.c_str());
  if (group.num_triangles > std::numeric_limits<unsigned int>::max() / 3) {
    mesh->release(nullptr, nullptr);
    return;
  }
  const auto num_triangles = static_cast<unsigned int>(group.num_triangles);
  mesh->set_vertex_alloc_params_num_vertices(num_triangles * 3);
  if (!mesh->alloc_vertex_data()) {
    mesh->release(nullptr, nullptr);
    return;
  }
  mesh->alloc_face_data(num_triangles, false);
  ObjMaterial& record = pick_material(group);
  Material* material = record.built ? record.built : build_material(record);
  mesh->add_material(material, nullptr);
  write_faces(group, *mesh->get_mesh_data(), static_cast<unsigned int>(material->get_id()));
  model_.add_child(mesh);
}

void ObjModelBuilder::write_faces(const ObjGroup& group, MeshData& data, unsigned int material_id) {
  TriangleWriter writer(data, positions_, normals_, texcoords_);
  const ObjCorner* corners = document_.corners.data();
  const GrowingArray<std::uint32_t>& ends = document_.polygon_ends;
  for (const ObjPolygonRun& run : group.runs) {
    for (std::uint32_t polygon = run.first; polygon < run.first + run.count; ++polygon) {
      const std::uint32_t begin = polygon == 0 ? 0 : ends[polygon - 1];
      for (std::uint32_t i = begin + 2; i < ends[polygon]; ++i) {
        writer.write(corners[begin], corners[i - 1], corners[i]);
      }
    }
  }
  if (data.face_materials) std::fill_n(data.face_materials, data.num_faces, material_id);
  AttribWriter(data, VERTEX_ATTRIB_COLOR).fill(vec4(1.0f, 1.0f, 1.0f, 1.0f));
}

}  // namespace

void build_obj_model(ObjDocument& document, Model& model) {
  ObjModelBuilder(document, model).build();
}

}  // namespace orv::detail
