#include <orv/gpu/texture.h>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"
#include "support/vtable_slot.h"

#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/math/vec4.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using test::vtable_slot;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<unsigned char>;

/// Answers with what a real one would leave in the record.
class UploadingRenderer : public RecordingRenderer {
 public:
  using RecordingRenderer::RecordingRenderer;
  bool texture_load(RendererGpu* gpu, TextureData* data, unsigned int unit) override {
    RecordingRenderer::texture_load(gpu, data, unit);
    data->loaded_in_gpu_memory = true;
    data->gpu_update_needed = false;
    data->gl_texture_id = 7;
    data->renderer_id = get_id();
    return true;
  }
};

TEST(Texture, IsAResourceNamedByItsId) {
  Held<Texture> texture;
  EXPECT_EQ(texture->get_type(), NODE_TYPE_TEXTURE);
  EXPECT_TRUE(texture->is_type_of(NODE_TYPE_RESOURCE));
  const std::string name = "texture_" + std::to_string(texture->get_id());
  EXPECT_EQ(texture->get_name(), name);
  TextureData* data = texture->get_data_ptr();
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->get_texture_name(), name);
  EXPECT_EQ(data->get_texture_id(), texture->get_id());
  EXPECT_EQ(data->get_ref(), 1);
  EXPECT_EQ(texture->get_audio_video_block_id(), 0);
  texture->set_audio_video_block_id(5);
  EXPECT_EQ(texture->get_audio_video_block_id(), 5);
}

TEST(Texture, OperationsStandBehindThoseOfNodeInOrder) {
  std::size_t slot = vtable_slot(&Node::set_render_state);
  EXPECT_EQ(vtable_slot(&Texture::load_from_image), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::load_cubemap_face_image), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::create_1d), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::create_2d), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::create_2d_array), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::create_2d_rectangle), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::create_cubemap), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::init_color_texture_from_render_target), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::init_color_texture_from_render_target_v2), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::init_depth_texture_from_render_target), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::init_depth_texture_from_render_target_v2), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::gpu_memory_update), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::bind), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::unbind), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::activate), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::image_bind), ++slot);
  EXPECT_EQ(vtable_slot(&Texture::image_unbind), ++slot);
}

TEST(Texture, RenamingReachesTheBlock) {
  Held<Texture> texture;
  texture->set_name("wood");
  EXPECT_STREQ(texture->get_data_ptr()->get_texture_name(), "wood");
  texture->set_name(nullptr);
  EXPECT_STREQ(texture->get_name(), "wood");
}

// ---- creation ----

TEST(Texture, CreatorsSetTheirType) {
  Held<Texture> texture;
  EXPECT_TRUE(texture->create_1d(8, PF_RGB_U8, true));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_1D);
  EXPECT_EQ(texture->get_height(), 1u);
  EXPECT_TRUE(texture->create_2d(8, 4, PF_RGB_U8, true));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_TRUE(texture->create_2d_rectangle(3, 4, PF_RGBA_F32, true));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_RECTANGLE);
  EXPECT_EQ(texture->get_width(), 3u);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_F32);
}

TEST(Texture, FailedCreatorsLeaveTheType) {
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_1d(8, PF_RGB_U8, true));
  EXPECT_FALSE(texture->create_2d(8, 8, PF_RGBA_F16, true));
  EXPECT_FALSE(texture->create_2d_rectangle(8, 8, PF_UNKNOWN, true));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_1D);
}

TEST(Texture, CubeCreatorIsTrueWhateverTheFacesSay) {
  Held<Texture> texture;
  EXPECT_TRUE(texture->create_cubemap(4, PF_RGBA_F16, true));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_CUBE);
  EXPECT_TRUE(texture->create_cubemap(4, PF_RGB_U8, true));
  for (int face = 0; face < 6; ++face) {
    const Image* image = texture->get_cubemap_image_ptr(static_cast<CUBEMAP_FACE>(face));
    EXPECT_EQ(image->width, 4u);
    EXPECT_EQ(image->height, 4u);
    EXPECT_NE(image->u8_ptr, nullptr);
  }
}

TEST(Texture, ArrayReportsItsFirstLayer) {
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d(9, 9, PF_R_U8, true));
  ASSERT_TRUE(texture->create_2d_array(4, 3, 2, PF_RGB_U8, true));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D_ARRAY);
  EXPECT_EQ(texture->get_width(), 4u);
  EXPECT_EQ(texture->get_height(), 3u);
  EXPECT_EQ(texture->get_pixmap_ptr(), texture->get_layer_image_ptr(0)->u8_ptr);
  EXPECT_EQ(texture->get_image_ptr()->width, 9u);
  EXPECT_EQ(texture->get_layer_image_ptr(2), nullptr);
}

TEST(Texture, AFailedLayerIsLoggedAndLeavesTheType) {
  test::LogCapture log;
  Held<Texture> texture;
  EXPECT_FALSE(texture->create_2d_array(4, 4, 3, PF_RGB_F16, true));
  EXPECT_TRUE(log.contains("texture 2D array: failed to allocate memory for layer 0"));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_FALSE(texture->create_2d_array(1, 1, 0xFFFFFFFFu, PF_R_U8, true));
}

TEST(Texture, TakesImagesAndFaces) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
  image.set_codec_id(9);
  Held<Texture> texture;
  texture->get_data_ptr()->gpu_update_needed = false;
  EXPECT_TRUE(texture->load_from_image(image));
  EXPECT_TRUE(texture->get_data_ptr()->gpu_update_needed);
  EXPECT_NE(texture->get_image_ptr()->u8_ptr, image.u8_ptr);
  EXPECT_EQ(texture->get_image_ptr()->get_codec_id(), 9);
  EXPECT_TRUE(texture->load_cubemap_face_image(CUBEMAP_FACE_POSITIVE_Z, image));
  EXPECT_NE(texture->get_cubemap_image_ptr(CUBEMAP_FACE_POSITIVE_Z)->u8_ptr, nullptr);
  EXPECT_FALSE(texture->load_cubemap_face_image(static_cast<CUBEMAP_FACE>(6), image));
  EXPECT_FALSE(texture->load_cubemap_face_image(static_cast<CUBEMAP_FACE>(-1), image));
}

// ---- render targets ----

TEST(Texture, IsAViewOfAColourAttachment) {
  GpuRenderTarget target;
  target.width = 64;
  target.height = 32;
  target.pixel_format = PF_RGBA_U8;
  target.gl.color_textures[7] = 99;
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_1d(4, PF_R_U8, true));
  EXPECT_TRUE(texture->init_color_texture_from_render_target(&target, 7));
  const TextureData& data = *texture->get_data_ptr();
  EXPECT_EQ(data.gl_texture_id, 99u);
  EXPECT_TRUE(data.gl_texture_borrowed);
  EXPECT_FALSE(data.gpu_update_needed);
  EXPECT_TRUE(data.loaded_in_gpu_memory);
  EXPECT_EQ(data.type, TEXTURE_2D);
  EXPECT_EQ(data.image.width, 64u);
  EXPECT_EQ(data.image.height, 32u);
  EXPECT_EQ(data.image.depth, 32u);  // the height once more
  EXPECT_EQ(data.image.pixel_format, PF_RGBA_U8);
  EXPECT_EQ(data.image.u8_ptr, nullptr);  // four pixels were too few
  EXPECT_TRUE(texture->init_color_texture_from_render_target(&target, 8));
  EXPECT_EQ(data.gl_texture_id, 0u);
  EXPECT_FALSE(texture->init_color_texture_from_render_target(nullptr, 0));
}

TEST(Texture, ViewsLetGoOfBorrowedPixelsThatAreTooFew) {
  GpuRenderTarget target;
  target.width = 64;
  target.height = 32;
  target.pixel_format = PF_RGBA_U8;
  target.gl.color_textures[0] = 9;
  unsigned char pixels[4] = {};
  RecordingRenderer renderer;
  Held<Texture> texture;
  texture->get_image_ptr()->create(1, 1, 1, PF_RGBA_U8, false, false);
  texture->get_image_ptr()->codec_pixels = pixels;
  texture->set_pixmap_u8_ptr(pixels);
  EXPECT_TRUE(texture->init_color_texture_from_render_target(&target, 0));
  EXPECT_EQ(texture->get_pixmap_ptr(), nullptr);
  // Nothing is left to be uploaded from.
  texture->set_loaded_in_gpu_memory_state(false);
  texture->bind(&renderer, 0);
  EXPECT_THAT(renderer.names(), ElementsAre("texture_bind"));
}

TEST(Texture, IsAViewOfTheDepthAttachment) {
  GpuRenderTarget target;
  target.width = 8;
  target.height = 4;
  target.gl.depth_texture = 55;
  Held<Texture> texture;
  EXPECT_TRUE(texture->init_depth_texture_from_render_target(&target));
  EXPECT_EQ(texture->get_data_ptr()->gl_texture_id, 55u);
  EXPECT_EQ(texture->get_image_ptr()->depth, 1u);
  EXPECT_FALSE(texture->init_depth_texture_from_render_target(nullptr));
}

TEST(Texture, SecondFormsOfViewsAskTheRenderer) {
  GpuRenderTarget target;
  Held<Texture> texture;
  RecordingRenderer renderer;
  renderer.label(texture->get_data_ptr(), "data");
  renderer.label(&target, "target");
  EXPECT_TRUE(texture->init_color_texture_from_render_target_v2(&renderer, &target, 2));
  EXPECT_TRUE(texture->init_depth_texture_from_render_target_v2(&renderer, &target));
  EXPECT_THAT(renderer.calls(), ElementsAre("texture_bind_render_target_color(data, target, 2)",
                                            "texture_bind_render_target_depth(data, target)"));
  EXPECT_FALSE(texture->init_color_texture_from_render_target_v2(nullptr, &target, 2));
  EXPECT_FALSE(texture->init_depth_texture_from_render_target_v2(&renderer, nullptr));
}

// ---- use ----

TEST(Texture, BindUploadsWhatWasNotUploadedYet) {
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d(2, 2, PF_RGB_U8, true));
  UploadingRenderer renderer;
  renderer.label(texture->get_data_ptr(), "data");
  EXPECT_TRUE(texture->bind(&renderer, 3));
  EXPECT_THAT(renderer.calls(),
              ElementsAre("texture_load(null, data, 3)", "texture_bind(data, 3)"));
  renderer.clear();
  EXPECT_TRUE(texture->bind(&renderer, 3));
  EXPECT_THAT(renderer.calls(), ElementsAre("texture_bind(data, 3)"));
}

TEST(Texture, BindWithoutPixelsOnlyBindsAndRefreshes) {
  Held<Texture> texture;
  RecordingRenderer renderer;
  renderer.answer("texture_bind", 0);
  EXPECT_FALSE(texture->bind(&renderer, 0));
  EXPECT_THAT(renderer.names(), ElementsAre("texture_bind", "texture_update_2d"));
  EXPECT_FALSE(texture->get_data_ptr()->gpu_update_needed);
  EXPECT_FALSE(texture->bind(nullptr, 0));
}

TEST(Texture, BindRefreshesChangedPixelsThroughTheVirtualOperation) {
  class Counting : public Texture {
   public:
    bool gpu_memory_update(Renderer* renderer) override {
      ++updates;
      return Texture::gpu_memory_update(renderer);
    }
    int updates = 0;
  };
  Held<Counting> texture;
  ASSERT_TRUE(texture->create_2d(2, 2, PF_RGB_U8, true));
  UploadingRenderer renderer;
  texture->bind(&renderer, 0);
  EXPECT_EQ(texture->updates, 0);
  texture->flip_vertical();
  texture->bind(&renderer, 0);
  EXPECT_EQ(texture->updates, 1);
  texture->bind(&renderer, 0);
  EXPECT_EQ(texture->updates, 1);
}

TEST(Texture, MemoryUpdateGoesByType) {
  struct Row {
    int type;
    const char* call;
    bool result;
  };
  const Row rows[] = {{TEXTURE_2D, "texture_update_2d(data, 0, 0, 6, 5, 1)", true},
                      {TEXTURE_1D, "texture_update_1d(data, 0, 6)", true},
                      {TEXTURE_CUBE, "texture_load_cube_all_faces(data)", true},
                      {TEXTURE_RECTANGLE, nullptr, false},
                      {TEXTURE_2D_ARRAY, nullptr, false},
                      {TEXTURE_3D, nullptr, false},
                      {99, nullptr, false}};
  for (const Row& row : rows) {
    Held<Texture> texture;
    ASSERT_TRUE(texture->create_2d(6, 5, PF_R_U8, true));
    texture->get_data_ptr()->type = static_cast<TEXTURE_TYPE>(row.type);
    RecordingRenderer renderer;
    renderer.label(texture->get_data_ptr(), "data");
    EXPECT_EQ(texture->gpu_memory_update(&renderer), row.result) << row.type;
    EXPECT_FALSE(texture->get_data_ptr()->gpu_update_needed) << row.type;
    if (row.call) {
      EXPECT_THAT(renderer.calls(), ElementsAre(row.call));
    } else {
      EXPECT_THAT(renderer.calls(), IsEmpty());
    }
  }
  Held<Texture> texture;
  EXPECT_FALSE(texture->gpu_memory_update(nullptr));
}

TEST(Texture, ForwardsUnbindingAndImageUnits) {
  Held<Texture> texture;
  RecordingRenderer renderer;
  renderer.label(texture->get_data_ptr(), "data");
  EXPECT_TRUE(texture->unbind(&renderer, 1));
  EXPECT_TRUE(texture->activate(&renderer, 2));
  EXPECT_TRUE(texture->image_bind(&renderer, 3, DATA_ACCESS_READ_ONLY));
  EXPECT_TRUE(texture->image_unbind(&renderer, 4));
  EXPECT_TRUE(texture->unload(&renderer));
  EXPECT_THAT(renderer.calls(),
              ElementsAre("texture_unbind(data, 1)", "texture_unbind_unit(2)",
                          "texture_bind_image(data, 3, 2)", "texture_bind_image(null, 4, 3)",
                          "texture_unload(data)"));
  EXPECT_FALSE(texture->unbind(nullptr, 1));
  EXPECT_FALSE(texture->activate(nullptr, 1));
  EXPECT_FALSE(texture->image_bind(nullptr, 1, DATA_ACCESS_READ_ONLY));
  EXPECT_FALSE(texture->image_unbind(nullptr, 1));
  EXPECT_FALSE(texture->unload(nullptr));
}

TEST(Texture, UploadChoosesByTheApi) {
  Held<Texture> texture;
  RecordingRenderer renderer;
  renderer.label(texture->get_data_ptr(), "data");
  EXPECT_TRUE(texture->upload(&renderer, 5, true));
  renderer.use_api_type(ORV_API3D_D3D12);
  EXPECT_TRUE(texture->upload(&renderer, 5, true));
  EXPECT_THAT(renderer.calls(), ElementsAre("texture_load(null, data, 5)",
                                            "texture_load_direct3d(null, data, 5, 1)"));
  EXPECT_FALSE(texture->upload(nullptr, 5, true));
}

TEST(Texture, SamplingIsStoredAndAppliedWithARenderer) {
  Held<Texture> texture;
  texture->set_filtering_mode(nullptr, SAMPLER_FILTERING_TRILINEAR);
  texture->set_addressing_mode(nullptr, SAMPLER_ADDRESSING_MIRROR);
  texture->set_anisotropy(nullptr, 4);
  EXPECT_EQ(texture->get_filtering_mode(), SAMPLER_FILTERING_TRILINEAR);
  EXPECT_EQ(texture->get_addressing_mode(), SAMPLER_ADDRESSING_MIRROR);
  EXPECT_EQ(texture->get_anisotropy(), 4.0f);
  RecordingRenderer renderer;
  renderer.label(texture->get_data_ptr(), "data");
  texture->set_filtering_mode(&renderer, SAMPLER_FILTERING_NEAREST);
  texture->set_addressing_mode(&renderer, SAMPLER_ADDRESSING_CLAMP);
  texture->set_anisotropy(&renderer, 2);
  EXPECT_THAT(renderer.calls(), ElementsAre("texture_set_filtering_mode(data, 1)",
                                            "texture_set_addressing_mode(data, 2)",
                                            "texture_set_anisotropy(data, 2)"));
  texture->gen_mipmaps(false);
  EXPECT_FALSE(texture->get_data_ptr()->gen_mipmaps);
  texture->set_mipmap_levels(1, 5);
  EXPECT_EQ(texture->get_mipmap_base_level(), 1);
  EXPECT_EQ(texture->get_mipmap_max_level(), 5);
}

// ---- sharing ----

TEST(Texture, TheLastOfABlockUnloadsIt) {
  RecordingRenderer renderer;
  Held<Texture> a, b;
  ASSERT_TRUE(b->share_texture_data(nullptr, a));
  EXPECT_EQ(a->get_data_ptr(), b->get_data_ptr());
  EXPECT_EQ(a->get_data_ptr()->get_ref(), 2);
  EXPECT_TRUE(a->_cleanup(&renderer));
  EXPECT_THAT(renderer.calls(), IsEmpty());
  EXPECT_EQ(a->get_data_ptr(), nullptr);
  EXPECT_EQ(b->get_data_ptr()->get_ref(), 1);
  EXPECT_TRUE(b->_cleanup(&renderer));
  EXPECT_THAT(renderer.names(), ElementsAre("texture_unload"));
}

TEST(Texture, SharingWithNobodyOrItself) {
  Held<Texture> texture, empty;
  EXPECT_FALSE(texture->share_texture_data(nullptr, nullptr));
  empty->_cleanup(nullptr);
  EXPECT_FALSE(texture->share_texture_data(nullptr, empty));
  TextureData* data = texture->get_data_ptr();
  EXPECT_TRUE(texture->share_texture_data(nullptr, texture));
  EXPECT_EQ(texture->get_data_ptr(), data);
  EXPECT_EQ(data->get_ref(), 1);
}

TEST(Texture, InitGivesAFreshBlock) {
  RecordingRenderer renderer;
  Held<Texture> texture;
  texture->set_name("n");
  ASSERT_TRUE(texture->create_2d(2, 2, PF_R_U8, true));
  EXPECT_TRUE(texture->_init(&renderer));
  EXPECT_THAT(renderer.names(), ElementsAre("texture_unload"));
  EXPECT_EQ(texture->get_width(), 0u);
  EXPECT_EQ(texture->get_data_ptr()->get_ref(), 1);
  EXPECT_STREQ(texture->get_data_ptr()->get_texture_name(), "n");
}

TEST(Texture, RendererIdIsThatOfTheUploader) {
  UploadingRenderer renderer;
  Held<Texture> texture;
  EXPECT_EQ(texture->get_renderer_id(), 0);
  texture->upload(&renderer, 0, false);
  EXPECT_EQ(texture->get_renderer_id(), renderer.get_id());
}

TEST(Texture, WithoutABlockEveryOperationIsRefused) {
  Held<Texture> texture;
  RecordingRenderer renderer;
  GpuRenderTarget target;
  Image image;
  float values[4] = {};
  texture->_cleanup(nullptr);
  texture->_cleanup(nullptr);
  EXPECT_FALSE(texture->load_from_image(image));
  EXPECT_FALSE(texture->load_cubemap_face_image(CUBEMAP_FACE_POSITIVE_X, image));
  EXPECT_FALSE(texture->create_1d(1, PF_R_U8, true));
  EXPECT_FALSE(texture->create_2d(1, 1, PF_R_U8, true));
  EXPECT_FALSE(texture->create_2d_array(1, 1, 1, PF_R_U8, true));
  EXPECT_FALSE(texture->create_2d_rectangle(1, 1, PF_R_U8, true));
  EXPECT_FALSE(texture->create_cubemap(1, PF_R_U8, true));
  EXPECT_FALSE(texture->init_color_texture_from_render_target(&target, 0));
  EXPECT_FALSE(texture->init_depth_texture_from_render_target(&target));
  EXPECT_FALSE(texture->init_color_texture_from_render_target_v2(&renderer, &target, 0));
  EXPECT_FALSE(texture->init_depth_texture_from_render_target_v2(&renderer, &target));
  EXPECT_FALSE(texture->gpu_memory_update(&renderer));
  EXPECT_FALSE(texture->bind(&renderer, 0));
  EXPECT_FALSE(texture->unbind(&renderer, 0));
  EXPECT_FALSE(texture->activate(&renderer, 0));
  EXPECT_FALSE(texture->image_bind(&renderer, 0, DATA_ACCESS_READ_ONLY));
  EXPECT_FALSE(texture->image_unbind(&renderer, 0));
  EXPECT_FALSE(texture->upload(&renderer, 0, false));
  EXPECT_FALSE(texture->unload(&renderer));
  texture->set_filtering_mode(&renderer, SAMPLER_FILTERING_LINEAR);
  texture->set_addressing_mode(&renderer, SAMPLER_ADDRESSING_WRAP);
  texture->set_anisotropy(&renderer, 1);
  texture->gen_mipmaps(true);
  texture->set_mipmap_levels(0, 0);
  texture->set_name("still");
  EXPECT_EQ(texture->get_width(), 0u);
  EXPECT_EQ(texture->get_height(), 0u);
  EXPECT_EQ(texture->get_pixel_format(), PF_UNKNOWN);
  EXPECT_EQ(texture->get_pixmap_ptr(), nullptr);
  EXPECT_EQ(texture->get_pixmap_u8_ptr(), nullptr);
  EXPECT_EQ(texture->get_pixmap_f32_ptr(), nullptr);
  EXPECT_EQ(texture->get_image_ptr(), nullptr);
  EXPECT_EQ(texture->get_cubemap_image_ptr(CUBEMAP_FACE_POSITIVE_X), nullptr);
  EXPECT_EQ(texture->get_max_number_of_mipmaps(), 0u);
  EXPECT_EQ(texture->get_renderer_id(), 0);
  EXPECT_FALSE(texture->set_compression_format("x"));
  EXPECT_FALSE(texture->update_pixel_format(PF_R_U8));
  EXPECT_FALSE(texture->update_pixmap_rgb_u8(values));
  EXPECT_FALSE(texture->update_pixmap_rgb_u8_2d_array(0, values));
  EXPECT_FALSE(texture->update_pixmap_rgba_u8_from_framebuffer(&renderer));
  EXPECT_FALSE(texture->update_pixmap_rgba_u8_from_render_target_v2(&renderer, &target));
  EXPECT_FALSE(texture->get_texel_1d(0, values));
  EXPECT_FALSE(texture->set_texel_1d_v2(0, values));
  EXPECT_FALSE(texture->flip_vertical());
  EXPECT_FALSE(texture->is_loaded_in_gpu_memory());
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

}  // namespace
}  // namespace orv
