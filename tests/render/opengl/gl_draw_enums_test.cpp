#include "render/opengl/gl_draw_enums.h"

#include <GL/glext.h>
#include <gtest/gtest.h>
#include <orv/geometry/geometry_enums.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/render/renderer_enums.h>

using namespace orv;
using namespace orv::detail;

namespace {

/// A number that is handed in and the constant that comes out.
struct Row {
  int in;
  GLenum out;
};

template <class In, class Map, std::size_t N>
void check(const char* what, Map map, const Row (&rows)[N]) {
  for (const Row& row : rows) EXPECT_EQ(row.out, map(static_cast<In>(row.in))) << what << row.in;
}

struct Named {
  const char* name;
  GLenum value;
};

#define ROW(name) \
  { #name, name }

constexpr Named STATES[] = {ROW(GL_CLIP_DISTANCE0),
                            ROW(GL_CLIP_DISTANCE1),
                            ROW(GL_CLIP_DISTANCE2),
                            ROW(GL_CLIP_DISTANCE3),
                            ROW(GL_MULTISAMPLE),
                            ROW(GL_CULL_FACE),
                            ROW(GL_BLEND),
                            ROW(GL_DEPTH_TEST),
                            ROW(GL_SCISSOR_TEST),
                            ROW(GL_DEPTH_BOUNDS_TEST_EXT),
                            ROW(GL_POLYGON_OFFSET_FILL),
                            ROW(GL_DITHER),
                            ROW(GL_STENCIL_TEST),
                            ROW(GL_TEXTURE_2D),
                            ROW(GL_LIGHTING),
                            ROW(GL_LIGHT0),
                            ROW(GL_LIGHT1),
                            ROW(GL_LIGHT2),
                            ROW(GL_LIGHT3)};

constexpr Named QUERIES[] = {ROW(GL_VERTICES_SUBMITTED_ARB),
                             ROW(GL_PRIMITIVES_SUBMITTED_ARB),
                             ROW(GL_VERTEX_SHADER_INVOCATIONS_ARB),
                             ROW(GL_TESS_CONTROL_SHADER_PATCHES_ARB),
                             ROW(GL_TESS_EVALUATION_SHADER_INVOCATIONS_ARB),
                             ROW(GL_GEOMETRY_SHADER_INVOCATIONS),
                             ROW(GL_GEOMETRY_SHADER_PRIMITIVES_EMITTED_ARB),
                             ROW(GL_FRAGMENT_SHADER_INVOCATIONS_ARB),
                             ROW(GL_COMPUTE_SHADER_INVOCATIONS_ARB),
                             ROW(GL_CLIPPING_INPUT_PRIMITIVES_ARB),
                             ROW(GL_CLIPPING_OUTPUT_PRIMITIVES_ARB),
                             ROW(GL_TIME_ELAPSED)};

constexpr Named BARRIERS[] = {ROW(GL_VERTEX_ATTRIB_ARRAY_BARRIER_BIT),
                              ROW(GL_ELEMENT_ARRAY_BARRIER_BIT),
                              ROW(GL_UNIFORM_BARRIER_BIT),
                              ROW(GL_TEXTURE_FETCH_BARRIER_BIT),
                              ROW(GL_SHADER_IMAGE_ACCESS_BARRIER_BIT),
                              ROW(GL_COMMAND_BARRIER_BIT),
                              ROW(GL_PIXEL_BUFFER_BARRIER_BIT),
                              ROW(GL_TEXTURE_UPDATE_BARRIER_BIT),
                              ROW(GL_BUFFER_UPDATE_BARRIER_BIT),
                              ROW(GL_FRAMEBUFFER_BARRIER_BIT),
                              ROW(GL_TRANSFORM_FEEDBACK_BARRIER_BIT),
                              ROW(GL_ATOMIC_COUNTER_BARRIER_BIT),
                              ROW(GL_SHADER_STORAGE_BARRIER_BIT)};

#undef ROW

}  // namespace

TEST(GlDrawEnums, DepthFunctionsAndLessForAnyOtherValue) {
  check<int>("depth func ", gl_depth_func,
             {Row{0, GL_NEVER}, Row{1, GL_LESS}, Row{2, GL_LEQUAL}, Row{3, GL_GREATER},
              Row{4, GL_GEQUAL}, Row{5, GL_EQUAL}, Row{6, GL_NOTEQUAL}, Row{7, GL_ALWAYS},
              Row{8, GL_LESS}, Row{99, GL_LESS}, Row{-1, GL_LESS}});
}

TEST(GlDrawEnums, BlendFactorsInTheirOwnOrderAndOneFromTenOn) {
  check<RENDERER_BLEND_FACTOR>(
      "blend factor ", gl_blend_factor,
      {Row{0, GL_ZERO}, Row{1, GL_ONE}, Row{2, GL_SRC_ALPHA}, Row{3, GL_ONE_MINUS_DST_ALPHA},
       Row{4, GL_ONE_MINUS_DST_COLOR}, Row{5, GL_ONE_MINUS_SRC_ALPHA}, Row{6, GL_DST_COLOR},
       Row{7, GL_DST_ALPHA}, Row{8, GL_SRC_COLOR}, Row{9, GL_ONE_MINUS_SRC_COLOR}, Row{10, GL_ONE},
       Row{1000, GL_ONE}, Row{-1, GL_ONE}});
}

TEST(GlDrawEnums, FacesAndPolygonModes) {
  check<int>("face ", gl_face,
             {Row{1, GL_BACK}, Row{2, GL_FRONT}, Row{3, GL_FRONT_AND_BACK},
              Row{0, GL_FRONT_AND_BACK}, Row{7, GL_FRONT_AND_BACK}});
  check<int>("polygon mode ", gl_polygon_mode,
             {Row{0, GL_POINT}, Row{1, GL_LINE}, Row{2, GL_FILL}, Row{-4, GL_FILL}});
}

TEST(GlDrawEnums, BufferTargetsUsagesAndAccess) {
  check<GPU_BUFFER_TYPE>(
      "buffer type ", gl_buffer_target,
      {Row{0, GL_ARRAY_BUFFER}, Row{1, GL_ELEMENT_ARRAY_BUFFER}, Row{2, GL_PIXEL_UNPACK_BUFFER},
       Row{3, GL_UNIFORM_BUFFER}, Row{4, GL_SHADER_STORAGE_BUFFER},
       Row{5, GL_ATOMIC_COUNTER_BUFFER}, Row{6, GL_TEXTURE_BUFFER}, Row{7, 0}, Row{-1, 0}});
  check<unsigned int>("usage ", gl_buffer_usage,
                      {Row{0, GL_STATIC_DRAW}, Row{1, GL_STATIC_DRAW}, Row{2, GL_STATIC_READ},
                       Row{3, GL_STATIC_COPY}, Row{4, GL_DYNAMIC_DRAW}, Row{5, GL_DYNAMIC_READ},
                       Row{6, GL_DYNAMIC_COPY}, Row{7, GL_STREAM_DRAW}, Row{8, GL_STREAM_READ},
                       Row{9, GL_STREAM_COPY}, Row{10, GL_STATIC_DRAW}});
  check<DATA_ACCESS_TYPE>(
      "access ", gl_data_access,
      {Row{1, GL_WRITE_ONLY}, Row{2, GL_READ_ONLY}, Row{3, GL_READ_WRITE}, Row{0, GL_READ_WRITE}});
  for (int type = 0; type < 7; ++type) {
    EXPECT_NE(0u, gl_buffer_binding(gl_buffer_target(static_cast<GPU_BUFFER_TYPE>(type)))) << type;
  }
  EXPECT_EQ(0u, gl_buffer_binding(GL_TEXTURE_2D));
}

TEST(GlDrawEnums, PrimitivesAndTrianglesForAnyOtherValue) {
  check<PRIMITIVE_TYPE>(
      "primitive ", gl_primitive_mode,
      {Row{0, GL_TRIANGLES}, Row{1, GL_TRIANGLE_STRIP}, Row{2, GL_LINES}, Row{3, GL_LINE_STRIP},
       Row{4, GL_LINE_LOOP}, Row{5, GL_LINES_ADJACENCY}, Row{6, GL_LINE_STRIP_ADJACENCY},
       Row{7, GL_PATCHES}, Row{8, GL_POINTS}, Row{9, GL_TRIANGLES}, Row{-1, GL_TRIANGLES}});
}

TEST(GlDrawEnums, ShaderStages) {
  check<GPU_SHADER_TYPE>(
      "stage ", gl_shader_stage,
      {Row{0, GL_VERTEX_SHADER}, Row{1, GL_FRAGMENT_SHADER}, Row{2, GL_GEOMETRY_SHADER},
       Row{3, GL_TESS_CONTROL_SHADER}, Row{4, GL_TESS_EVALUATION_SHADER}, Row{5, GL_COMPUTE_SHADER},
       Row{6, 0}, Row{7, 0}, Row{-1, 0}});
}

TEST(GlDrawEnums, StateNamesAreComparedInFull) {
  for (const Named& row : STATES) EXPECT_EQ(row.value, gl_state_by_name(row.name)) << row.name;
  for (const char* name : {"GL_UNKNOWN", "", "GL_BLEND ", "GL_BLEN", "gl_blend", "GL_LIGHT4",
                           "GL_POLYGON_OFFSET_LINE", "GL_POLYGON_OFFSET_POINT"}) {
    EXPECT_EQ(0u, gl_state_by_name(name)) << name;
  }
  EXPECT_EQ(0u, gl_state_by_name(nullptr));
}

TEST(GlDrawEnums, QueryNames) {
  for (const Named& row : QUERIES) EXPECT_EQ(row.value, gl_query_target(row.name)) << row.name;
  EXPECT_EQ(0u, gl_query_target("GL_SAMPLES_PASSED"));
  EXPECT_EQ(0u, gl_query_target(nullptr));
}

TEST(GlDrawEnums, BarrierNamesAreFoundAnywhereInTheText) {
  for (const Named& row : BARRIERS) EXPECT_EQ(row.value, gl_barrier_bits(row.name)) << row.name;
  EXPECT_EQ(unsigned{GL_UNIFORM_BARRIER_BIT | GL_SHADER_STORAGE_BARRIER_BIT},
            gl_barrier_bits("x GL_SHADER_STORAGE_BARRIER_BIT|GL_UNIFORM_BARRIER_BIT"));
  EXPECT_EQ(0u, gl_barrier_bits("GL_ALL_BARRIER_BITS"));
  EXPECT_EQ(0u, gl_barrier_bits(nullptr));
}

TEST(GlDrawEnums, MapFlagsAndAccessNames) {
  EXPECT_EQ(0x1u, gl_map_bits("GL_MAP_READ_BIT"));
  EXPECT_EQ(0x2u, gl_map_bits("GL_MAP_WRITE_BIT"));
  EXPECT_EQ(0x4u, gl_map_bits("GL_MAP_INVALIDATE_RANGE_BIT"));
  EXPECT_EQ(0x8u, gl_map_bits("GL_MAP_INVALIDATE_BUFFER_BIT"));
  EXPECT_EQ(0x10u, gl_map_bits("GL_MAP_FLUSH_EXPLICIT_BIT"));
  EXPECT_EQ(0x20u, gl_map_bits("GL_MAP_UNSYNCHRONIZED_BIT"));
  EXPECT_EQ(0x40u, gl_map_bits("GL_MAP_PERSISTENT_BIT"));
  EXPECT_EQ(0x80u, gl_map_bits("GL_MAP_COHERENT_BIT"));
  EXPECT_EQ(0x3u, gl_map_bits("GL_MAP_READ_BIT | GL_MAP_WRITE_BIT"));
  EXPECT_EQ(0u, gl_map_bits(nullptr));
  EXPECT_EQ(GLenum{GL_WRITE_ONLY}, gl_map_access("GL_WRITE_ONLY"));
  EXPECT_EQ(GLenum{GL_READ_WRITE}, gl_map_access("as GL_READ_WRITE"));
  EXPECT_EQ(GLenum{GL_READ_ONLY}, gl_map_access("GL_READ_ONLY"));
  EXPECT_EQ(0u, gl_map_access("read"));
  EXPECT_EQ(0u, gl_map_access(nullptr));
}
