#include <orv/scene/light.h>

#include <orv/render/renderer.h>
#include <orv/scene/tripod.h>

#include <cstdio>
#include <cstring>

namespace orv {

namespace {

char* copy_text(const char* text) {
  if (!text) return nullptr;
  const std::size_t size = std::strlen(text) + 1;
  char* copy = new char[size];
  std::memcpy(copy, text, size);
  return copy;
}

void replace_text(char*& owned, const char* text) {
  // Copied first: the new text may be the old one.
  char* copy = copy_text(text);
  delete[] owned;
  owned = copy;
}

/// Name of a light's uniform: base name, "_", index.
struct UniformName {
  UniformName(const char* base, unsigned int index) {
    std::snprintf(text, sizeof(text), "%s_%d", base, static_cast<int>(index));
  }
  char text[128];
};

}  // namespace

// ---- LightData ------------------------------------------------------------------------------

LightData::LightData()
    : position_uniform_name(copy_text("orv_light_position")),
      radius_uniform_name(copy_text("orv_light_radius")),
      ambient_uniform_name(copy_text("orv_light_ambient")),
      diffuse_uniform_name(copy_text("orv_light_diffuse")),
      specular_uniform_name(copy_text("orv_light_specular")) {}

LightData::~LightData() {
  delete[] position_uniform_name;
  delete[] radius_uniform_name;
  delete[] ambient_uniform_name;
  delete[] diffuse_uniform_name;
  delete[] specular_uniform_name;
}

// ---- Light ----------------------------------------------------------------------------------

Light::Light() : data_(new LightData) { set_type(NODE_TYPE_LIGHT); }

Light::~Light() { delete data_; }

void Light::set_index(unsigned int index) { data_->index = index; }

unsigned int Light::get_index() const { return data_->index; }

void Light::set_ambient(const vec4& color) { data_->ambient = color; }

void Light::set_ambient(float r, float g, float b, float a) { data_->ambient = vec4(r, g, b, a); }

const vec4& Light::get_ambient() const { return data_->ambient; }

void Light::set_diffuse(const vec4& color) { data_->diffuse = color; }

void Light::set_diffuse(float r, float g, float b, float a) { data_->diffuse = vec4(r, g, b, a); }

const vec4& Light::get_diffuse() const { return data_->diffuse; }

void Light::set_specular(const vec4& color) { data_->specular = color; }

void Light::set_specular(float r, float g, float b, float a) { data_->specular = vec4(r, g, b, a); }

const vec4& Light::get_specular() const { return data_->specular; }

void Light::set_radius(float radius) { data_->radius = radius; }

float Light::get_radius() const { return data_->radius; }

void Light::set_position_uniform_name(const char* name) {
  replace_text(data_->position_uniform_name, name);
}

const char* Light::get_position_uniform_name() const { return data_->position_uniform_name; }

void Light::set_radius_uniform_name(const char* name) {
  replace_text(data_->radius_uniform_name, name);
}

const char* Light::get_radius_uniform_name() const { return data_->radius_uniform_name; }

void Light::set_ambient_uniform_name(const char* name) {
  replace_text(data_->ambient_uniform_name, name);
}

const char* Light::get_ambient_uniform_name() const { return data_->ambient_uniform_name; }

void Light::set_diffuse_uniform_name(const char* name) {
  replace_text(data_->diffuse_uniform_name, name);
}

const char* Light::get_diffuse_uniform_name() const { return data_->diffuse_uniform_name; }

void Light::set_specular_uniform_name(const char* name) {
  replace_text(data_->specular_uniform_name, name);
}

const char* Light::get_specular_uniform_name() const { return data_->specular_uniform_name; }

void Light::enable_fixed_pipeline(bool state) { data_->fixed_pipeline = state; }

LightData* Light::get_light_data() const { return data_; }

void Light::bind(Renderer* renderer) {
  if (!renderer) return;
  const LightData& d = *data_;
  if (d.fixed_pipeline) {
    renderer->light_set_colors(d.index, d.ambient, d.diffuse, d.specular);
    return;
  }
  GpuProgramData* program = renderer->get_current_gpu_program();
  if (!program) return;
  const auto send_vec4 = [&](const char* base, const vec4& v) {
    if (!base) return;
    renderer->gpu_program_set_uniform_4f(program, UniformName(base, d.index).text, v.x, v.y, v.z,
                                         v.w);
  };
  send_vec4(d.position_uniform_name, get_tripod()->get_position());
  if (d.radius_uniform_name) {
    renderer->gpu_program_set_uniform_1f(program, UniformName(d.radius_uniform_name, d.index).text,
                                         d.radius);
  }
  send_vec4(d.ambient_uniform_name, d.ambient);
  send_vec4(d.diffuse_uniform_name, d.diffuse);
  // Shaders written for these lights read the highlight colour from the ambient uniform, which it
  // overwrites here.
  send_vec4(d.ambient_uniform_name, d.specular);
}

}  // namespace orv
