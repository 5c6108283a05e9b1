#include <orv/geometry/geometry_core.h>
#include <orv/geometry/mesh.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "geometry/geometry_support.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "support/near.h"

// Arrays of this program are allocated here, so that tests can let one of them fail.
namespace {

enum class Failure { NONE, BAD_ALLOC, UNKNOWN };
Failure failure = Failure::NONE;
int allocations_before_failure = 0;

void* allocate_array(std::size_t size) {
  if (failure != Failure::NONE && allocations_before_failure-- == 0) {
    if (failure == Failure::UNKNOWN) throw 42;
    throw std::bad_alloc();
  }
  void* block = std::malloc(size ? size : 1);
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

void* operator new[](std::size_t size) { return allocate_array(size); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace orv {
namespace {

using test::LogCapture;
using test::VertexForm;

/// Lets the allocation of an array fail while it lives, after some that succeed.
class FailingArrays {
 public:
  FailingArrays(Failure kind, int after) {
    allocations_before_failure = after;
    failure = kind;
  }
  ~FailingArrays() { failure = Failure::NONE; }
};

bool alloc_failing(GeometryCore& core, VertexForm form, Failure kind, int after) {
  test::use_form(core, form);
  core.alloc_params.num_vertices = 5;
  const FailingArrays failing(kind, after);
  return core.alloc_vertex_data();
}

TEST(GeometryCoreExhausted, VerticesThatDontFitAreReported) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  EXPECT_FALSE(alloc_failing(core, VertexForm::INTERLEAVED, Failure::BAD_ALLOC, 0));
  EXPECT_TRUE(log.contains(
      "Geometry core allocation failed - 5 vertices required - error: std::bad_alloc"));
}

TEST(GeometryCoreExhausted, UnknownFailureOfVerticesEndsWithADot) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  EXPECT_FALSE(alloc_failing(core, VertexForm::INTERLEAVED, Failure::UNKNOWN, 0));
  EXPECT_TRUE(
      log.contains("Geometry core allocation failed - 5 vertices required - unknown error."));
}

TEST(GeometryCoreExhausted, UnknownFailureOfAnArrayEndsWithoutADot) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  {
    const FailingArrays failing(Failure::UNKNOWN, 0);
    EXPECT_EQ(core.alloc_new_vertex_attrib_array(5), nullptr);
  }
  EXPECT_TRUE(
      log.contains("Geometry core allocation failed for vertex attrib array 1 - 5 vertices "
                   "required - unknown error"));
  EXPECT_FALSE(log.contains("unknown error."));
  EXPECT_EQ(core.num_attrib_arrays, 0u);
}

TEST(GeometryCoreExhausted, FailureAtAnyArrayLeavesASoundGeometry) {
  const LogCapture log;
  for (const VertexForm form : test::ALL_FORMS) {
    int after = 0;
    for (;; ++after) {
      GeometryCore core;
      const bool fits = alloc_failing(core, form, Failure::BAD_ALLOC, after);
      for (unsigned int i = 0; i < 6; ++i) {
        core.set_position(i, vec4(1, 1, 1, 1));
        core.get_color(i);
      }
      EXPECT_TRUE(core.free_vertex_data());
      EXPECT_EQ(core.num_attrib_arrays, 0u);
      if (fits) break;
    }
    EXPECT_EQ(after, test::is_separate(form) ? 5 : 2) << "standard attributes, then particles";
  }
}

TEST(GeometryCoreExhausted, FacesThatDontFitLeaveNone) {
  for (int after = 0; after < 3; ++after) {
    const LogCapture log(LOG_LEVEL_ERROR);
    GeometryCore core;
    core.alloc_face_data(4, false);
    {
      const FailingArrays failing(Failure::BAD_ALLOC, after);
      EXPECT_FALSE(core.alloc_face_data(7, false));
    }
    EXPECT_TRUE(log.contains("Geometry core - faces memory allocation failed: std::bad_alloc"));
    EXPECT_EQ(core.faces_u16, nullptr);
    EXPECT_EQ(core.num_faces, 0u);
  }
}

TEST(GeometryCoreExhausted, FacesThatAMeshMakesItselfAreReportedWithItsName) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const test::Held<Mesh> mesh;
  mesh->set_name("rock");
  mesh->set_vertex_alloc_params_num_vertices(6);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  {
    const FailingArrays failing(Failure::BAD_ALLOC, 0);
    EXPECT_FALSE(mesh->compute_faces_normal(nullptr));
  }
  EXPECT_EQ(log.count("Mesh rock - faces memory allocation failed."), 1);
  EXPECT_EQ(mesh->get_num_faces(nullptr), 0u);
}

TEST(GeometryCoreExhausted, ACopyWithoutItsFacesFails) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const test::Held<Mesh> source;
  source->set_vertex_alloc_params_num_vertices(3);
  ASSERT_TRUE(source->alloc_vertex_data());
  ASSERT_TRUE(source->alloc_face_data(1, false));
  const test::Held<Mesh> copy;
  copy->set_name("rock");
  {
    const FailingArrays failing(Failure::BAD_ALLOC, 9);
    EXPECT_FALSE(copy->copy_geometry(source)) << "four arrays, the particles and four copies fit";
  }
  EXPECT_EQ(log.count("Mesh rock - faces memory allocation failed."), 1);
  EXPECT_EQ(copy->get_num_vertices(nullptr), 3u);
}

TEST(GeometryCoreExhausted, QuadEdgesAndSubsetsThatDontFitAreFalse) {
  const LogCapture log;
  GeometryCore core;
  const FailingArrays edges(Failure::BAD_ALLOC, 0);
  EXPECT_FALSE(core.alloc_quad_edge_data(8));
  EXPECT_EQ(core.num_quad_edges, 0u);
  const FailingArrays subsets(Failure::BAD_ALLOC, 0);
  EXPECT_FALSE(core.alloc_subsets(8));
  EXPECT_EQ(core.num_subsets, 0u);
}

}  // namespace
}  // namespace orv
