#include <orv/geometry/primitives/mesh_box.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

#include "geometry/primitives/shape_support.h"

namespace orv {
namespace {

using test::facing_of;
using test::Held;

/// Sides in the order in which they are built.
const vec4 SIDE_NORMALS[6] = {vec4(0, 0, 1, 0), vec4(0, 0, -1, 0), vec4(-1, 0, 0, 0),
                              vec4(1, 0, 0, 0), vec4(0, 1, 0, 0),  vec4(0, -1, 0, 0)};

TEST(MeshBox, OfOneSegmentHasTwelveFacesOfTheirOwnVertices) {
  const Held<MeshBox> box;
  box->set_build_params(2, 2, 2, 1, 1, 1);
  ASSERT_TRUE(box->build(nullptr));
  test::expect_well_formed(*box);
  EXPECT_EQ(box->get_num_faces(nullptr), 12u);
  EXPECT_EQ(box->get_num_vertices(nullptr), 36u);
  for (unsigned int i = 0; i < 12; ++i) {
    EXPECT_EQ(test::face_of(*box, i), (std::vector<unsigned int>{3 * i, 3 * i + 1, 3 * i + 2}));
  }
}

TEST(MeshBox, SidesStandInOrderWithTheirNormals) {
  const Held<MeshBox> box;
  box->set_build_params(2, 2, 2, 1, 1, 1);
  box->build(nullptr);
  for (unsigned int i = 0; i < 36; ++i) {
    EXPECT_EQ(box->get_vertex_normal(i), SIDE_NORMALS[i / 6]) << i;
  }
}

TEST(MeshBox, AllFacesLookOutwards) {
  const Held<MeshBox> box;
  box->set_build_params(4, 6, 8, 2, 3, 4);
  box->build(nullptr);
  EXPECT_EQ(box->get_num_faces(nullptr), 4u * (3 * 2 + 4 * 2 + 4 * 3));
  const auto facing = facing_of(*box, [](const vec3& center) { return center; });
  EXPECT_EQ(facing.along, 104);
  EXPECT_EQ(facing.against, 0);
}

TEST(MeshBox, IsCentredWithItsSizes) {
  const Held<MeshBox> box;
  box->set_build_params(4, 6, 8, 2, 3, 4);
  box->build(nullptr);
  EXPECT_EQ(box->get_bounding_box_min(), vec4(-2, -3, -4, 1));
  EXPECT_EQ(box->get_bounding_box_max(), vec4(2, 3, 4, 1));
  EXPECT_EQ(box->get_vertex_position(0), vec4(-2, -3, 4, 1));
  EXPECT_EQ(box->get_vertex_position(2), vec4(0, -1, 4, 1)) << "one cell across and up";
}

TEST(MeshBox, SidesMeetWithoutGaps) {
  const Held<MeshBox> box;
  box->set_build_params(0.3f, 0.7f, 1.1f, 3, 7, 9);
  box->build(nullptr);
  std::set<std::vector<float>> places;
  for (unsigned int i = 0; i < box->get_num_vertices(nullptr); ++i) {
    const vec4 p = box->get_vertex_position(i);
    places.insert({p.x, p.y, p.z});
  }
  EXPECT_EQ(places.size(), 4u * 8 * 10 - 2u * 6 * 8) << "the lattice less its inside, to the bit";
}

TEST(MeshBox, TextureCoversEverySideOnce) {
  const Held<MeshBox> box;
  box->set_build_params(4, 6, 8, 2, 3, 4);
  box->build(nullptr);
  const unsigned int starts[6] = {0, 36, 72, 144, 216, 264};
  for (const unsigned int start : starts) {
    EXPECT_EQ(box->get_vertex_uv(start, 0), vec4(0, 0, 0, 1)) << start;
    const unsigned int end = start == 264 ? 312 : *std::upper_bound(starts, starts + 6, start);
    EXPECT_EQ(box->get_vertex_uv(end - 2, 0), vec4(1, 1, 0, 1)) << start;
  }
}

TEST(MeshBox, SegmentsBelowOneCountAsOne) {
  const Held<MeshBox> box;
  box->set_build_params(2, 2, 2, 0, -5, 0);
  box->build(nullptr);
  EXPECT_EQ(box->get_num_faces(nullptr), 12u);
}

TEST(MeshBox, ColorsAreSetThroughTheSlot) {
  class Watched : public MeshBox {
   public:
    using MeshBox::set_vertices_color;
    void set_vertices_color(float r, float g, float b, float a, Node* node) override {
      ++calls;
      white = r == 1 && g == 1 && b == 1 && a == 1 && !node;
    }
    int calls = 0;
    bool white = false;
  };
  const Held<Watched> box;
  box->_build();
  EXPECT_EQ(box->calls, 1);
  EXPECT_TRUE(box->white);
}

TEST(MeshBox, NewSizeMovesTheVerticesAtOnce) {
  const Held<MeshBox> box;
  EXPECT_FALSE(box->update_size(4, 6, 8)) << "nothing is built yet";
  box->build(nullptr);
  const unsigned int serial = box->get_data()->layout_serial;
  EXPECT_TRUE(box->update_size(8, 10, 12));
  EXPECT_EQ(box->get_data()->layout_serial, serial);
  EXPECT_EQ(box->get_vertex_position(0), vec4(-4, -5, 6, 1));
  EXPECT_EQ(box->get_vertex_normal(0), vec4(0, 0, 1, 0));
}

TEST(MeshBox, TilingRewritesTextureCoordinatesPerSide) {
  const Held<MeshBox> box;
  box->set_build_params(2, 2, 2, 1, 1, 1);
  const int tiles[6] = {1, 2, 3, 4, 5, 6};
  const vec2 offsets[6] = {vec2(0.5f, 0.25f), vec2(), vec2(), vec2(), vec2(), vec2(-1, -2)};
  EXPECT_FALSE(box->update_vertices_uv_tiling(tiles, offsets)) << "nothing is built yet";
  box->build(nullptr);
  EXPECT_TRUE(box->update_vertices_uv_tiling(tiles, offsets));
  EXPECT_EQ(box->get_vertex_uv(0, 0), vec4(0.5f, 0.25f, 0, 1));
  EXPECT_EQ(box->get_vertex_uv(2, 0), vec4(1.5f, 1.25f, 0, 1));
  EXPECT_EQ(box->get_vertex_uv(8, 0), vec4(2, 2, 0, 1));
  EXPECT_EQ(box->get_vertex_uv(32, 0), vec4(5, 4, 0, 1));
  EXPECT_FALSE(box->update_vertices_uv_tiling(nullptr, offsets));
  EXPECT_FALSE(box->update_vertices_uv_tiling(tiles, nullptr));
}

}  // namespace
}  // namespace orv
