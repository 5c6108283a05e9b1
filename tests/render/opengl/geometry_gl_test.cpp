#include <orv/gpu/gpu_buffer_data.h>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

class GeometryGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    load_color_program(&program);
    ASSERT_TRUE(renderer.gpu_program_bind(&program));
  }
  void TearDown() override {
    if (geometry.vb_uploaded) renderer.geometry_vbo_destroy(&geometry);
    renderer.gpu_program_unload(&program);
    GlTest::TearDown();
  }
  /// Four corners of a quad over the picture, in the order of a strip.
  void make_quad(bool separate, const vec4& color, unsigned int num_user_attribs = 0) {
    geometry.get_alloc_params_ptr()->separate_vertex_arrays = separate;
    geometry.set_alloc_params_num_vertices(4);
    geometry.set_alloc_params_num_user_attribs(num_user_attribs);
    ASSERT_TRUE(geometry.alloc_vertex_data());
    geometry.set_primitive_type(PRIMITIVE_TRIANGLE_STRIP);
    set_corners(1.0f);
    set_colors(color);
  }
  void set_corners(float size) {
    for (unsigned int i = 0; i < 4; ++i) {
      geometry.set_position(i, i % 2 ? size : -size, i < 2 ? -size : size, 0, 1);
    }
  }
  void set_colors(const vec4& color) {
    for (unsigned int i = 0; i < 4; ++i) geometry.set_color(i, color);
  }
  void add_two_faces(bool force_32) {
    ASSERT_TRUE(geometry.alloc_face_data(2, force_32));
    geometry.set_primitive_type(PRIMITIVE_TRIANGLES);
    geometry.set_face_indices(0, 0, 1, 3);
    geometry.set_face_indices(1, 0, 3, 2);
  }
  /// Lower right and upper left half of the picture.
  Pixel lower() { return context.pixel(48, 16); }
  Pixel upper() { return context.pixel(16, 48); }

  GpuProgramData program;
  GeometryCore geometry;
  const vec4 red{1, 0, 0, 1}, green{0, 1, 0, 1}, blue{0, 0, 1, 1};
};

}  // namespace

ORV_BOTH_PROFILES(GeometryGlTest);

TEST_P(GeometryGlTest, SeparateArraysAreDrawn) {
  make_quad(true, red);
  draw(&geometry);
  EXPECT_EQ(RED, lower());
  EXPECT_EQ(RED, upper());
}

TEST_P(GeometryGlTest, InterleavedVerticesAreDrawn) {
  make_quad(false, green);
  draw(&geometry);
  EXPECT_EQ(GREEN, lower());
  EXPECT_EQ(GREEN, upper());
}

TEST_P(GeometryGlTest, PositionsOfThreeComponentsAreDrawn) {
  geometry.get_alloc_params_ptr()->set_vertex_attrib_dim(0, 3);
  make_quad(true, green);
  draw(&geometry);
  EXPECT_EQ(GREEN, lower());
}

TEST_P(GeometryGlTest, FacesOfBothWidthsAndGenericIndicesAreDrawn) {
  make_quad(true, red);
  add_two_faces(false);
  draw(&geometry);
  EXPECT_EQ(RED, upper());
  clear();
  geometry.free_face_data();
  add_two_faces(true);
  draw(&geometry);
  EXPECT_EQ(RED, upper());
  clear();
  geometry.free_face_data();
  ASSERT_TRUE(geometry.alloc_face_data_v3(4, PRIMITIVE_TRIANGLE_STRIP));
  for (unsigned int i = 0; i < 4; ++i) geometry.get_indices_ptr()[i] = i;
  draw(&geometry);
  EXPECT_EQ(RED, upper());
}

TEST_P(GeometryGlTest, SubsetDrawsItsFacesAlone) {
  make_quad(true, red);
  add_two_faces(false);
  MaterialSubset subset;
  subset.start_face = 1;
  subset.end_face = 1;
  geometry.set_current_subset(&subset);
  draw(&geometry);
  geometry.set_current_subset(nullptr);
  EXPECT_EQ(RED, upper());
  EXPECT_EQ(BLACK, lower());
}

TEST_P(GeometryGlTest, ChangedPartsReachTheBuffer) {
  for (const bool separate : {true, false}) {
    make_quad(separate, red);
    draw(&geometry);
    clear();
    set_colors(green);
    draw(&geometry);
    EXPECT_EQ(GREEN, upper()) << separate;
    clear();
    set_corners(0.25f);
    draw(&geometry);
    EXPECT_EQ(BLACK, upper()) << separate;
    EXPECT_EQ(GREEN, center()) << separate;
    clear();
    geometry.free_data();
  }
}

TEST_P(GeometryGlTest, OneMovedVertexReachesTheBuffer) {
  make_quad(true, red);
  draw(&geometry);
  clear();
  geometry.set_position(2, -1, -1, 0, 1);
  draw(&geometry);
  EXPECT_EQ(RED, lower());
  EXPECT_EQ(BLACK, upper());
}

TEST_P(GeometryGlTest, GeometryGrowsAndGetsFacesAfterItsUpload) {
  make_quad(true, red);
  draw(&geometry);
  clear();
  geometry.free_vertex_data();
  geometry.set_alloc_params_num_vertices(8);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  for (unsigned int i = 0; i < 8; ++i) {
    geometry.set_position(i, i % 2 ? 1.0f : -1.0f, i % 4 < 2 ? -1.0f : 1.0f, 0, 1);
    geometry.set_color(i, i < 4 ? red : blue);
  }
  ASSERT_TRUE(geometry.alloc_face_data(2, false));
  geometry.set_primitive_type(PRIMITIVE_TRIANGLES);
  geometry.set_face_indices(0, 4, 5, 7);
  geometry.set_face_indices(1, 4, 7, 6);
  draw(&geometry);
  EXPECT_EQ(BLUE, upper());
  clear();
  geometry.free_face_data();
  geometry.set_primitive_type(PRIMITIVE_TRIANGLE_STRIP);
  geometry.set_vertex_draw_range(0, 4);
  draw(&geometry);
  EXPECT_EQ(RED, upper());
}

TEST_P(GeometryGlTest, DrawingGoesOnWithoutTheArrays) {
  make_quad(true, green);
  add_two_faces(false);
  draw(&geometry);
  clear();
  geometry.release_cpu_data();
  draw(&geometry);
  EXPECT_EQ(GREEN, upper());
  clear();
  geometry.free_data();
  renderer.geometry_vbo_destroy(&geometry);
}

TEST_P(GeometryGlTest, UserArrayOfInterleavedVerticesKeepsToItself) {
  renderer.gpu_program_unload(&program);
  load_program(&program,
               "ATTRIB vec4 orvex_Position; ATTRIB vec4 orvex_Attrib4; OUT vec4 color;\n"
               "void main() { color = orvex_Attrib4; gl_Position = orvex_Position; }",
               "IN vec4 color; void main() { pixel = color; }");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  make_quad(false, red, 1);
  for (unsigned int i = 0; i < 4; ++i) geometry.set_vertex_attrib_element(0, i, blue);
  draw(&geometry);
  EXPECT_EQ(BLUE, upper());
}

TEST_P(GeometryGlTest, InstancesAdvanceTheirAttributes) {
  if (!renderer.is_instancing_supported()) GTEST_SKIP() << "no instancing";
  renderer.gpu_program_unload(&program);
  load_program(&program,
               "ATTRIB vec4 orvex_Position; ATTRIB vec4 orvex_Instance_Position; OUT vec4 color;\n"
               "void main() { color = vec4(0, 1, 0, 1);\n"
               "  gl_Position = vec4(orvex_Position.xyz + orvex_Instance_Position.xyz, 1); }",
               "IN vec4 color; void main() { pixel = color; }");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  make_quad(true, red);
  set_corners(0.2f);
  VertexAttribArray* offsets = geometry.alloc_new_vertex_attrib_array(2);
  ASSERT_NE(nullptr, offsets);
  offsets->set_divisor(1);
  offsets->set_element_vec4(0, vec4(-0.5f, 0.5f, 0));
  offsets->set_element_vec4(1, vec4(0.5f, -0.5f, 0));
  geometry.num_instances = 2;
  draw(&geometry);
  EXPECT_EQ(GREEN, upper());
  EXPECT_EQ(GREEN, lower());
  EXPECT_EQ(BLACK, center());
}

TEST_P(GeometryGlTest, SharedBufferIsDrawnFrom) {
  make_quad(true, red);
  draw(&geometry);
  std::vector<unsigned char> bytes(geometry.get_total_vertex_buffer_size());
  set_colors(blue);
  geometry.vertex_arrays_to_memory(bytes.data());
  GpuBufferData shared;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &shared, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW,
                                        static_cast<unsigned int>(bytes.size()), bytes.data()));
  geometry.set_vb_source(&shared);
  clear();
  draw(&geometry);
  EXPECT_EQ(BLUE, upper());
  geometry.set_vb_source(nullptr);
  clear();
  draw(&geometry);
  EXPECT_EQ(BLUE, upper()) << "the own buffer was marked";
  renderer.gpu_buffer_free(&shared);
}

TEST_P(GeometryGlTest, ManyMeshesTakeTurns) {
  GeometryCore other;
  make_quad(true, red);
  other.set_alloc_params_num_vertices(4);
  ASSERT_TRUE(other.alloc_vertex_data());
  other.set_primitive_type(PRIMITIVE_TRIANGLE_STRIP);
  for (unsigned int i = 0; i < 4; ++i) {
    other.set_position(i, i % 2 ? 0.25f : -0.25f, i < 2 ? -0.25f : 0.25f, -0.5f, 1);
    other.set_color(i, green);
  }
  for (int round = 0; round < 3; ++round) {
    clear();
    draw(&geometry);
    draw(&other);
    EXPECT_EQ(RED, upper());
    EXPECT_EQ(GREEN, center());
  }
  renderer.geometry_vbo_destroy(&other);
}

// Arrays that stay enabled would be read from address 0 once their buffer is gone.
TEST_P(GeometryGlTest, DrawingAfterABoundGeometryWasDestroyedIsSafe) {
  make_quad(true, vec4(1, 0, 0, 1));
  add_two_faces(false);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_EQ(RED, center());
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&geometry));
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  renderer.draw_triangles(1000, 1000);
  renderer.finish_gl();
  context.take_errors();  // core contexts refuse to draw without a vertex array object
}

TEST_P(GeometryGlTest, SubsetOfAGeometryThatIsNotBoundReadsNoAddress) {
  make_quad(true, vec4(1, 0, 0, 1));
  add_two_faces(false);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  MaterialSubset subset;
  subset.start_face = 1;
  subset.end_face = 1;
  geometry.set_current_subset(&subset);
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  geometry.set_current_subset(nullptr);
  EXPECT_EQ(BLACK, center());
}

TEST_P(GeometryGlTest, PointSpritesAreDrawnWithTheSizeOfTheProgram) {
  renderer.gpu_program_unload(&program);
  load_program(&program,
               "ATTRIB vec4 orvex_Position;\n"
               "void main() { gl_PointSize = 9.0; gl_Position = orvex_Position; }",
               "void main() { pixel = vec4(1, 0, 0, 1); }");
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  geometry.set_alloc_params_num_vertices(1);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  geometry.set_primitive_type(PRIMITIVE_POINTS);
  geometry.set_point_sprite_state(true);
  draw(&geometry);
  EXPECT_EQ(RED, context.pixel(35, 32));
  EXPECT_EQ(BLACK, context.pixel(40, 32));
}
