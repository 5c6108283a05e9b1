#include <orv/scene/ray_caster.h>

#include <orv/geometry/mesh.h>
#include <orv/math/mat4.h>
#include <orv/math/math.h>
#include <orv/math/ray.h>
#include <orv/scene/camera.h>
#include <orv/scene/ray_object_intersection.h>
#include <orv/scene/viewport.h>

#include <cstdint>

#include "geometry/mesh_ray_cache.h"

namespace orv {

// ---- rays through pixels ----------------------------------------------------------------------

namespace {

/// A pixel counted in halves of the viewport, from its left edge and its upper edge. A viewport
/// without size gives what is not finite.
struct PixelInHalves {
  float x;
  float y;

  PixelInHalves(const Viewport& viewport, int pixel_x, int pixel_y)
      : x(distance(pixel_x, viewport.x) / whole_half(viewport.width)),
        y(distance(pixel_y, viewport.y) / whole_half(viewport.height)) {}

  static float whole_half(int size) {
    const int half = size / 2;
    return static_cast<float>(half);
  }

  static float distance(int to, int from) {
    return static_cast<float>(static_cast<std::int64_t>(to) - from);
  }
};

Ray ray_between(const vec4& near, const vec4& far) {
  vec4 direction = far - near;
  direction.normalize();
  return Ray(near, direction);
}

}  // namespace

bool RayCaster::get_ray(Camera* camera, int x, int y, Ray& ray) {
  if (!camera) return false;
  const PixelInHalves pixel(camera->get_viewport(), x, y);
  const float tangent = camera->get_tanfovdiv2();
  const float u = (1.0f - pixel.x) * camera->get_aspect() * tangent;
  const float v = (pixel.y - 1.0f) * tangent;
  const float znear = camera->get_znear();
  const float zfar = camera->get_zfar();
  const mat4& to_world = camera->get_inv_view_matrix();
  ray = ray_between(to_world * vec4(-znear * u, -znear * v, -znear, 1.0f),
                    to_world * vec4(-zfar * u, -zfar * v, -zfar, 1.0f));
  return true;
}

bool RayCaster::get_ray_ortho_cam(Camera* camera, int x, int y, Ray& ray) {
  if (!camera) return false;
  const PixelInHalves pixel(camera->get_viewport(), x, y);
  mat4 to_world = camera->get_projection_matrix() * camera->get_view_matrix();
  to_world.inverse();
  const auto at_depth = [&](float depth) {
    const vec4 p = to_world * vec4(pixel.x - 1.0f, 1.0f - pixel.y, depth, 1.0f);
    return vec4(p.x / p.w, p.y / p.w, p.z / p.w, 1.0f);
  };
  ray = ray_between(at_depth(-1.0f), at_depth(1.0f));
  return true;
}

// ---- places in the viewport -------------------------------------------------------------------

bool RayCaster::project_object_position_into_viewport(Camera* camera, Object* object, vec4& out) {
  if (!camera || !object) return false;
  camera->update_projection_matrix();
  camera->update_view_matrix();
  return project_object_position_into_viewport_v2(
      camera->get_projection_matrix(), camera->get_view_matrix(), camera->get_viewport(),
      object->get_absolute_transform(), object->get_position(), out);
}

bool RayCaster::project_object_position_into_viewport_v2(const mat4& projection, const mat4& view,
                                                         const Viewport& viewport,
                                                         const mat4& model, const vec4& position,
                                                         vec4& out) {
  const vec4 p = projection * view * model * position;
  out.x = (p.x + 1.0f) * static_cast<float>(viewport.width) * 0.5f + static_cast<float>(viewport.x);
  out.y =
      (p.y + 1.0f) * static_cast<float>(viewport.height) * 0.5f + static_cast<float>(viewport.y);
  out.z = (p.z + 1.0f) * 0.5f;
  return true;
}

// ---- hits -------------------------------------------------------------------------------------

bool RayCaster::cast_ray_object(const Ray& ray, Object* object, RayObjectIntersection& result) {
  return cast_ray_object_v2(ray, object, result, true);
}

bool RayCaster::cast_ray_object_v2(const Ray& ray, Object* object, RayObjectIntersection& result,
                                   bool sphere_test) {
  if (!object || !object->is_type_of(NODE_TYPE_MESH)) return false;
  // The type stack is open to hosts, so that it is not the last word.
  return _cast_ray_mesh_v2(ray, dynamic_cast<Mesh*>(object), result, sphere_test);
}

bool RayCaster::_cast_ray_mesh(const Ray& ray, Mesh* mesh, RayObjectIntersection& result) {
  return _cast_ray_mesh_v2(ray, mesh, result, true);
}

bool RayCaster::_cast_ray_mesh_v2(const Ray& ray, Mesh* mesh, RayObjectIntersection& result,
                                  bool sphere_test) {
  if (!mesh || !mesh->get_mesh_data()) return false;
  if (mesh->get_num_vertices(nullptr) == 0 || mesh->get_num_faces(nullptr) == 0) return false;
  if (sphere_test && !Math::check_ray_sphere_intersection(
                         ray.origin, ray.direction, mesh->get_global_bounding_sphere_center(),
                         mesh->get_global_bounding_sphere_radius())) {
    result.intersected = false;
    return false;
  }
  const RayHit hit = mesh->ray_cache().cast(ray, *mesh->get_mesh_data(),
                                            mesh->get_absolute_transform(), result.first_hit_only);
  result.face = hit.face;
  result.distance = hit.distance;
  result.intersected = hit.hit;
  if (!hit.hit) return false;
  result.object = mesh;
  result.point.x = ray.origin.x + ray.direction.x * hit.distance;
  result.point.y = ray.origin.y + ray.direction.y * hit.distance;
  result.point.z = ray.origin.z + ray.direction.z * hit.distance;
  return true;
}

}  // namespace orv
