#include <orv/loaders/loader3d_lib3ds.h>

#include <lib3ds/camera.h>
#include <lib3ds/file.h>
#include <lib3ds/material.h>
#include <lib3ds/mesh.h>
#include <lib3ds/node.h>
#include <orv/core/plugin.h>
#include <orv/geometry/mesh.h>
#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/math/mat4.h>
#include <orv/math/vec2.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>
#include <orv/scene/camera.h>
#include <orv/scene/model.h>
#include <orv/scene/scene.h>

#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/core_author.h"
#include "core/read_file.h"
#include "geometry/attrib_access.h"
#include "geometry/face_access.h"
#include "loaders/loader_names.h"
#include "loaders/tds_normals.h"
#include "loaders/tds_reader.h"
#include "scene/camera_data.h"

namespace orv {

namespace {

constexpr int NO_MATERIAL = -1;

/// Vertices, and faces, that the nodes of one file may make beyond those that the file holds: a
/// short file can place a large mesh many times.
constexpr std::size_t MAX_FURTHER_ELEMENTS = std::size_t{1} << 22;

/// Aspect of every camera that comes from a file.
constexpr float CAMERA_ASPECT = 1.333f;

struct MaterialRecord {
  Material* material = nullptr;  // set once made here; null for one that was known before
  std::string name;
  vec4 ambient;
  vec4 diffuse;
  vec4 specular;
  float shininess = 0.0f;
  float opacity = 1.0f;
  std::string texture_name;
};

struct FaceRecord {
  Lib3dsWord corners[3];
  int material;  // index of the file's material or NO_MATERIAL
};

struct MeshRecord {
  std::string name;
  std::vector<vec3> vertices;
  std::vector<vec3> normals;
  std::vector<vec2> uvs;
  std::vector<FaceRecord> faces;
};

struct CameraRecord {
  vec4 position;
  vec4 target;
  float fov = 0.0f;
  float znear = 0.0f;
  float zfar = 0.0f;
};

/// What one load takes out of a file.
struct Records {
  std::vector<MaterialRecord> materials;
  std::vector<MeshRecord> meshes;
  std::vector<CameraRecord> cameras;
};

/// The file's Z axis points up.
vec3 y_up(const vec3& v) { return vec3(v.x, v.z, -v.y); }

vec4 point_y_up(const Lib3dsVector v) { return vec4(v[0], v[2], -v[1], 1.0f); }

vec4 color_of(const Lib3dsRgba c) { return vec4(c[0], c[1], c[2], c[3]); }

// ---- out of the file -------------------------------------------------------------------------

using MaterialIndex = std::unordered_map<std::string_view, int>;

/// Index of the first material of each name. The names stay those of the file.
MaterialIndex index_materials(const Lib3dsFile& file) {
  MaterialIndex index;
  int i = 0;
  for (const Lib3dsMaterial* m = file.materials; m; m = m->next) index.emplace(m->name, i++);
  return index;
}

MaterialRecord read_material(const Lib3dsMaterial& material) {
  MaterialRecord record;
  record.name = material.name;
  record.ambient = color_of(material.ambient);
  record.diffuse = color_of(material.diffuse);
  record.specular = color_of(material.specular);
  record.shininess = std::pow(2.0f, material.shininess * 10.0f + 1.0f);
  record.opacity = 1.0f - material.transparency;
  record.texture_name = material.texture1_map.name;
  return record;
}

/// With two materials of one name all are renamed; faces know theirs by index.
void read_materials(const Lib3dsFile& file, std::vector<MaterialRecord>& records) {
  for (const Lib3dsMaterial* m = file.materials; m; m = m->next) {
    records.push_back(read_material(*m));
  }
  if (index_materials(file).size() == records.size()) return;
  for (std::size_t i = 0; i < records.size(); ++i) {
    records[i].name = "ORV_mat_" + std::to_string(i);
  }
}

void read_cameras(const Lib3dsFile& file, std::vector<CameraRecord>& records) {
  for (const Lib3dsCamera* c = file.cameras; c; c = c->next) {
    CameraRecord record;
    record.position = point_y_up(c->position);
    record.target = point_y_up(c->target);
    record.fov = c->fov;
    record.znear = c->near_range;
    record.zfar = c->far_range;
    records.push_back(record);
  }
}

/// A node for each mesh, as the key-frame section of a plain file would hold them.
void create_nodes(Lib3dsFile& file) {
  for (const Lib3dsMesh* mesh = file.meshes; mesh; mesh = mesh->next) {
    Lib3dsNode* node = lib3ds_node_new_object();
    if (!node) return;
    std::memcpy(node->name, mesh->name, sizeof(node->name));
    node->parent_id = LIB3DS_NO_PARENT;
    lib3ds_file_insert_node(&file, node);
  }
}

mat4 to_mat4(const Lib3dsMatrix matrix) {
  mat4 result;
  std::memcpy(result.ptr(), matrix, sizeof(Lib3dsMatrix));
  return result;
}

/// Takes the vertices of a mesh to where a node puts them.
mat4 vertex_transform(const Lib3dsNode& node, const Lib3dsMesh& mesh) {
  mat4 transform = to_mat4(node.matrix);
  const float* m = transform.ptr();
  const float* pivot = node.data.object.pivot;
  const vec3 p(-pivot[0], -pivot[1], -pivot[2]);
  transform.set_translate(m[0] * p.x + m[4] * p.y + m[8] * p.z + m[12],
                          m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13],
                          m[2] * p.x + m[6] * p.y + m[10] * p.z + m[14]);
  mat4 inverse = to_mat4(mesh.matrix);
  inverse.inverse();
  return transform * inverse;
}

/// Changes the mesh itself: a further node on it starts from what this one left.
void transform_points(Lib3dsMesh& mesh, const mat4& transform) {
  const float* m = transform.ptr();
  for (unsigned i = 0; i < mesh.points; ++i) {
    float* v = mesh.pointL[i].pos;
    const float x = v[0];
    const float y = v[1];
    const float z = v[2];
    for (int k = 0; k < 3; ++k) v[k] = m[k] * x + m[k + 4] * y + m[k + 8] * z + m[k + 12];
  }
}

/// Walks the nodes of a file and takes a mesh record from each object node.
class MeshReader {
 public:
  MeshReader(Lib3dsFile& file, std::vector<MeshRecord>& records)
      : materials_(index_materials(file)), records_(records) {
    for (Lib3dsMesh* m = file.meshes; m; m = m->next) {
      meshes_.emplace(m->name, m);
      vertices_left_ += m->points;
      faces_left_ += m->faces;
    }
  }

  void walk(const Lib3dsNode* first) {
    for (const Lib3dsNode* node = first; node; node = node->next) {
      if (node->type != LIB3DS_OBJECT_NODE) continue;
      read_node(*node);
      walk(node->childs);
    }
  }

  /// Nodes left out since the file places too many vertices.
  std::size_t dropped_nodes() const { return dropped_nodes_; }

 private:
  void read_node(const Lib3dsNode& node) {
    const auto found = meshes_.find(node.name);
    if (found == meshes_.end() || found->second->points == 0) return;
    Lib3dsMesh& mesh = *found->second;
    if (!take_share(mesh)) return;
    transform_points(mesh, vertex_transform(node, mesh));
    const char* instance = node.data.object.instance;
    MeshRecord& record = records_.emplace_back();
    record.name = instance[0] ? instance : node.name;
    copy_vertices(mesh, record);
    copy_faces(mesh, record);
  }

  bool take_share(const Lib3dsMesh& mesh) {
    if (mesh.points > vertices_left_ || mesh.faces > faces_left_) {
      ++dropped_nodes_;
      return false;
    }
    vertices_left_ -= mesh.points;
    faces_left_ -= mesh.faces;
    return true;
  }

  void copy_vertices(Lib3dsMesh& mesh, MeshRecord& record) {
    record.vertices.reserve(mesh.points);
    for (unsigned i = 0; i < mesh.points; ++i) {
      const float* v = mesh.pointL[i].pos;
      record.vertices.emplace_back(v[0], v[1], v[2]);
    }
    record.uvs.reserve(mesh.texels);
    for (unsigned i = 0; i < mesh.texels; ++i) {
      record.uvs.emplace_back(mesh.texelL[i][0], mesh.texelL[i][1]);
    }
    record.normals = normals_of(mesh);
  }

  /// Normals come from the faces as lib3ds read them, whatever nodes did to the points since.
  const std::vector<vec3>& normals_of(Lib3dsMesh& mesh) {
    const auto [place, is_new] = normals_.try_emplace(&mesh);
    if (is_new) tds_vertex_normals(mesh, place->second);
    return place->second;
  }

  void copy_faces(const Lib3dsMesh& mesh, MeshRecord& record) {
    record.faces.resize(mesh.faces);
    for (unsigned i = 0; i < mesh.faces; ++i) {
      const Lib3dsFace& face = mesh.faceL[i];
      std::memcpy(record.faces[i].corners, face.points, sizeof(face.points));
      const auto found = materials_.find(face.material);
      record.faces[i].material = found == materials_.end() ? NO_MATERIAL : found->second;
    }
  }

  MaterialIndex materials_;
  std::unordered_map<std::string_view, Lib3dsMesh*> meshes_;
  std::unordered_map<const Lib3dsMesh*, std::vector<vec3>> normals_;
  std::vector<MeshRecord>& records_;
  std::size_t vertices_left_ = MAX_FURTHER_ELEMENTS;
  std::size_t faces_left_ = MAX_FURTHER_ELEMENTS;
  std::size_t dropped_nodes_ = 0;
};

// ---- into the model --------------------------------------------------------------------------

void fill_material(Material& material, const MaterialRecord& record) {
  const vec4 &a = record.ambient, &d = record.diffuse, &s = record.specular;
  material.set_ambient(a.x, a.y, a.z, 1.0f);
  material.set_diffuse(d.x, d.y, d.z, 1.0f);
  material.set_specular(s.x, s.y, s.z, 1.0f);
  material.set_shininess(detail::usable_shininess(record.shininess));
  material.set_opacity(record.opacity);
  if (!record.texture_name.empty()) {
    material.async_loading_add_texture_filename(record.texture_name.c_str());
  }
}

/// A known material keeps its values, and its record stays without one, so that the faces that use
/// it fall to the default of their mesh.
void build_materials(Model* model, std::vector<MaterialRecord>& records) {
  detail::SharedMaterials shared;
  detail::ModelMaterials model_materials(model);
  for (MaterialRecord& record : records) {
    const detail::SharedMaterials::Found found = shared.find_or_create(record.name);
    model_materials.add(found.material);
    if (!found.created) continue;
    record.material = found.material;
    fill_material(*found.material, record);
  }
}

void fill_vertices(MeshData& data, const MeshRecord& record) {
  AttribAccess positions(data, VERTEX_ATTRIB_POSITION);
  AttribAccess uvs(data, VERTEX_ATTRIB_UV0);
  AttribAccess normals(data, VERTEX_ATTRIB_NORMAL);
  for (unsigned i = 0; i < record.vertices.size(); ++i) {
    positions.set(i, y_up(record.vertices[i]));
    if (i < record.uvs.size()) uvs.set(i, vec4(record.uvs[i].x, record.uvs[i].y, 0.0f, 1.0f));
    if (i < record.normals.size()) normals.set(i, y_up(record.normals[i]));
  }
}

/// The array of face normals takes the vertex normal of the same index, along the file's axes.
/// Drawing never reads it; compute_faces_normal makes true ones.
void fill_face_normals(vec4* face_normals, const MeshRecord& record) {
  if (!face_normals) return;
  for (std::size_t i = 0; i < record.faces.size(); ++i) {
    const bool stored = i < record.normals.size();
    face_normals[i] = vec4(stored ? record.normals[i] : vec3(0.0f, 0.0f, 0.0f));
  }
}

void fill_face_materials(Mesh& mesh, const MeshRecord& record,
                         const std::vector<MaterialRecord>& materials, Material* standard) {
  unsigned int* ids = mesh.get_mesh_data()->get_face_materials_ptr();
  std::vector<bool> added(materials.size() + 1);  // the last one stands for the default
  for (std::size_t i = 0; i < record.faces.size(); ++i) {
    std::size_t index = static_cast<std::size_t>(record.faces[i].material);
    Material* material = index < materials.size() ? materials[index].material : nullptr;
    if (!material) {
      index = materials.size();
      material = standard;
    }
    if (ids) ids[i] = static_cast<unsigned int>(material->get_id());
    if (!added[index]) mesh.add_material(material, nullptr);
    added[index] = true;
  }
}

void fill_faces(MeshData& data, const MeshRecord& record) {
  FaceAccess faces(data);
  for (unsigned i = 0; i < record.faces.size(); ++i) {
    const Lib3dsWord* corners = record.faces[i].corners;
    faces.set(i, corners[0], corners[1], corners[2]);
  }
  fill_face_normals(data.get_face_normals_ptr(), record);
}

/// False when there is too little memory.
bool build_mesh(Model& model, const MeshRecord& record,
                const std::vector<MaterialRecord>& materials) {
  if (record.vertices.size() < 3 || record.faces.empty()) return true;
  Mesh* mesh = model.create_mesh();
  mesh->set_name(record.name.c_str());
  mesh->set_vertex_alloc_params_num_vertices(static_cast<unsigned int>(record.vertices.size()));
  if (!mesh->alloc_vertex_data() ||
      !mesh->alloc_face_data(static_cast<unsigned int>(record.faces.size()), false)) {
    mesh->release(nullptr, nullptr);
    return false;
  }
  fill_vertices(*mesh->get_mesh_data(), record);
  mesh->set_vertices_color(1.0f, 1.0f, 1.0f, 1.0f, nullptr);
  // Registered even when no face falls to it.
  Material* standard = MaterialMgr::get()->create_material(nullptr);
  fill_faces(*mesh->get_mesh_data(), record);
  fill_face_materials(*mesh, record, materials, standard);
  model.add_child(mesh);
  return true;
}

void build_camera(Scene& scene, const CameraRecord& record) {
  Camera* camera = scene.camera_create();
  if (!camera) return;
  CameraData& data = CameraData::of(*camera);
  const CameraData::Planes planes = CameraData::usable_file_planes(record.znear, record.zfar);
  camera->build_projection_persp_v2(record.fov, true, CAMERA_ASPECT, planes.znear, planes.zfar,
                                    true);
  // The camera tells the planes of the file, also when its matrix could not be made from them.
  data.znear = record.znear;
  data.zfar = record.zfar;
  data.planes_from_file = true;
  camera->set_position(record.position);
  camera->set_lookat(record.target);
}

/// Reads the file at `path` in its clean form. Null, with the reason in the log, when it is none.
TdsPtr open_file(Plugin& log, const std::string& path, bool* has_nodes) {
  std::vector<unsigned char> bytes;
  const char* fault = nullptr;
  if (!detail::read_whole_file(path.c_str(), bytes, &fault)) {
    log.tracef_debug("can't read %s: %s", path.c_str(), fault);
    return nullptr;
  }
  TdsFile clean;
  if (!tds_clean(bytes.data(), bytes.size(), clean)) {
    log.tracef_debug("%s: not a whole 3DS file: %s at byte %zu", path.c_str(), clean.fault,
                     clean.fault_at);
    return nullptr;
  }
  if (clean.dropped_faces + clean.dropped_objects > 0) {
    log.tracef_debug("%s: left out %zu damaged faces and %zu damaged objects", path.c_str(),
                     clean.dropped_faces, clean.dropped_objects);
  }
  *has_nodes = clean.has_nodes;
  TdsPtr file = tds_parse(clean);
  if (!file) log.tracef_debug("%s: lib3ds cannot read it", path.c_str());
  return file;
}

/// Reads what is asked for out of a file. False when the file cannot be read.
bool read_records(Plugin& log, const std::string& path, bool materials, bool meshes, bool cameras,
                  Records& records) {
  bool has_nodes = false;
  const TdsPtr file = open_file(log, path, &has_nodes);
  if (!file) return false;
  if (materials) read_materials(*file, records.materials);
  if (meshes) {
    if (!has_nodes) create_nodes(*file);
    lib3ds_file_eval(file.get(), 0.0f);
    MeshReader reader(*file, records.meshes);
    reader.walk(file->nodes);
    if (reader.dropped_nodes() > 0) {
      log.tracef_debug("%s: too many vertices, left out %zu nodes", path.c_str(),
                       reader.dropped_nodes());
    }
  }
  if (cameras) read_cameras(*file, records.cameras);
  return true;
}

void build_meshes(Plugin& log, Model& model, const Records& records) {
  for (const MeshRecord& record : records.meshes) {
    if (build_mesh(model, record, records.materials)) continue;
    log.tracef_debug("no memory for mesh %s", record.name.c_str());
  }
}

}  // namespace

// ---- loader ----------------------------------------------------------------------------------

Loader3D_Lib3ds::Loader3D_Lib3ds() {
  set_name("ORV_plugin_core_lib3ds");
  set_description("Lib3ds loader (core plugin).");
  set_author(CORE_AUTHOR);
  set_build_info(detail::loader_build_info().c_str());
  set_version(0, 1, 0);
}

Loader3D_Lib3ds::~Loader3D_Lib3ds() = default;

bool Loader3D_Lib3ds::load_model(Model* model, const char* filename) {
  if (!model || !detail::ends_in_letters(filename, "3ds")) return false;
  Records records;
  const std::string path = std::string(get_model_dir()) + filename;
  if (!read_records(*this, path, true, true, false, records)) return false;
  build_materials(model, records.materials);
  build_meshes(*this, *model, records);
  return true;
}

bool Loader3D_Lib3ds::load_scene(Scene* scene, const char* filename, const char* what) {
  if (!scene || !detail::ends_in_letters(filename, "3ds")) return false;
  const char* wanted = what ? what : "";
  const bool materials = std::strstr(wanted, "material") != nullptr;
  const bool meshes = std::strstr(wanted, "mesh") != nullptr;
  const bool cameras = std::strstr(wanted, "camera") != nullptr;

  Records records;
  const std::string path = std::string(get_model_dir()) + filename;
  if (!read_records(*this, path, materials, meshes, cameras, records)) return false;
  Model* model = meshes ? scene->model_create() : nullptr;
  build_materials(model, records.materials);
  if (model) build_meshes(*this, *model, records);
  for (const CameraRecord& record : records.cameras) build_camera(*scene, record);
  return true;
}

}  // namespace orv
