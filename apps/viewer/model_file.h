#pragma once

#include <orv/fwd.h>

#include <memory>
#include <string>
#include <vector>

#include "viewer/framing.h"
#include "viewer/log_tap.h"

namespace viewer {

/// A piece of a model that is drawn with one material.
struct Part {
  orv::Mesh* mesh;
  int subset;               ///< of the mesh's material subsets; -1 for all of it
  orv::Material* material;  ///< null for none
};

/// A model of a file with everything that came with it. Loading needs no OpenGL: what is drawn
/// reaches the GPU with its first frame.
class ModelFile {
 public:
  struct Settings {
    std::string texture;      ///< for materials without one; "" for none
    bool whole_only = false;  ///< a file that can be read in part only is refused
  };

  /// Null with a reason, which names the file, when there is nothing to show.
  static std::unique_ptr<ModelFile> load(const std::string& path, const Settings& settings,
                                         LogTap& log, std::string* reason);
  ~ModelFile();
  ModelFile(const ModelFile&) = delete;
  ModelFile& operator=(const ModelFile&) = delete;

  /// Frees all of it; a renderer that drew it frees its buffers too. To be called once, before the
  /// library stops.
  void release(orv::Renderer* renderer);

  const std::string& get_path() const { return path_; }
  orv::Model* get_model() const { return model_; }
  const std::vector<Part>& get_parts() const { return parts_; }
  const Box& get_box() const { return box_; }
  unsigned int get_num_triangles() const { return num_triangles_; }
  unsigned int get_num_vertices() const { return num_vertices_; }
  double get_load_milliseconds() const { return load_milliseconds_; }
  /// Whether nothing of the file itself is broken; textures are files of their own.
  bool is_whole() const { return fault_.empty(); }
  /// What is missing though the model can be shown, in one line; "" for nothing.
  const std::string& get_warning() const { return warning_; }

 private:
  explicit ModelFile(const std::string& path) : path_(path) {}

  bool refuse(const std::string& what, std::string* reason) const;
  bool load_meshes(const Settings& settings, LogTap& log, std::string* reason);
  void read_model(bool whole_only, LogTap& log);
  void find_meshes(orv::Node& node);
  bool measure(std::string* reason);
  bool has_area() const;
  void add_normals();
  void make_parts();
  void load_named_textures(LogTap& log);
  void warn(const std::string& what);
  bool add_texture(const std::string& texture, std::string* reason);

  std::string path_;
  std::string folder_;
  orv::Model* model_ = nullptr;
  std::vector<orv::Mesh*> meshes_;
  std::vector<Part> parts_;
  std::vector<orv::Material*> materials_;
  std::vector<orv::Texture*> textures_;
  Box box_;
  unsigned int num_triangles_ = 0;
  unsigned int num_vertices_ = 0;
  double load_milliseconds_ = 0.0;
  std::string fault_;  ///< why only a part could be read; "" when all was
  std::string warning_;
};

}  // namespace viewer
