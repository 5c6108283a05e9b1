#include <orv/scene/ray_caster.h>

#include <orv/geometry/mesh.h>
#include <orv/geometry/polyline.h>
#include <orv/geometry/primitives/mesh_box.h>
#include <orv/geometry/primitives/mesh_plane.h>
#include <orv/geometry/primitives/mesh_sphere.h>
#include <orv/geometry/primitives/mesh_torus.h>
#include <orv/math/math.h>
#include <orv/math/ray.h>
#include <orv/scene/camera.h>
#include <orv/scene/ray_object_intersection.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "geometry/mesh_support.h"
#include "support/held.h"

namespace orv {
namespace {

using test::Held;

/// The rule itself, face by face.
RayObjectIntersection walk(const Ray& ray, Mesh& mesh, bool first_hit_only) {
  RayObjectIntersection result;
  MeshData& data = *mesh.get_data();
  const mat4 m = mesh.get_absolute_transform();
  float best = 1e13f;
  for (unsigned int i = 0; i < data.get_num_faces(); ++i) {
    const bool narrow = data.get_index_bits() == 16;
    if (narrow ? !data.faces_u16 : !data.faces_u32) continue;
    const FaceU32 face =
        narrow ? FaceU32(data.faces_u16[i].a, data.faces_u16[i].b, data.faces_u16[i].c)
               : data.faces_u32[i];
    const vec4 a = m * vec4(data.get_position(face.a));
    const vec4 b = m * vec4(data.get_position(face.b));
    const vec4 c = m * vec4(data.get_position(face.c));
    float t = 0.0f;
    if (!Math::ray_triangle_intersection(ray.origin, ray.direction, a, b, c, &t)) continue;
    if (!(t > 0.0f)) continue;
    if (t < best) {
      best = t;
      result.face = i;
      result.intersected = true;
    }
    if (first_hit_only) break;
  }
  result.distance = best;
  if (!result.intersected) return result;
  result.object = &mesh;
  result.point.x = ray.origin.x + ray.direction.x * best;
  result.point.y = ray.origin.y + ray.direction.y * best;
  result.point.z = ray.origin.z + ray.direction.z * best;
  return result;
}

bool same_bits(float a, float b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

::testing::AssertionResult agrees_with_the_walk(const Ray& ray, Mesh& mesh, bool first_hit_only) {
  const RayObjectIntersection expected = walk(ray, mesh, first_hit_only);
  RayObjectIntersection found;
  found.first_hit_only = first_hit_only;
  const bool hit = RayCaster::cast_ray_object_v2(ray, &mesh, found, false);
  if (hit == expected.intersected && found.intersected == hit && found.face == expected.face &&
      found.object == expected.object && same_bits(found.distance, expected.distance) &&
      same_bits(found.point.x, expected.point.x) && same_bits(found.point.y, expected.point.y) &&
      same_bits(found.point.z, expected.point.z)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure()
         << "face " << found.face << " at " << found.distance << ", the walk finds "
         << expected.face << " at " << expected.distance;
}

vec4 random_point(float size) {
  return vec4(Math::rnd(-size, size), Math::rnd(-size, size), Math::rnd(-size, size));
}

Ray random_ray(float size) {
  const vec4 from = random_point(3.0f * size);
  vec4 way = random_point(size) - from;
  way.normalize();
  return Ray(from, way);
}

void expect_random_rays_agree(Mesh& mesh, float size, int count) {
  for (int i = 0; i < count; ++i) {
    ASSERT_TRUE(agrees_with_the_walk(random_ray(size), mesh, i % 4 == 3)) << "ray " << i;
  }
}

/// Enough faces for a search tree.
constexpr unsigned int MANY = 8500;

/// Triangles of random corners.
void give_soup(Mesh& mesh, unsigned int faces, float size, float edge,
               test::VertexForm form = test::VertexForm::SEPARATE) {
  std::vector<vec3> corners;
  for (unsigned int i = 0; i < faces; ++i) {
    const vec3 middle = random_point(size).get_vec3();
    for (int k = 0; k < 3; ++k) corners.push_back(middle + random_point(edge).get_vec3());
  }
  test::give_triangles(mesh, corners, form);
}

const Ray DOWN_Z(vec4(0.25f, 0.25f, 10, 1), vec4(0, 0, -1, 0));

/// Two triangles across the z axis, the farther one first.
class RayCasterHits : public ::testing::Test {
 protected:
  RayCasterHits() {
    test::give_triangles(*mesh, {vec3(-1, -1, 2), vec3(3, -1, 2), vec3(-1, 3, 2), vec3(-1, -1, 5),
                                 vec3(-1, 3, 5), vec3(3, -1, 5)});
  }
  bool cast(const Ray& ray) { return RayCaster::cast_ray_object_v2(ray, mesh, result, false); }

  Held<Mesh> mesh;
  RayObjectIntersection result;
};

// ---- what is not hit ----

TEST_F(RayCasterHits, OnlyMeshesAreHit) {
  result.distance = 5;
  EXPECT_FALSE(RayCaster::cast_ray_object(DOWN_Z, nullptr, result));
  const Held<Object> object;
  EXPECT_FALSE(RayCaster::cast_ray_object(DOWN_Z, object, result));
  EXPECT_FALSE(RayCaster::_cast_ray_mesh(DOWN_Z, nullptr, result));
  EXPECT_EQ(result.distance, 5.0f);
}

TEST_F(RayCasterHits, APolylineIsNotHit) {
  const Held<Polyline> line;
  EXPECT_FALSE(RayCaster::cast_ray_object(DOWN_Z, line, result));
}

TEST_F(RayCasterHits, AnObjectThatOnlyCallsItselfAMeshIsNotHit) {
  class Pretender : public Object {
   public:
    Pretender() { set_type(NODE_TYPE_MESH); }
  };
  const Held<Pretender> object;
  EXPECT_FALSE(RayCaster::cast_ray_object(DOWN_Z, object, result));
}

TEST_F(RayCasterHits, AMeshWithoutFacesLeavesTheResult) {
  mesh->get_data()->free_face_data();
  result.intersected = true;
  result.distance = 5;
  EXPECT_FALSE(cast(DOWN_Z));
  EXPECT_EQ(result.distance, 5.0f);
  EXPECT_TRUE(result.intersected);
  mesh->cleanup_mesh_data(nullptr);
  EXPECT_FALSE(cast(DOWN_Z));
}

TEST_F(RayCasterHits, AGenericIndexListIsNotWalked) {
  mesh->get_data()->free_face_data();
  mesh->alloc_face_data_v2(6, MESH_FACE_TRIANGLE_LIST);
  for (unsigned int i = 0; i < 6; ++i) mesh->get_data()->get_indices_ptr()[i] = i;
  EXPECT_FALSE(cast(DOWN_Z));
  EXPECT_EQ(result.distance, 1e13f);
  EXPECT_FALSE(result.intersected);
}

TEST_F(RayCasterHits, AMissGivesTheFarthestDistanceAndFaceZero) {
  result.face = 9;
  result.intersected = true;
  EXPECT_FALSE(cast(Ray(vec4(50, 0, 10, 1), vec4(0, 0, -1, 0))));
  EXPECT_EQ(result.distance, 1e13f);
  EXPECT_EQ(result.face, 0u);
  EXPECT_FALSE(result.intersected);
  EXPECT_EQ(result.object, nullptr);
}

TEST_F(RayCasterHits, FacesPastTheVerticesMeetTheOrigin) {
  mesh->set_face_indexes(0, 0, 1, 60000);
  mesh->set_face_indexes(1, 65535, 65535, 65535);
  EXPECT_TRUE(agrees_with_the_walk(DOWN_Z, *mesh, false));
  EXPECT_TRUE(agrees_with_the_walk(Ray(vec4(0, -0.25f, 10, 1), vec4(0, 0, -1, 0)), *mesh, false));
}

// ---- what is hit ----

TEST_F(RayCasterHits, NearestFaceIsTaken) {
  result.point.w = 3;
  ASSERT_TRUE(cast(DOWN_Z));
  EXPECT_TRUE(result.intersected);
  EXPECT_EQ(result.object, mesh.get());
  EXPECT_EQ(result.face, 1u);
  EXPECT_EQ(result.distance, 5.0f);
  EXPECT_EQ(result.point, vec4(0.25f, 0.25f, 5, 3));
}

TEST_F(RayCasterHits, FirstHitOnlyTakesTheFirstFaceNotTheNearest) {
  result.first_hit_only = true;
  ASSERT_TRUE(cast(DOWN_Z));
  EXPECT_EQ(result.face, 0u);
  EXPECT_EQ(result.distance, 8.0f);
}

TEST_F(RayCasterHits, FirstHitOnlyEndsAtAFaceThatIsTooFar) {
  mesh->set_vertex_position(0, vec4(-1e15f, -1e15f, -1e14f));
  mesh->set_vertex_position(1, vec4(3e15f, -1e15f, -1e14f));
  mesh->set_vertex_position(2, vec4(-1e15f, 3e15f, -1e14f));
  result.first_hit_only = true;
  EXPECT_FALSE(cast(DOWN_Z));
  EXPECT_EQ(result.distance, 1e13f);
  EXPECT_TRUE(agrees_with_the_walk(DOWN_Z, *mesh, true));
}

TEST_F(RayCasterHits, BothSidesOfATriangleAreHit) {
  EXPECT_TRUE(cast(DOWN_Z));
  EXPECT_TRUE(cast(Ray(vec4(0.25f, 0.25f, -10, 1), vec4(0, 0, 1, 0))));
  EXPECT_EQ(result.face, 0u);
}

TEST_F(RayCasterHits, NothingBehindTheOriginIsHit) {
  EXPECT_FALSE(cast(Ray(vec4(0.25f, 0.25f, 0, 1), vec4(0, 0, -1, 0))));
}

TEST_F(RayCasterHits, ARayFromInsideHitsTheFarWall) {
  const Held<MeshBox> box;
  box->build(nullptr);
  ASSERT_TRUE(
      RayCaster::cast_ray_object(Ray(vec4(0.1f, 0.2f, 0, 1), vec4(1, 0, 0, 0)), box, result));
  EXPECT_FLOAT_EQ(result.distance, 0.9f);
}

TEST_F(RayCasterHits, OfEquallyNearFacesTheFirstIsTaken) {
  const Held<MeshPlane> plane;
  plane->set_build_params(8, 8, 8, 8);
  plane->build(nullptr);
  // Straight at a vertex that six faces share, before and after there is a search tree.
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(agrees_with_the_walk(Ray(vec4(1, 5, 1, 1), vec4(0, -1, 0, 0)), *plane, false));
  }
}

TEST_F(RayCasterHits, DistanceCountsInLengthsOfTheDirection) {
  ASSERT_TRUE(cast(Ray(vec4(0.25f, 0.25f, 10, 1), vec4(0, 0, -2, 0))));
  EXPECT_EQ(result.distance, 2.5f);
}

TEST_F(RayCasterHits, TheTransformOfAllParentsCounts) {
  const Held<Object> parent;
  parent->set_position(100, 0, 0);
  parent->add_child(mesh);
  mesh->set_scale(2, 2, 2);
  EXPECT_FALSE(cast(DOWN_Z));
  ASSERT_TRUE(cast(Ray(vec4(100, 0, 20, 1), vec4(0, 0, -1, 0))));
  EXPECT_EQ(result.point, vec4(100, 0, 10, 1));
  parent->remove_child(mesh);
}

TEST_F(RayCasterHits, TheRayOfTheResultIsTheCallers) {
  result.ray = Ray(vec4(1, 1, 1, 1), vec4(2, 2, 2, 2));
  cast(DOWN_Z);
  EXPECT_EQ(result.ray.origin, vec4(1, 1, 1, 1));
}

// ---- the sphere test ----

TEST_F(RayCasterHits, SphereTestTakesTheStoredSphere) {
  mesh->bounding_volume_update(true, nullptr);
  ASSERT_TRUE(RayCaster::cast_ray_object(DOWN_Z, mesh, result));
  // Moved away from its sphere, which nobody updated.
  mesh->set_position(100, 0, 0);
  const Ray there(vec4(100.25f, 0.25f, 10, 1), vec4(0, 0, -1, 0));
  EXPECT_FALSE(RayCaster::_cast_ray_mesh(there, mesh, result));
  EXPECT_TRUE(RayCaster::_cast_ray_mesh_v2(there, mesh, result, false));
}

TEST_F(RayCasterHits, SphereTestClearsTheHitAlone) {
  mesh->bounding_volume_update(true, nullptr);
  result.intersected = true;
  result.distance = 5;
  EXPECT_FALSE(RayCaster::cast_ray_object(Ray(vec4(50, 0, 0, 1), vec4(0, 0, 1, 0)), mesh, result));
  EXPECT_FALSE(result.intersected);
  EXPECT_EQ(result.distance, 5.0f);
}

TEST_F(RayCasterHits, SphereTestTakesTheWholeLine) {
  mesh->bounding_volume_update(true, nullptr);
  // The sphere lies behind: the faces are looked at, and none is hit.
  EXPECT_FALSE(
      RayCaster::cast_ray_object(Ray(vec4(0.25f, 0.25f, 0, 1), vec4(0, 0, -1, 0)), mesh, result));
  EXPECT_EQ(result.distance, 1e13f);
}

// ---- the same as the walk ----

class RayCasterSearch : public ::testing::Test {
 protected:
  RayCasterSearch() { Math::srnd(20); }
  Held<Mesh> mesh;
};

TEST_F(RayCasterSearch, AgreesOnRandomTriangles) {
  for (const test::VertexForm form : test::ALL_FORMS) {
    const Held<Mesh> few;
    give_soup(*few, 301, 1.0f, 0.3f, form);
    expect_random_rays_agree(*few, 1.0f, 100);
    const Held<Mesh> many;
    give_soup(*many, MANY, 1.0f, 0.1f, form);
    expect_random_rays_agree(*many, 1.0f, 30);
  }
}

TEST_F(RayCasterSearch, AgreesUnderATransform) {
  give_soup(*mesh, MANY, 1.0f, 0.1f);
  mesh->set_orientation_euler_xyz(20, 40, 60);
  mesh->set_scale(1, 0.5f, 2);
  mesh->set_position(0.3f, 0.1f, -0.2f);
  expect_random_rays_agree(*mesh, 1.0f, 60);
}

TEST_F(RayCasterSearch, AgreesOnShapes) {
  const Held<MeshSphere> sphere;
  sphere->set_build_params(4, 70, 70);
  sphere->build(nullptr);
  ASSERT_GE(sphere->get_num_faces(nullptr), MANY);
  expect_random_rays_agree(*sphere, 4.0f, 60);
  const Held<MeshTorus> torus;
  torus->set_build_params(5, 2, 70);
  torus->build(nullptr);
  expect_random_rays_agree(*torus, 5.0f, 60);
}

TEST_F(RayCasterSearch, AgreesOnDegenerateFaces) {
  give_soup(*mesh, MANY, 1.0f, 0.2f);
  const float not_a_number = std::nanf("");
  for (unsigned int i = 0; i < MANY; ++i) {
    const vec4 a = mesh->get_vertex_position(3 * i);
    const vec4 b = mesh->get_vertex_position(3 * i + 1);
    switch (i % 8) {
      case 0:  // no area: two equal corners
        mesh->set_vertex_position(3 * i + i % 3, i % 3 == 0 ? b : a);
        break;
      case 1:  // no area: on one line
        mesh->set_vertex_position(3 * i + 2, a + (b - a) * Math::rnd(-1, 2));
        break;
      case 2:
        mesh->set_vertex_position(3 * i, vec4(not_a_number, a.y, a.z));
        break;
      case 3:
        mesh->set_vertex_position(3 * i + 1, vec4(a.x, std::numeric_limits<float>::infinity(), 0));
        break;
      case 4:
        mesh->set_vertex_position(3 * i + 2, vec4(1e20f, 1e20f, 1e20f));
        break;
      case 5:
        mesh->set_face_indexes(i, 3 * i, 65535, 3 * i + 2);
        break;
      case 6:  // a needle
        mesh->set_vertex_position(3 * i + 2, a + (b - a) * 0.5f + random_point(1e-5f));
        break;
      default:
        break;
    }
  }
  expect_random_rays_agree(*mesh, 1.0f, 60);
}

TEST_F(RayCasterSearch, AgreesOnRaysOfOddKinds) {
  give_soup(*mesh, MANY, 1.0f, 0.3f);
  const float infinity = std::numeric_limits<float>::infinity();
  const float odd[] = {0.0f, -0.0f, 1.0f, -1.0f, 1e-20f, 1e20f, std::nanf(""), infinity};
  for (int i = 0; i < 80; ++i) {
    const auto pick = [&] { return odd[static_cast<int>(Math::rnd(0, 8))]; };
    const Ray ray(i % 3 == 0 ? random_point(1) : vec4(pick(), pick(), pick()),
                  vec4(pick(), pick(), pick(), 0));
    ASSERT_TRUE(agrees_with_the_walk(ray, *mesh, i % 2 == 1)) << "ray " << i;
  }
}

TEST_F(RayCasterSearch, AgreesOnDataThatIsAskedByItsOperations) {
  test::use_counting_data(*mesh);
  give_soup(*mesh, 200, 1.0f, 0.3f);
  expect_random_rays_agree(*mesh, 1.0f, 100);
}

TEST_F(RayCasterSearch, AgreesOnPositionsOfThreeComponents) {
  mesh->get_data()->alloc_params.set_vertex_attrib_dim(0, 3);
  give_soup(*mesh, 200, 1.0f, 0.3f);
  expect_random_rays_agree(*mesh, 1.0f, 200);
}

TEST_F(RayCasterSearch, AllFacesAtOnePlaceAreSearched) {
  std::vector<vec3> corners;
  for (unsigned int i = 0; i < MANY; ++i) {
    corners.insert(corners.end(), {vec3(-1, -1, 0), vec3(1, -1, 0), vec3(0, 1, 0)});
  }
  test::give_triangles(*mesh, corners);
  expect_random_rays_agree(*mesh, 1.0f, 10);
}

/// Each way to change the mesh, with rays before and after it.
class RayCasterChanges : public RayCasterSearch {
 protected:
  void start(unsigned int faces, test::VertexForm form = test::VertexForm::SEPARATE) {
    give_soup(*mesh, faces, 1.0f, 0.1f, form);
    expect_random_rays_agree(*mesh, 1.0f, 5);
  }
  void expect_agreement() { expect_random_rays_agree(*mesh, 1.0f, 6); }
};

TEST_F(RayCasterChanges, OfPositionsAreNoticed) {
  start(MANY);
  for (unsigned int i = 0; i < 3 * MANY; i += 3) mesh->set_vertex_position(i, random_point(1));
  expect_agreement();
  mesh->scale_vertices_position(vec4(2, 3, 0.5f), nullptr);
  expect_agreement();
}

TEST_F(RayCasterChanges, OfInterleavedPositionsAreNoticed) {
  start(MANY, test::VertexForm::INTERLEAVED);
  for (unsigned int i = 0; i < 3 * MANY; i += 3) mesh->set_vertex_position(i, random_point(1));
  expect_agreement();
  for (unsigned int i = 0; i < 3 * MANY; i += 3) mesh->get_vertex(i)->position = random_point(1);
  expect_agreement();
}

TEST_F(RayCasterChanges, ThroughPointersAreNoticed) {
  start(MANY);
  vec4* positions = static_cast<vec4*>(mesh->get_data()->get_position_ptr());
  expect_random_rays_agree(*mesh, 1.0f, 5);
  for (unsigned int i = 0; i < 3 * MANY; i += 3) positions[i] = random_point(1);
  expect_agreement();
  FaceU16* faces = mesh->get_data()->get_faces_u16_ptr();
  expect_random_rays_agree(*mesh, 1.0f, 5);
  for (unsigned int i = 0; i < MANY; ++i) faces[i].a = static_cast<unsigned short>(i);
  expect_agreement();
}

TEST_F(RayCasterChanges, ThroughFieldsAreNoticedInMeshesOfModerateSize) {
  start(MANY);
  for (unsigned int i = 0; i < 3 * MANY; i += 3) {
    mesh->get_data()->attrib_arrays[0]->data_vec4[i] = random_point(1);
  }
  expect_agreement();
  for (unsigned int i = 0; i < MANY; ++i) {
    mesh->get_data()->faces_u16[i].b = static_cast<unsigned short>(i);
  }
  expect_agreement();
}

TEST_F(RayCasterChanges, ThroughFieldsAreNoticedWhenMarked) {
  start(MANY);
  for (unsigned int i = 0; i < 3 * MANY; i += 3) {
    mesh->get_data()->attrib_arrays[0]->data_vec4[i] = random_point(1);
  }
  mesh->get_data()->attrib_arrays[0]->update_needed(true);
  expect_agreement();
  for (unsigned int i = 0; i < MANY; ++i) {
    mesh->get_data()->faces_u16[i].b = static_cast<unsigned short>(i);
  }
  mesh->get_data()->ib_update_faces_list_set_state(true);
  expect_agreement();
}

TEST_F(RayCasterChanges, OfFacesAreNoticed) {
  start(MANY);
  for (unsigned int i = 0; i < MANY; ++i) mesh->set_face_indexes(i, i, i + 1, i + 4000);
  expect_agreement();
  mesh->flip_faces(nullptr);
  expect_agreement();
}

TEST_F(RayCasterChanges, OfTheTransformAreNoticed) {
  start(MANY);
  for (int i = 0; i < 4; ++i) {
    mesh->set_position(0.1f * static_cast<float>(i), 0, 0);
    expect_random_rays_agree(*mesh, 1.0f, 4);
  }
}

TEST_F(RayCasterChanges, OfAllGeometryAreNoticed) {
  start(MANY);
  give_soup(*mesh, MANY, 1.0f, 0.2f);
  expect_agreement();
  const Held<Mesh> other;
  give_soup(*other, MANY, 1.0f, 0.2f);
  mesh->share_mesh_data(nullptr, other);
  expect_agreement();
  mesh->free_mesh_data();
  RayObjectIntersection result;
  EXPECT_FALSE(RayCaster::cast_ray_object_v2(random_ray(1), mesh, result, false));
}

TEST_F(RayCasterChanges, CopiesOfAMeshSearchForThemselves) {
  start(MANY);
  const Held<Mesh> copy(*mesh);
  copy->set_position(1, 0, 0);
  expect_random_rays_agree(*copy, 1.0f, 6);
  expect_agreement();
}

}  // namespace
}  // namespace orv
