#include <orv/loaders/loader3d.h>

#include <string>

namespace orv {

struct Loader3DData {
  std::string loader_name;
  std::string loader_description;
  std::string model_dir;
  std::string resource_dir;
};

namespace {

void set_text(std::string& field, const char* text) {
  if (text) field = text;
}

}  // namespace

Loader3D::Loader3D() : data_(new Loader3DData) { set_type(PLUGIN_TYPE_LOADER3D); }

Loader3D::~Loader3D() { delete data_; }

const char* Loader3D::get_loader_name() const { return data_->loader_name.c_str(); }

const char* Loader3D::get_loader_description() const { return data_->loader_description.c_str(); }

const char* Loader3D::get_model_dir() const { return data_->model_dir.c_str(); }

void Loader3D::set_model_dir(const char* directory) { set_text(data_->model_dir, directory); }

const char* Loader3D::get_resource_dir() const { return data_->resource_dir.c_str(); }

void Loader3D::set_resource_dir(const char* directory) { set_text(data_->resource_dir, directory); }

void Loader3D::set_loader_name(const char* name) { set_text(data_->loader_name, name); }

void Loader3D::set_loader_description(const char* description) {
  set_text(data_->loader_description, description);
}

}  // namespace orv
