/// @file
/// A point light.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/math/vec4.h>
#include <orv/scene/object.h>

namespace orv {

/// The parameters of one light. The texts belong to the record, are made with new[] and may be
/// null.
struct ORV_API LightData {
  /// The values below; base names are "orv_light_position" and so on.
  LightData();
  ~LightData();
  LightData(const LightData&) = delete;
  LightData& operator=(const LightData&) = delete;

  unsigned int index = 0;                ///< number of the light
  float radius = 10000.0f;               ///< distance at which the light has faded to nothing
  char* position_uniform_name;           ///< base name, see Light::set_position_uniform_name
  char* radius_uniform_name;             ///< base name
  vec4 ambient{0.2f, 0.2f, 0.2f, 1.0f};  ///< RGBA, usually in 0 to 1
  char* ambient_uniform_name;  ///< base name, under which the specular colour goes out too
  vec4 diffuse{1.0f, 1.0f, 0.8f, 1.0f};   ///< RGBA, usually in 0 to 1
  char* diffuse_uniform_name;             ///< base name
  vec4 specular{0.6f, 0.6f, 0.6f, 1.0f};  ///< RGBA, usually in 0 to 1
  char* specular_uniform_name;            ///< kept, never sent
  bool fixed_pipeline = true;             ///< set colours of the fixed pipeline, not uniforms
};

/// An object that carries the parameters of one point light and sends them to the fixed pipeline or
/// to the current GPU program, as uniforms named by a base name, "_" and the light's index.
class ORV_API Light : public Object {
 public:
  /// At the origin, with the values of LightData.
  Light();
  ~Light() override;
  Light(const Light&) = delete;
  Light& operator=(const Light&) = delete;

  /// @{
  /// Number of the light, 0 at first: of the fixed pipeline, and at the end of the names of
  /// uniforms.
  void set_index(unsigned int index);
  unsigned int get_index() const;
  /// @}

  /// @{
  /// Ambient colour, RGBA, usually in 0 to 1; nothing is clamped.
  void set_ambient(const vec4& color);
  void set_ambient(float r, float g, float b, float a);
  const vec4& get_ambient() const;
  /// @}

  /// @{
  /// Diffuse colour, RGBA, usually in 0 to 1; nothing is clamped.
  void set_diffuse(const vec4& color);
  void set_diffuse(float r, float g, float b, float a);
  const vec4& get_diffuse() const;
  /// @}

  /// @{
  /// Specular colour, RGBA, usually in 0 to 1; nothing is clamped.
  void set_specular(const vec4& color);
  void set_specular(float r, float g, float b, float a);
  const vec4& get_specular() const;
  /// @}

  /// @{
  /// Distance at which the light has faded to nothing; not 0.
  void set_radius(float radius);
  float get_radius() const;
  /// @}

  /// Base names of the uniforms; a copy is kept. Null stops the uniform from being sent.
  void set_position_uniform_name(const char* name);
  /// The base name, owned by the light; null for none.
  const char* get_position_uniform_name() const;

  /// @{
  /// Base name of the radius.
  void set_radius_uniform_name(const char* name);
  const char* get_radius_uniform_name() const;
  /// @}

  /// The ambient and, after it, the specular colour go out under this name.
  void set_ambient_uniform_name(const char* name);
  /// The base name, owned by the light; null for none.
  const char* get_ambient_uniform_name() const;

  /// @{
  /// Base name of the diffuse colour.
  void set_diffuse_uniform_name(const char* name);
  const char* get_diffuse_uniform_name() const;
  /// @}

  /// Kept, never sent.
  void set_specular_uniform_name(const char* name);
  /// The base name, owned by the light; null for none.
  const char* get_specular_uniform_name() const;

  /// Whether bind sets the colours of the fixed pipeline in place of uniforms.
  void enable_fixed_pipeline(bool state);
  /// Sends the light. The fixed pipeline takes the three colours; the current program takes the
  /// local position, the radius and the colours. Nothing for a null renderer or without a program.
  void bind(Renderer* renderer);
  /// The record, owned by the light.
  LightData* get_light_data() const;

 private:
  LightData* data_;
};

}  // namespace orv
