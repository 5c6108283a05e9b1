#include <orv/geometry/geometry_core.h>

#include <gtest/gtest.h>

#include <vector>

#include "geometry/geometry_support.h"
#include "support/near.h"

namespace orv {
namespace {

using test::ALL_FORMS;
using test::alloc_vertices;
using test::VertexForm;

const vec4 ONE_TO_FOUR(1, 2, 3, 4);
const vec4 NOTHING(0, 0, 0, 1);

/// The operations of one standard attribute.
struct Attribute {
  const char* name;
  unsigned int array;
  bool (GeometryCore::*set)(unsigned int, const vec4&);
  vec4 (GeometryCore::*get)(unsigned int);
  unsigned int (GeometryCore::*size)();
  int (GeometryCore::*dim)();
  int (GeometryCore::*elt_size)();
  void* (GeometryCore::*ptr)();
  bool (GeometryCore::*update)(const void*);
  bool (GeometryCore::*update_sub)(const void*, unsigned int, unsigned int);
};

const Attribute STANDARD[] = {
    {"position", 0, &GeometryCore::set_position, &GeometryCore::get_position_4f,
     &GeometryCore::get_position_size, &GeometryCore::get_position_vector_dim,
     &GeometryCore::get_position_elt_size, &GeometryCore::get_position_ptr,
     &GeometryCore::update_position_buffer, &GeometryCore::update_position_subbuffer},
    {"uv0", 1, &GeometryCore::set_uv0, &GeometryCore::get_uv0, &GeometryCore::get_uv0_size,
     &GeometryCore::get_uv0_vector_dim, &GeometryCore::get_uv0_elt_size, &GeometryCore::get_uv0_ptr,
     &GeometryCore::update_uv0_buffer, &GeometryCore::update_uv0_subbuffer},
    {"normal", 2, &GeometryCore::set_normal, &GeometryCore::get_normal,
     &GeometryCore::get_normal_size, &GeometryCore::get_normal_vector_dim,
     &GeometryCore::get_normal_elt_size, &GeometryCore::get_normal_ptr,
     &GeometryCore::update_normal_buffer, &GeometryCore::update_normal_subbuffer},
    {"color", 3, &GeometryCore::set_color, &GeometryCore::get_color, &GeometryCore::get_color_size,
     &GeometryCore::get_color_vector_dim, &GeometryCore::get_color_elt_size,
     &GeometryCore::get_color_ptr, &GeometryCore::update_color_buffer,
     &GeometryCore::update_color_subbuffer},
};

TEST(GeometryCoreAttribs, SettersAndGettersWorkInEveryForm) {
  for (const VertexForm form : ALL_FORMS) {
    for (const Attribute& attribute : STANDARD) {
      GeometryCore core;
      ASSERT_TRUE(alloc_vertices(core, 3, form));
      EXPECT_TRUE((core.*attribute.set)(2, ONE_TO_FOUR)) << attribute.name;
      EXPECT_EQ((core.*attribute.get)(2), ONE_TO_FOUR) << attribute.name;
      EXPECT_EQ((core.*attribute.get)(1), NOTHING) << attribute.name;
    }
  }
}

TEST(GeometryCoreAttribs, OneAttributeDoesNotTouchAnother) {
  for (const VertexForm form : ALL_FORMS) {
    GeometryCore core;
    ASSERT_TRUE(alloc_vertices(core, 2, form));
    for (const Attribute& attribute : STANDARD) {
      const float x = static_cast<float>(attribute.array) + 1.0f;
      (core.*attribute.set)(1, vec4(x, x, x, x));
    }
    for (const Attribute& attribute : STANDARD) {
      EXPECT_EQ((core.*attribute.get)(1).x, static_cast<float>(attribute.array) + 1.0f);
    }
  }
}

TEST(GeometryCoreAttribs, IndexOfTheCountIsOutOfRange) {
  for (const VertexForm form : ALL_FORMS) {
    for (const Attribute& attribute : STANDARD) {
      GeometryCore core;
      ASSERT_TRUE(alloc_vertices(core, 3, form));
      EXPECT_FALSE((core.*attribute.set)(3, ONE_TO_FOUR)) << attribute.name;
      EXPECT_FALSE((core.*attribute.set)(0xFFFFFFFFu, ONE_TO_FOUR)) << attribute.name;
      EXPECT_EQ((core.*attribute.get)(3), NOTHING) << attribute.name;
    }
  }
}

TEST(GeometryCoreAttribs, WithoutVerticesNothingIsStored) {
  for (const Attribute& attribute : STANDARD) {
    GeometryCore core;
    EXPECT_FALSE((core.*attribute.set)(0, ONE_TO_FOUR));
    EXPECT_EQ((core.*attribute.get)(0), NOTHING);
    EXPECT_EQ((core.*attribute.size)(), 0u);
    EXPECT_EQ((core.*attribute.ptr)(), nullptr);
    EXPECT_EQ((core.*attribute.dim)(), 0);
  }
}

TEST(GeometryCoreAttribs, SizesAndPointersBelongToSeparateArrays) {
  for (const Attribute& attribute : STANDARD) {
    GeometryCore separate;
    ASSERT_TRUE(alloc_vertices(separate, 3));
    EXPECT_EQ((separate.*attribute.size)(), 48u);
    EXPECT_EQ((separate.*attribute.ptr)(), separate.attrib_arrays[attribute.array]->data);
    GeometryCore interleaved;
    ASSERT_TRUE(alloc_vertices(interleaved, 3, VertexForm::INTERLEAVED));
    EXPECT_EQ((interleaved.*attribute.size)(), 0u);
    EXPECT_EQ((interleaved.*attribute.ptr)(), nullptr);
    for (GeometryCore* core : {&separate, &interleaved}) {
      EXPECT_EQ((core->*attribute.dim)(), 4);
      EXPECT_EQ((core->*attribute.elt_size)(), 16);
    }
  }
}

TEST(GeometryCoreAttribs, UserArraysOfInterleavedGeometryAreNoStandardOnes) {
  GeometryCore core;
  core.alloc_params.num_user_attribs = 4;
  ASSERT_TRUE(alloc_vertices(core, 3, VertexForm::INTERLEAVED));
  EXPECT_EQ(core.get_position_size(), 0u);
  EXPECT_EQ(core.get_position_ptr(), nullptr);
  const vec4 data[3];
  EXPECT_FALSE(core.update_position_buffer(data));
  core.set_position(0, ONE_TO_FOUR);
  EXPECT_EQ(core.get_vertex_attrib_element(0, 0), NOTHING);
  EXPECT_EQ(core.vertices[0].position, ONE_TO_FOUR);
}

TEST(GeometryCoreAttribs, PositionIsUserArrayZeroWithoutStandardAttributes) {
  GeometryCore core;
  core.alloc_params.std_vertex_attribs = false;
  core.alloc_params.num_user_attribs = 1;
  ASSERT_TRUE(alloc_vertices(core, 3));
  EXPECT_TRUE(core.set_position(1, ONE_TO_FOUR));
  EXPECT_EQ(core.get_vertex_attrib_element(0, 1), ONE_TO_FOUR);
  EXPECT_FALSE(core.set_color(1, ONE_TO_FOUR));
}

TEST(GeometryCoreAttribs, ThreeComponentFormsStoreWOne) {
  for (const VertexForm form : ALL_FORMS) {
    GeometryCore core;
    ASSERT_TRUE(alloc_vertices(core, 1, form));
    core.set_position(0, vec4(9, 9, 9, 9));
    core.set_normal(0, vec4(9, 9, 9, 9));
    EXPECT_TRUE(core.set_position(0, vec3(1, 2, 3)));
    EXPECT_TRUE(core.set_normal(0, vec3(1, 2, 3)));
    EXPECT_EQ(core.get_position_4f(0), vec4(1, 2, 3, 1));
    EXPECT_EQ(core.get_normal(0), vec4(1, 2, 3, 1));
    EXPECT_EQ(core.get_position(0), vec3(1, 2, 3));
    EXPECT_EQ(core.get_normal_vec3(0), vec3(1, 2, 3));
  }
}

TEST(GeometryCoreAttribs, FloatFormsStoreAllFour) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 1));
  EXPECT_TRUE(core.set_position(0, 1.0f, 2.0f, 3.0f, 4.0f));
  EXPECT_TRUE(core.set_color(0, 4.0f, 3.0f, 2.0f, 1.0f));
  EXPECT_EQ(core.get_position_4f(0), ONE_TO_FOUR);
  EXPECT_EQ(core.get_color(0), vec4(4, 3, 2, 1));
}

TEST(GeometryCoreAttribs, ArraysOfThreeComponentsDropTheFourth) {
  GeometryCore core;
  core.alloc_params.set_vertex_attrib_dim(0, 3);
  ASSERT_TRUE(alloc_vertices(core, 2));
  EXPECT_EQ(core.get_position_vector_dim(), 3);
  EXPECT_EQ(core.get_position_elt_size(), 12);
  core.set_position(1, ONE_TO_FOUR);
  EXPECT_EQ(core.get_position_4f(1), vec4(1, 2, 3, 1));
}

// ---- whole vertices ----

TEST(GeometryCoreAttribs, VerticesCanBePointedAtOnlyWhenInterleaved) {
  GeometryCore core;
  EXPECT_EQ(core.get_vertex(0), nullptr);
  ASSERT_TRUE(alloc_vertices(core, 2));
  EXPECT_EQ(core.get_vertex(0), nullptr);
  EXPECT_EQ(core.get_vertex_ptr(), nullptr);
  GeometryCore interleaved;
  ASSERT_TRUE(alloc_vertices(interleaved, 2, VertexForm::INTERLEAVED));
  EXPECT_EQ(interleaved.get_vertex(1), interleaved.vertices + 1);
  EXPECT_EQ(interleaved.get_vertex(2), nullptr) << "out of range";
  EXPECT_EQ(interleaved.get_vertex_ptr(), interleaved.vertices);
}

TEST(GeometryCoreAttribs, VertexByValueIsGatheredFromExistingArrays) {
  GeometryCore core;
  core.alloc_params.std_vertex_attribs = false;
  core.alloc_params.num_user_attribs = 2;
  ASSERT_TRUE(alloc_vertices(core, 2));
  core.set_position(1, ONE_TO_FOUR);
  core.set_uv0(1, vec4(5, 6, 7, 8));
  const Vertex vertex = core.get_vertex_v2(1);
  EXPECT_EQ(vertex.position, ONE_TO_FOUR);
  EXPECT_EQ(vertex.uv0, vec4(5, 6, 7, 8));
  EXPECT_EQ(vertex.normal, NOTHING) << "there is no such array";
  EXPECT_EQ(core.get_vertex_v2(2).position, NOTHING) << "out of range";
}

// ---- bulk writes ----

TEST(GeometryCoreAttribs, BufferUpdatesCopyAllVertices) {
  for (const Attribute& attribute : STANDARD) {
    GeometryCore core;
    ASSERT_TRUE(alloc_vertices(core, 3));
    const std::vector<vec4> data = {vec4(1, 1, 1, 1), vec4(2, 2, 2, 2), vec4(3, 3, 3, 3)};
    EXPECT_TRUE((core.*attribute.update)(data.data())) << attribute.name;
    EXPECT_EQ((core.*attribute.get)(2), data[2]) << attribute.name;
    EXPECT_TRUE(core.get_vertex_attrib_array(attribute.array)->is_update_needed());
  }
}

TEST(GeometryCoreAttribs, SubBufferTestsStartAndCountApart) {
  const std::vector<vec4> data(8, ONE_TO_FOUR);
  for (const Attribute& attribute : STANDARD) {
    GeometryCore core;
    ASSERT_TRUE(alloc_vertices(core, 3));
    const auto update = [&](unsigned int start, unsigned int count) {
      return (core.*attribute.update_sub)(data.data(), start, count);
    };
    EXPECT_FALSE(update(0, 4)) << "one more than there are";
    EXPECT_FALSE(update(3, 1)) << "start past the end";
    EXPECT_TRUE(update(2, 2)) << "only the sum is too large";
    EXPECT_EQ((core.*attribute.get)(2), ONE_TO_FOUR);
    EXPECT_EQ((core.*attribute.get)(1), NOTHING);
    EXPECT_TRUE(update(0, 0));
    EXPECT_FALSE((core.*attribute.update_sub)(nullptr, 0, 1));
    EXPECT_FALSE((core.*attribute.update)(nullptr));
  }
}

TEST(GeometryCoreAttribs, SubBufferIsRefusedForInterleavedGeometry) {
  const vec4 data[3];
  for (const Attribute& attribute : STANDARD) {
    GeometryCore core;
    ASSERT_TRUE(alloc_vertices(core, 3, VertexForm::INTERLEAVED));
    EXPECT_FALSE((core.*attribute.update_sub)(data, 0, 1));
    EXPECT_FALSE((core.*attribute.update)(data));
  }
}

TEST(GeometryCoreAttribs, SubBufferWritesVec4sWhateverTheElementSize) {
  GeometryCore core;
  core.alloc_params.set_vertex_attrib_dim(0, 3);
  ASSERT_TRUE(alloc_vertices(core, 4));  // 48 bytes: room for three vec4s
  const std::vector<vec4> data = {vec4(1, 2, 3, 4), vec4(5, 6, 7, 8), vec4(9, 10, 11, 12),
                                  vec4(13, 14, 15, 16)};
  EXPECT_TRUE(core.update_position_buffer(data.data()));
  EXPECT_EQ(core.get_position(0), vec3(1, 2, 3));
  EXPECT_EQ(core.get_position(1), vec3(4, 5, 6));
  EXPECT_EQ(core.get_position(3), vec3(10, 11, 12)) << "the rest is cut off";
  EXPECT_TRUE(core.update_position_subbuffer(data.data(), 3, 1)) << "starts behind the array";
  EXPECT_EQ(core.get_position(3), vec3(10, 11, 12));
  EXPECT_TRUE(core.get_vertex_attrib_array(0)->is_update_needed());
}

TEST(GeometryCoreAttribs, BufferUpdateGoesThroughTheSubBufferSlot) {
  class Watched : public GeometryCore {
   public:
    bool update_position_subbuffer(const void*, unsigned int start, unsigned int count) override {
      return start == 0 && count == 3;
    }
    bool update_tangent_subbuffer(const void*, unsigned int start, unsigned int count) override {
      return start == 0 && count == 3;
    }
  };
  Watched core;
  ASSERT_TRUE(alloc_vertices(core, 3));
  EXPECT_TRUE(core.update_position_buffer(nullptr));
  EXPECT_TRUE(core.update_tangent_buffer(nullptr));
}

// ---- what the base class lacks ----

TEST(GeometryCoreAttribs, SecondTextureCoordinatesAndTangentAreMissing) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 3));
  const vec4 data[3];
  EXPECT_EQ(core.get_uv1_size() + core.get_tangent_size(), 0u);
  EXPECT_EQ(core.get_uv1_vector_dim() + core.get_tangent_vector_dim(), 0);
  EXPECT_EQ(core.get_uv1_elt_size() + core.get_tangent_elt_size(), 0);
  EXPECT_EQ(core.get_uv1_ptr(), nullptr);
  EXPECT_EQ(core.get_tangent_ptr(), nullptr);
  EXPECT_FALSE(core.update_uv1_buffer(data));
  EXPECT_FALSE(core.update_uv1_subbuffer(data, 0, 1));
  EXPECT_FALSE(core.update_tangent_buffer(data));
  EXPECT_FALSE(core.update_tangent_subbuffer(data, 0, 1));
  EXPECT_FALSE(core.set_uv1(0, ONE_TO_FOUR));
  EXPECT_FALSE(core.set_tangent(0, ONE_TO_FOUR));
  EXPECT_EQ(core.get_uv1(0), NOTHING);
  EXPECT_EQ(core.get_tangent(0), NOTHING);
  EXPECT_EQ(core.get_uv1_attrib_location(), -1);
}

TEST(GeometryCoreAttribs, LocationsComeFromTheFormInUse) {
  GeometryCore separate;
  EXPECT_EQ(separate.get_position_attrib_location(), -1) << "no array yet";
  ASSERT_TRUE(alloc_vertices(separate, 1));
  separate.get_vertex_attrib_array(2)->set_location(8);
  EXPECT_EQ(separate.get_position_attrib_location(), 0);
  EXPECT_EQ(separate.get_uv0_attrib_location(), 1);
  EXPECT_EQ(separate.get_normal_attrib_location(), 8);
  EXPECT_EQ(separate.get_color_attrib_location(), 3);
  GeometryCore interleaved;
  ASSERT_TRUE(alloc_vertices(interleaved, 1, VertexForm::INTERLEAVED));
  interleaved.std_attrib_data[3].location = 6;
  EXPECT_EQ(interleaved.get_normal_attrib_location(), 2);
  EXPECT_EQ(interleaved.get_color_attrib_location(), 6);
}

}  // namespace
}  // namespace orv
