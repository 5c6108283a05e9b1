#include <orv/geometry/primitives/mesh_terrain.h>
#include <orv/gpu/texture.h>
#include <orv/image/image.h>
#include <orv/math/vec4.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "geometry/primitives/shape_support.h"

namespace orv {
namespace {

using test::face_of;
using test::facing_of;
using test::Held;
using test::near;
using testing::ElementsAre;

/// A texture whose red values are given row by row.
class HeightTexture {
 public:
  HeightTexture(unsigned int width, unsigned int height, const std::vector<float>& reds) {
    Image& image = *texture_->get_image_ptr();
    image.create(width, height, 1, PF_RGBA_F32, true, true);
    for (unsigned int i = 0; i < reds.size(); ++i) {
      image.set_pixel(i, vec4(reds[i], 0.5f, 0.5f, 1.0f));
    }
  }
  Texture* get() const { return texture_; }

 private:
  Held<Texture> texture_;
};

/// 3 by 3 heights, a peak in the middle of the right side.
std::vector<float> slope() { return {0, 0.5f, 1, 0, 0.5f, 2, 0, 0.5f, 1}; }

float height_of(const Mesh& mesh, unsigned int vertex) {
  return mesh.get_vertex_position(vertex).y;
}

TEST(MeshTerrain, IsANodeOfItsKind) {
  const Held<MeshTerrain> terrain;
  EXPECT_EQ(terrain->get_type(), NODE_TYPE_MESH_TERRAIN);
  EXPECT_TRUE(terrain->is_type_of(NODE_TYPE_MESH));
  EXPECT_FALSE(terrain->build(nullptr));
}

TEST(MeshTerrain, TakesHeightsFromTheTexture) {
  const HeightTexture heights(3, 3, slope());
  const Held<MeshTerrain> terrain;
  EXPECT_TRUE(terrain->set_build_params(heights.get(), 2, 10, 4, -100));
  ASSERT_TRUE(terrain->build(nullptr));
  test::expect_well_formed(*terrain);
  ASSERT_EQ(terrain->get_num_vertices(nullptr), 9u);
  ASSERT_EQ(terrain->get_num_faces(nullptr), 8u);
  EXPECT_EQ(terrain->get_vertex_position(0), vec4(-4, 0, -4, 1));
  EXPECT_EQ(terrain->get_vertex_position(1), vec4(0, 5, -4, 1));
  EXPECT_EQ(terrain->get_vertex_position(5), vec4(4, 20, 0, 1));
  EXPECT_EQ(terrain->get_vertex_position(8), vec4(4, 10, 4, 1));
}

TEST(MeshTerrain, TextureCoordinatesRunAlongXAndAgainstZ) {
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(nullptr, 4, 1, 1, 0);
  terrain->build(nullptr);
  EXPECT_EQ(terrain->get_vertex_uv(0, 0), vec4(0, 1, 0, 1));
  EXPECT_EQ(terrain->get_vertex_uv(4, 0), vec4(1, 1, 0, 1));
  EXPECT_EQ(terrain->get_vertex_uv(21, 0), vec4(0.25f, 0, 0, 1));
}

TEST(MeshTerrain, FacesLookUpInBothWidths) {
  for (const int resolution : {2, 255}) {
    const Held<MeshTerrain> terrain;
    terrain->set_build_params(nullptr, resolution, 1, 1000, 0);
    ASSERT_TRUE(terrain->build(nullptr));
    const auto row = static_cast<unsigned int>(resolution) + 1;
    EXPECT_EQ(terrain->get_data()->get_index_bits(), resolution == 2 ? 16 : 32);
    EXPECT_THAT(face_of(*terrain, 0), ElementsAre(0, row, 1));
    EXPECT_THAT(face_of(*terrain, 1), ElementsAre(1, row, row + 1));
    const auto facing = facing_of(*terrain, [](const vec3&) { return vec3(0, 1, 0); });
    EXPECT_EQ(facing.along, resolution * resolution * 2);
  }
}

TEST(MeshTerrain, NormalsLeanAgainstTheSlope) {
  const HeightTexture heights(3, 3, {0, 1, 2, 0, 1, 2, 0, 1, 2});
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(heights.get(), 2, 1, 1, -1);
  terrain->build(nullptr);
  for (unsigned int i = 0; i < 9; ++i) {
    EXPECT_TRUE(near(terrain->get_vertex_normal(i), vec4(-0.70710678f, 0.70710678f, 0, 0), 1e-6f));
  }
}

TEST(MeshTerrain, WithoutATextureIsFlatAtTheFloorOrZero) {
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(nullptr, 1, 5, 1, -3);
  ASSERT_TRUE(terrain->build(nullptr));
  EXPECT_EQ(height_of(*terrain, 0), 0.0f);
  terrain->set_build_params(nullptr, 1, 5, 1, 2);
  ASSERT_TRUE(terrain->build(nullptr));
  EXPECT_EQ(height_of(*terrain, 3), 2.0f);
}

TEST(MeshTerrain, HeightsBelowTheFloorAreRaisedToIt) {
  const HeightTexture heights(3, 3, slope());
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(heights.get(), 2, 1, 1, 0.75f);
  terrain->build(nullptr);
  EXPECT_EQ(height_of(*terrain, 1), 0.75f);
  EXPECT_EQ(height_of(*terrain, 2), 1.0f);
}

TEST(MeshTerrain, TakesTheNearestHeight) {
  const HeightTexture heights(4, 4, {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3});
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(heights.get(), 2, 1, 1, -1);
  terrain->build(nullptr);
  // The middle falls on 1.5 and is rounded up.
  EXPECT_EQ(height_of(*terrain, 0), 0.0f);
  EXPECT_EQ(height_of(*terrain, 1), 2.0f);
  EXPECT_EQ(height_of(*terrain, 2), 3.0f);
}

TEST(MeshTerrain, RowsOfAWideImageStopAtTheLast) {
  const HeightTexture heights(3, 2, {0, 0, 0, 1, 1, 1});
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(heights.get(), 2, 1, 1, -1);
  terrain->build(nullptr);
  EXPECT_EQ(height_of(*terrain, 0), 0.0f);
  EXPECT_EQ(height_of(*terrain, 3), 1.0f);
  EXPECT_EQ(height_of(*terrain, 6), 1.0f);
}

TEST(MeshTerrain, HeightsAreKeptUntilTheBufferIsMadeAnew) {
  const HeightTexture low(1, 1, {1});
  const HeightTexture high(1, 1, {9});
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(low.get(), 1, 1, 1, -1);
  terrain->build(nullptr);
  terrain->set_build_params(high.get(), 1, 1, 1, -1);
  terrain->build(nullptr);
  EXPECT_EQ(height_of(*terrain, 0), 1.0f);
  EXPECT_TRUE(terrain->init_terrain_buffer(high.get()));
  terrain->update_build_state(true);
  terrain->build(nullptr);
  EXPECT_EQ(height_of(*terrain, 0), 9.0f);
}

TEST(MeshTerrain, BuildTakesTheTextureThatWasSetLast) {
  const HeightTexture low(1, 1, {1});
  const HeightTexture high(1, 1, {9});
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(low.get(), 1, 1, 1, -1);
  terrain->set_build_params(high.get(), 1, 1, 1, -1);
  EXPECT_EQ(terrain->elevation(0, 0, 1, -1), 0.0f) << "nothing is copied before the build";
  terrain->build(nullptr);
  EXPECT_EQ(height_of(*terrain, 0), 9.0f);
}

TEST(MeshTerrain, BuildTakesThePixelsAsTheyAreThen) {
  const HeightTexture heights(1, 1, {1});
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(heights.get(), 1, 1, 1, -1);
  heights.get()->get_image_ptr()->set_pixel(0, vec4(5, 0, 0, 1));
  terrain->build(nullptr);
  EXPECT_EQ(height_of(*terrain, 0), 5.0f);
}

TEST(MeshTerrain, TextureThatEndsBeforeTheBuildLeavesOnlyWhatWasCopied) {
  auto heights = std::make_unique<HeightTexture>(1, 1, std::vector<float>{3});
  const Held<MeshTerrain> flat;
  const Held<MeshTerrain> raised;
  flat->set_build_params(heights->get(), 1, 1, 1, -1);
  raised->set_build_params(heights->get(), 1, 1, 1, -1);
  raised->init_terrain_buffer(heights->get());
  const Held<MeshTerrain> copy(*flat);
  heights.reset();
  for (Mesh* terrain : {flat.get(), raised.get(), copy.get()}) {
    ASSERT_TRUE(terrain->build(nullptr));
  }
  EXPECT_EQ(height_of(*flat, 0), 0.0f);
  EXPECT_EQ(height_of(*raised, 0), 3.0f);
  EXPECT_EQ(height_of(*copy, 0), 0.0f);
}

TEST(MeshTerrain, BufferNeedsATexture) {
  const Held<MeshTerrain> terrain;
  EXPECT_FALSE(terrain->init_terrain_buffer(nullptr));
}

TEST(MeshTerrain, ImageWithoutPixelsLeavesNoHeights) {
  const Held<Texture> empty;
  const Held<MeshTerrain> terrain;
  EXPECT_TRUE(terrain->init_terrain_buffer(empty));
  EXPECT_EQ(terrain->elevation(0, 0, 1, -1), 0.0f);
}

TEST(MeshTerrain, FormatsWithoutReadablePixelsGiveZero) {
  const Held<Texture> texture;
  texture->get_image_ptr()->create(2, 2, 1, PF_RGBA_F32, false, false);
  const Held<MeshTerrain> terrain;
  EXPECT_TRUE(terrain->init_terrain_buffer(texture));
  EXPECT_EQ(terrain->elevation(1, 1, 1, -5), 0.0f);
}

TEST(MeshTerrain, BytesCountFromZeroToOne) {
  const Held<Texture> texture;
  texture->get_image_ptr()->create(1, 1, 1, PF_RGB_U8, true, true);
  texture->get_image_ptr()->set_pixel(0, vec4(51, 0, 0, 0));
  const Held<MeshTerrain> terrain;
  EXPECT_TRUE(terrain->init_terrain_buffer(texture));
  EXPECT_FLOAT_EQ(terrain->elevation(0, 0, 10, -5), 2.0f);
}

TEST(MeshTerrain, ElevationReadsTheBuffer) {
  const HeightTexture heights(3, 3, slope());
  const Held<MeshTerrain> terrain;
  EXPECT_EQ(terrain->elevation(0, 0, 1, -1), 0.0f);
  EXPECT_EQ(terrain->elevation(0, 0, 1, 4), 4.0f);
  terrain->init_terrain_buffer(heights.get());
  EXPECT_EQ(terrain->elevation(2, 1, 3, -1), 6.0f);
  EXPECT_EQ(terrain->elevation(2, 1, 3, 6.5f), 6.5f);
  EXPECT_EQ(terrain->elevation(3, 1, 3, -1), 0.0f);
  EXPECT_EQ(terrain->elevation(0, 3, 3, -1), 0.0f);
  EXPECT_EQ(terrain->elevation(-1, 0, 3, -1), 0.0f);
  EXPECT_EQ(terrain->elevation(0, -2147483647, 3, -1), 0.0f);
}

TEST(MeshTerrain, ResolutionBelowOneFails) {
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(nullptr, 1, 1, 1, 0);
  ASSERT_TRUE(terrain->build(nullptr));
  for (const int resolution : {0, -1, -2147483647}) {
    terrain->set_build_params(nullptr, resolution, 1, 1, 0);
    EXPECT_FALSE(terrain->build(nullptr));
    EXPECT_EQ(terrain->get_num_vertices(nullptr), 0u);
  }
}

TEST(MeshTerrain, TooFineAResolutionFails) {
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(nullptr, 2147483647, 1, 1, 0);
  EXPECT_FALSE(terrain->build(nullptr));
}

TEST(MeshTerrain, WithoutSizeLooksUp) {
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(nullptr, 1, 1, 0, 0);
  ASSERT_TRUE(terrain->build(nullptr));
  EXPECT_EQ(terrain->get_vertex_normal(0), vec4(0, 1, 0, 0));
}

TEST(MeshTerrain, CleanupFreesTheHeights) {
  const HeightTexture heights(3, 3, slope());
  const Held<MeshTerrain> terrain;
  terrain->init_terrain_buffer(heights.get());
  terrain->_cleanup(nullptr);
  EXPECT_EQ(terrain->elevation(2, 1, 1, -1), 0.0f);
  EXPECT_FALSE(terrain->build(nullptr));
}

TEST(MeshTerrain, CopiesHaveHeightsOfTheirOwn) {
  const HeightTexture heights(3, 3, slope());
  const Held<MeshTerrain> terrain;
  terrain->set_build_params(heights.get(), 2, 1, 1, -1);
  terrain->build(nullptr);
  const Held<MeshTerrain> copy(*terrain);
  terrain->_cleanup(nullptr);
  EXPECT_EQ(copy->elevation(2, 1, 1, -1), 2.0f);
  EXPECT_EQ(copy->get_num_vertices(nullptr), 9u);
}

}  // namespace
}  // namespace orv
