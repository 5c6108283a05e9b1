/// @file
/// Picking: rays through pixels, and what they hit.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Makes rays from cameras and finds the triangles that they hit. Holds no state of its own.
///
/// The first ray at a mesh walks its faces. From the second on, as long as neither the geometry nor
/// the absolute transform changes, a search tree kept by the mesh answers where there are 8192
/// faces or more; the results are those of the walk to the bit. Above 131,072 faces there is one
/// exception: a ray that runs, to within rounding, in the plane of a face which it passes at a
/// distance and which is no part of a flat area. What the walk finds there is chance, and the tree
/// may find another face or none.
///
/// Changes are noticed through every operation that writes, marks or hands out pointers to
/// positions and faces. Code that writes to the arrays of GeometryCore by their fields marks them
/// afterwards, as for uploads: VertexAttribArray::update_needed,
/// GeometryCore::update_interleaved_vertex_array_set_state,
/// GeometryCore::ib_update_faces_list_set_state.
class ORV_API RayCaster {
 public:
  /// @name Rays through pixels
  /// @{

  /// The ray of a perspective camera through a pixel, in world space: from the near plane towards
  /// the far plane, with a direction of length 1 whose w is 0. A viewport narrower than two pixels
  /// gives a ray that is not finite. False for a null camera.
  /// @param camera  its viewport, field of view and planes are used
  /// @param x       pixels from the left edge of the window
  /// @param y       pixels from the top of the window
  /// @param ray     gets the ray
  static bool get_ray(Camera* camera, int x, int y, Ray& ray);
  /// The same for an orthographic camera, from its projection matrix as it stands.
  static bool get_ray_ortho_cam(Camera* camera, int x, int y, Ray& ray);
  /// @}

  /// @name Places in the viewport
  /// @{

  /// Where an object appears: x and y in pixels from the lower left corner of the window, z the
  /// depth from 0 to 1; w of `out` stays. Brings the camera's matrices up to date.
  ///
  /// Two habits stand: the object's position counts twice, since its absolute transform is applied
  /// to its local position, and nothing is divided by w, so that the result is right only for an
  /// object at its parent's origin under an orthographic camera. False for null.
  static bool project_object_position_into_viewport(Camera* camera, Object* object, vec4& out);
  /// The same from matrices: projection * view * model applied to `position`, all four lanes. True.
  static bool project_object_position_into_viewport_v2(const mat4& projection, const mat4& view,
                                                       const Viewport& viewport, const mat4& model,
                                                       const vec4& position, vec4& out);
  /// @}

  /// @name Hits
  /// A ray hits both sides of a face, and only what lies ahead of its origin. The nearest face is
  /// taken, of equally near ones that with the lowest index; with `result.first_hit_only` the face
  /// with the lowest index, however far. Faces of a generic index list are not hit.
  ///
  /// The sphere test leaves out meshes whose global bounding sphere is missed by the whole line,
  /// also behind the origin. It takes the sphere as it was updated last.
  ///
  /// False when nothing is hit. `intersected` and `distance` tell that too, except for a null
  /// object, one that is no Mesh and one without vertices or faces, which leave the result
  /// untouched, and for the sphere test, which clears `intersected` alone.
  /// @{

  /// With the sphere test.
  static bool cast_ray_object(const Ray& ray, Object* object, RayObjectIntersection& result);
  /// False for null and for an object that is no Mesh.
  static bool cast_ray_object_v2(const Ray& ray, Object* object, RayObjectIntersection& result,
                                 bool sphere_test);
  /// With the sphere test.
  static bool _cast_ray_mesh(const Ray& ray, Mesh* mesh, RayObjectIntersection& result);
  /// False for null and for a mesh without vertices or faces.
  static bool _cast_ray_mesh_v2(const Ray& ray, Mesh* mesh, RayObjectIntersection& result,
                                bool sphere_test);
  /// @}
};

}  // namespace orv
