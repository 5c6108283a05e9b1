// Kernel: lighting of one vertex on the CPU, with the parameters of a Light.
#include <orv/core/kernel.h>

#include <orv/geometry/vertex.h>
#include <orv/gpu/material.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>
#include <orv/scene/light.h>
#include <orv/scene/object.h>

namespace orv {

namespace {

float clamp_to_unit(float v) {
  const float raised = v < 0.0f ? 0.0f : v;
  return raised > 1.0f ? 1.0f : raised;
}

/// What a light does to one vertex; without a light, all ones.
struct VertexLight {
  vec4 ambient{1.0f, 1.0f, 1.0f, 1.0f};
  vec4 diffuse{1.0f, 1.0f, 1.0f, 1.0f};
  float attenuation = 1.0f;
  float n_dot_l = 1.0f;
};

VertexLight light_vertex(const Vertex& vertex, const mat4& model, const Light& light,
                         const vec4& light_position) {
  VertexLight lit;
  lit.ambient = light.get_ambient();
  lit.diffuse = light.get_diffuse();
  vec4 to_vertex = model * vertex.position - light_position;
  const float distance = to_vertex.length();
  lit.attenuation = clamp_to_unit(1.0f - distance * (1.0f / light.get_radius()));
  to_vertex.normalize();
  // All four components: a normal with w 1 is moved by the translation too.
  vec4 normal = model * vertex.normal;
  normal.normalize();
  lit.n_dot_l = -to_vertex.x * normal.x - to_vertex.y * normal.y - to_vertex.z * normal.z;
  return lit;
}

void shade(const VertexLight& lit, const Vertex& vertex, const Material* material, bool clamp,
           vec4& color) {
  const vec4 material_ambient = material ? material->get_ambient() : vec4::ONE;
  const vec4 material_diffuse = material ? material->get_diffuse() : vec4::ONE;
  color = (material_ambient * vertex.color * lit.ambient +
           material_diffuse * lit.diffuse * lit.n_dot_l) *
          lit.attenuation;
  if (clamp) color.clamp(0.0f, 1.0f);
}

}  // namespace

bool Kernel::compute_object_vertex_color(Object* object, unsigned int vertex_index, vec4& color,
                                         Material* material, Light* light, bool clamp) {
  const Vertex* vertex = object ? object->get_vertex(vertex_index) : nullptr;
  if (!vertex) return false;
  VertexLight lit;
  if (light) {
    lit = light_vertex(*vertex, object->get_absolute_transform(), *light,
                       light->get_absolute_position());
  }
  shade(lit, *vertex, material, clamp, color);
  return true;
}

bool Kernel::compute_object_vertex_color_v2(Object* object, const mat4& transform,
                                            unsigned int vertex_index, vec4& color,
                                            Material* material, Light* light,
                                            const vec4& light_position, bool clamp) {
  const Vertex* vertex = object ? object->get_vertex(vertex_index) : nullptr;
  if (!vertex) return false;
  VertexLight lit;
  if (light) lit = light_vertex(*vertex, transform, *light, light_position);
  shade(lit, *vertex, material, clamp, color);
  return true;
}

}  // namespace orv
