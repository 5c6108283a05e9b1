#include <orv/loaders/loader3d_obj_v2.h>

#include <orv/geometry/mesh.h>
#include <orv/gpu/material.h>
#include <orv/scene/model.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "core/core_author.h"
#include "geometry/face_access.h"
#include "loaders/attrib_writer.h"
#include "loaders/loader_names.h"
#include "loaders/tinyobj_file.h"
#include "loaders/tinyobj_shape.h"

namespace orv {

namespace {

using ShapeGeometry = std::vector<detail::TinyobjShape>;

// ---- statistics ----

void log_shape(Plugin& log, long i, const tinyobj::shape_t& shape,
               const detail::TinyobjShape& geometry) {
  const auto size = [](const auto& list) { return static_cast<long>(list.size()); };
  log.tracef("meshes[%ld].name = %s", i, shape.name.c_str());
  // Numbers, of which a position and a normal have three and texture coordinates two.
  const long vertices = size(geometry.vertices);
  log.tracef("meshes[%ld].positions: %ld", i, vertices * 3);
  log.tracef("meshes[%ld].normals: %ld", i, geometry.has_normals ? vertices * 3 : 0);
  log.tracef("meshes[%ld].texcoords: %ld", i, geometry.has_texcoords ? vertices * 2 : 0);
  log.tracef("meshes[%ld].indices: %ld", i, size(geometry.indices));
  log.tracef("meshes[%ld].material_ids: %ld", i, size(shape.mesh.material_ids));
}

void log_material(Plugin& log, long i, const tinyobj::material_t& material) {
  const auto log_color = [&log](const char* name, const tinyobj::real_t* rgb) {
    log.tracef("  material.%s = (%f, %f ,%f)", name, static_cast<double>(rgb[0]),
               static_cast<double>(rgb[1]), static_cast<double>(rgb[2]));
  };
  const auto log_number = [&log](const char* name, tinyobj::real_t number) {
    log.tracef("  material.%s = %f", name, static_cast<double>(number));
  };
  const auto log_text = [&log](const char* name, const std::string& text) {
    log.tracef("  material.%s = %s", name, text.c_str());
  };
  log.tracef("material[%ld].name = %s", i, material.name.c_str());
  log_color("Ka", material.ambient);
  log_color("Kd", material.diffuse);
  log_color("Ks", material.specular);
  log_color("Tr", material.transmittance);
  log_color("Ke", material.emission);
  log_number("Ns", material.shininess);
  log_number("Ni", material.ior);
  log_number("dissolve", material.dissolve);
  log.tracef("  material.illum = %d", material.illum);
  log_text("map_Ka", material.ambient_texname);
  log_text("map_Kd", material.diffuse_texname);
  log_text("map_Ks", material.specular_texname);
  log_text("map_Ns", material.specular_highlight_texname);
  log_text("map_bump", material.bump_texname);
  log_text("map_d", material.alpha_texname);
  log_text("disp", material.displacement_texname);
  for (const auto& [name, value] : material.unknown_parameter) log_text(name.c_str(), value);
}

void log_statistics(Plugin& log, const detail::TinyobjFile& file, const ShapeGeometry& geometry) {
  log.tracef("Number of meshes: %d", static_cast<int>(file.shapes.size()));
  for (std::size_t i = 0; i < file.shapes.size(); ++i) {
    log_shape(log, static_cast<long>(i), file.shapes[i], geometry[i]);
  }
  log.tracef("Number of materials: %d", static_cast<int>(file.materials.size()));
  for (std::size_t i = 0; i < file.materials.size(); ++i) {
    log_material(log, static_cast<long>(i), file.materials[i]);
  }
}

// ---- materials ----

vec4 make_color(const tinyobj::real_t* rgb) {
  return vec4(static_cast<float>(rgb[0]), static_cast<float>(rgb[1]), static_cast<float>(rgb[2]),
              1.0f);
}

void fill_material(Material& material, const tinyobj::material_t& record) {
  material.set_ambient(make_color(record.ambient));
  material.set_diffuse(make_color(record.diffuse));
  material.set_specular(make_color(record.specular));
  material.set_shininess(detail::shininess_from_wavefront(static_cast<float>(record.shininess)));
  material.set_opacity(static_cast<float>(record.transmittance[0]));
  for (const std::string* map :
       {&record.ambient_texname, &record.diffuse_texname, &record.specular_texname}) {
    if (!map->empty()) material.async_loading_add_texture_filename(map->c_str());
  }
}

/// The material of each record.
std::vector<Material*> build_materials(const std::vector<tinyobj::material_t>& records,
                                       Model& model) {
  detail::SharedMaterials shared;
  detail::ModelMaterials model_materials(&model);
  std::vector<Material*> materials;
  for (const tinyobj::material_t& record : records) {
    const auto [material, created] = shared.find_or_create(record.name.c_str());
    if (created) fill_material(*material, record);
    model_materials.add(material);
    materials.push_back(material);
  }
  return materials;
}

// ---- meshes ----

void write_vertices(const tinyobj::attrib_t& attrib, const detail::TinyobjShape& shape,
                    MeshData& data) {
  detail::AttribWriter positions(data, VERTEX_ATTRIB_POSITION);
  detail::AttribWriter normals(data, VERTEX_ATTRIB_NORMAL);
  detail::AttribWriter texcoords(data, VERTEX_ATTRIB_UV0);
  detail::AttribWriter colors(data, VERTEX_ATTRIB_COLOR);
  const vec4 white(1.0f, 1.0f, 1.0f, 1.0f);
  // All of a vertex at once: large models do not fit into the caches.
  for (std::size_t i = 0; i < shape.vertices.size(); ++i) {
    const detail::TinyobjCorner& corner = shape.vertices[i];
    positions.set(i, detail::tinyobj_element<3>(attrib.vertices, corner.position));
    if (shape.has_normals) {
      normals.set(i, detail::tinyobj_element<3>(attrib.normals, corner.normal));
    }
    if (shape.has_texcoords) {
      texcoords.set(i, detail::tinyobj_element<2>(attrib.texcoords, corner.texcoord));
    }
    colors.set(i, white);
  }
}

/// Gives the faces their materials and the mesh each material once, in the order of first use.
void write_face_materials(const std::vector<int>& ids, const std::vector<Material*>& materials,
                          Mesh& mesh) {
  MeshData& data = *mesh.get_mesh_data();
  if (!data.face_materials) return;
  std::vector<bool> added(materials.size());
  const std::size_t count = std::min<std::size_t>(ids.size(), data.num_faces);
  for (std::size_t face = 0; face < count; ++face) {
    if (ids[face] < 0 || static_cast<std::size_t>(ids[face]) >= materials.size()) continue;
    const auto record = static_cast<std::size_t>(ids[face]);
    Material* material = materials[record];
    data.face_materials[face] = static_cast<unsigned int>(material->get_id());
    if (!added[record]) mesh.add_material(material, nullptr);
    added[record] = true;
  }
}

void build_mesh(const tinyobj::attrib_t& attrib, const tinyobj::shape_t& record,
                const detail::TinyobjShape& shape, const std::vector<Material*>& materials,
                Model& model) {
  const std::size_t num_vertices = shape.vertices.size();
  const std::size_t num_faces = shape.indices.size() / 3;
  constexpr std::size_t LIMIT = std::numeric_limits<unsigned int>::max();
  Mesh* mesh = model.create_mesh();
  mesh->set_name(record.name.c_str());
  mesh->set_vertex_alloc_params_num_vertices(
      num_vertices > LIMIT ? 0 : static_cast<unsigned int>(num_vertices));
  if (num_faces > LIMIT || !mesh->alloc_vertex_data()) {
    mesh->release(nullptr, nullptr);
    return;
  }
  mesh->alloc_face_data(static_cast<unsigned int>(num_faces), false);
  MeshData& data = *mesh->get_mesh_data();
  write_vertices(attrib, shape, data);
  FaceAccess faces(data);
  for (unsigned int face = 0; face < faces.size(); ++face) {
    const unsigned int* corners = &shape.indices[std::size_t{face} * 3];
    faces.set(face, corners[0], corners[1], corners[2]);
  }
  write_face_materials(record.mesh.material_ids, materials, *mesh);
  model.add_child(mesh);
}

}  // namespace

Loader3D_OBJ_V2::Loader3D_OBJ_V2() {
  set_name("ObjLoaderV2");
  set_description("OBJ loader based on TinyOBJLoader (core plugin).");
  set_author(CORE_AUTHOR);
  set_build_info(detail::loader_build_info().c_str());
  set_version(0, 1, 0);
}

Loader3D_OBJ_V2::~Loader3D_OBJ_V2() = default;

bool Loader3D_OBJ_V2::load_model(Model* model, const char* filename) {
  if (!model || !detail::ends_in_letters(filename, "obj")) return false;
  const std::string directory = get_model_dir();
  const std::string path = directory + filename;
  detail::TinyobjFile file;
  const bool loaded = file.read(path, directory);
  if (!file.messages.empty()) tracef_error("error: %s", file.messages.c_str());
  if (!loaded) {
    tracef_error("failed to load / parse %s", path.c_str());
    tracef_debug("can't read %s: %s", path.c_str(), file.fault.c_str());
    return false;
  }
  ShapeGeometry geometry;
  for (const tinyobj::shape_t& shape : file.shapes) {
    geometry.push_back(detail::make_tinyobj_shape(file.attrib, shape.mesh));
  }
  log_statistics(*this, file, geometry);
  const std::vector<Material*> materials = build_materials(file.materials, *model);
  for (std::size_t i = 0; i < file.shapes.size(); ++i) {
    build_mesh(file.attrib, file.shapes[i], geometry[i], materials, *model);
  }
  return true;
}

bool Loader3D_OBJ_V2::load_scene(Scene*, const char*, const char*) { return false; }

}  // namespace orv
