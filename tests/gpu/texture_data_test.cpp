#include <orv/gpu/texture_data.h>

#include <orv/gpu/texture_sampler.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace orv {
namespace {

TEST(TextureSampler, HasItsDefaultsAndAnIdentity) {
  const TextureSampler a, b;
  EXPECT_GT(a.getid(), 0);
  EXPECT_NE(a.getid(), b.getid());
  EXPECT_EQ(a.filtering_mode, SAMPLER_FILTERING_LINEAR);
  EXPECT_EQ(a.addressing_mode_s, SAMPLER_ADDRESSING_WRAP);
  EXPECT_EQ(a.addressing_mode_t, SAMPLER_ADDRESSING_WRAP);
  EXPECT_EQ(a.addressing_mode_r, SAMPLER_ADDRESSING_WRAP);
  EXPECT_EQ(a.anisotropy, 1.0f);
  EXPECT_EQ(a.api_words[0] | a.api_words[1], 0u);
  TextureSampler c;
  c = a;
  EXPECT_EQ(c.getid(), a.getid());
}

TEST(TextureArray, AllocCountsAndCleanupEmpties) {
  TextureArray array;
  EXPECT_TRUE(array.owns_layers);
  EXPECT_EQ(array.get_layer(0), nullptr);
  ASSERT_TRUE(array.alloc(3));
  EXPECT_EQ(array.num_layers, 3u);
  EXPECT_NE(array.get_layer(2), nullptr);
  EXPECT_EQ(array.get_layer(3), nullptr);
  array.cleanup();
  EXPECT_EQ(array.layers, nullptr);
  EXPECT_EQ(array.num_layers, 0u);
  EXPECT_FALSE(array.alloc(TextureArray::MAX_LAYERS + 1));
  EXPECT_TRUE(array.alloc(0));
}

TEST(TextureArray, LetsGoOfLayersThatItDoesNotOwn) {
  Image layers[2];
  TextureArray array;
  array.layers = layers;
  array.num_layers = 2;
  array.owns_layers = false;
  array.cleanup();
  EXPECT_EQ(array.layers, nullptr);
}

TEST(TextureData, HasItsDefaults) {
  const TextureData data;
  EXPECT_STREQ(data.get_texture_name(), "");
  EXPECT_EQ(data.get_texture_id(), 0);
  EXPECT_FALSE(data.is_loaded_in_gpu_memory());
  EXPECT_TRUE(data.gpu_update_needed);
  EXPECT_EQ(data.get_type(), TEXTURE_2D);
  EXPECT_TRUE(data.gen_mipmaps);
  EXPECT_EQ(data.get_mipmap_base_level(), 0);
  EXPECT_EQ(data.get_mipmap_max_level(), -1);
  EXPECT_EQ(data.filtering_mode, SAMPLER_FILTERING_LINEAR);
  EXPECT_EQ(data.addressing_mode, SAMPLER_ADDRESSING_WRAP);
  EXPECT_EQ(data.anisotropy, 1.0f);
  EXPECT_EQ(data.gl_format, 0x1908u);
  EXPECT_EQ(data.gl_texture_id, 0u);
  EXPECT_EQ(data.pixel_buffer_id, 0u);
  EXPECT_FALSE(data.use_pixel_buffer);
  EXPECT_EQ(data.renderer_id, 0);
  EXPECT_STREQ(data.get_compression_format(), "");
  EXPECT_FALSE(data.get_gpu_compression_state());
  EXPECT_TRUE(data.get_s3tc_compression_state());
  EXPECT_EQ(data.get_gpu_memory_size(), 0u);
  EXPECT_EQ(data.get_gpu_memory_size_compressed(), 0u);
  EXPECT_EQ(data.get_ref(), 0);
  EXPECT_GT(data.getid(), 0);
  EXPECT_TRUE(data.cubemap_faces[5].loaded);
  EXPECT_FALSE(data.has_pixels());
}

TEST(TextureData, CountDoesNotFallBelowZero) {
  TextureData data;
  EXPECT_EQ(data.dec_ref(), 0);
  EXPECT_EQ(data.inc_ref(), 1);
  EXPECT_EQ(data.inc_ref(), 2);
  EXPECT_EQ(data.dec_ref(), 1);
}

TEST(TextureData, NameIsCutAndNullClearsIt) {
  TextureData data;
  data.set_texture_name_and_id(std::string(200, 'x').c_str(), 7);
  EXPECT_EQ(std::strlen(data.get_texture_name()), 127u);
  EXPECT_EQ(data.get_texture_id(), 7);
  data.set_texture_name_and_id(nullptr, 8);
  EXPECT_STREQ(data.get_texture_name(), "");
}

TEST(TextureData, CompressionNameIsCutTo31Characters) {
  TextureData data;
  EXPECT_FALSE(data.set_compression_format(nullptr));
  EXPECT_TRUE(data.set_compression_format(std::string(40, 'c').c_str()));
  EXPECT_EQ(std::strlen(data.get_compression_format()), 31u);
  EXPECT_TRUE(data.get_gpu_compression_state());
}

TEST(TextureData, EmptyCompressionNameIsTrueWithNothingSet) {
  TextureData data;
  EXPECT_TRUE(data.set_compression_format(""));
  EXPECT_STREQ(data.get_compression_format(), "");
  EXPECT_FALSE(data.get_gpu_compression_state());
  data.set_compression_format("RGB_S3TC_DXT1");
  EXPECT_TRUE(data.set_compression_format(""));
  EXPECT_STREQ(data.get_compression_format(), "");
  EXPECT_TRUE(data.get_gpu_compression_state());
}

TEST(TextureData, MipmapCountIsOfLevels) {
  struct Row {
    unsigned int width, height, levels;
  };
  for (const Row& row : {Row{256, 1, 9}, Row{1, 1, 1}, Row{1, 256, 9}, Row{255, 3, 8}, Row{0, 0, 0},
                         Row{512, 512, 10}}) {
    TextureData data;
    data.image.create(row.width, row.height, 1, PF_R_U8, false, false);
    EXPECT_EQ(data.get_max_number_of_mipmaps(), row.levels) << row.width;
  }
}

TEST(TextureData, PixmapIsTheStoreOfTheFormat) {
  unsigned char bytes[64] = {}, borrowed[64] = {};
  float floats[16] = {};
  for (int number = 0; number <= 13; ++number) {
    TextureData data;
    data.image.create(2, 2, 1, static_cast<PIXEL_FORMAT>(number), false, false);
    data.image.codec_pixels = borrowed;
    const bool is_bytes = (number >= 1 && number <= 4) || number == 11 || number == 12;
    const bool is_floats = number >= 5 && number <= 10;
    EXPECT_EQ(data.get_pixmap_ptr(), is_bytes ? borrowed : nullptr) << number;
    data.image.set_u8_ptr(bytes);
    data.image.set_f32_ptr(floats);
    const void* expected = is_bytes    ? static_cast<void*>(bytes)
                           : is_floats ? static_cast<void*>(floats)
                                       : nullptr;
    EXPECT_EQ(data.get_pixmap_ptr(), expected) << number;
  }
}

TEST(TextureData, LayersComeBeforeTheImage) {
  TextureData data;
  ASSERT_TRUE(data.image.create(9, 9, 1, PF_RGB_U8, true, true));
  ASSERT_TRUE(data.layers.alloc(2));
  ASSERT_TRUE(data.layers.layers[0].create(4, 3, 1, PF_RGBA_F32, true, true));
  EXPECT_EQ(data.get_width(), 4u);
  EXPECT_EQ(data.get_height(), 3u);
  EXPECT_EQ(data.get_pixel_format(), PF_RGBA_F32);
  EXPECT_EQ(data.get_pixmap_ptr(), data.layers.layers[0].f32_ptr);
  EXPECT_TRUE(data.has_pixels());
}

TEST(TextureData, SizeWithoutPixelsKeepsThoseThatSuffice) {
  TextureData data;
  ASSERT_TRUE(data.image.create(4, 4, 1, PF_RGBA_U8, true, true));
  const unsigned char* store = data.image.u8_ptr;
  data.set_image_size(2, 8, 3, PF_BGRA_U8);
  EXPECT_EQ(data.image.u8_ptr, store);
  EXPECT_EQ(data.image.width, 2u);
  EXPECT_EQ(data.image.height, 8u);
  EXPECT_EQ(data.image.depth, 3u);
  EXPECT_EQ(data.image.pixel_format, PF_BGRA_U8);
  data.set_image_size(4, 5, 1, PF_RGBA_U8);
  EXPECT_EQ(data.image.u8_ptr, nullptr);
  EXPECT_FALSE(data.has_pixels());
}

TEST(TextureData, SizeWithoutPixelsLetsGoOfHandedInPixelsWhenItGrows) {
  struct Row {
    unsigned int width, height;
    PIXEL_FORMAT format;
    bool stays;
  };
  const Row rows[] = {{2, 2, PF_RGBA_U8, true},
                      {4, 1, PF_BGRA_U8, true},
                      {1, 1, PF_RGB_U8, true},
                      {3, 2, PF_RGBA_U8, false},
                      {2, 2, PF_RGBA_F32, false},
                      {2, 2, PF_RGBA_F16, false},
                      {0xFFFFFFFFu, 0xFFFFFFFFu, PF_RGBA_F32, false}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.width << "x" << row.height << " " << row.format);
    unsigned char bytes[16] = {}, borrowed[16] = {};
    float floats[16] = {};
    TextureData data;
    data.image.create(2, 2, 1, PF_RGBA_U8, false, false);
    data.image.set_u8_ptr(bytes);
    data.image.set_f32_ptr(floats);
    data.image.codec_pixels = borrowed;
    data.set_image_size(row.width, row.height, 1, row.format);
    EXPECT_EQ(data.image.u8_ptr, row.stays ? bytes : nullptr);
    EXPECT_EQ(data.image.f32_ptr, row.stays ? floats : nullptr);
    EXPECT_EQ(data.image.codec_pixels, row.stays ? borrowed : nullptr);
  }
}

TEST(TextureData, OwnTextsMaySetTheFieldsThatTheyComeFrom) {
  TextureData data;
  data.set_texture_name_and_id("wood", 3);
  data.set_texture_name_and_id(data.get_texture_name(), 4);
  EXPECT_STREQ(data.get_texture_name(), "wood");
  data.set_compression_format("RGB_S3TC_DXT1");
  data.set_gpu_compression_state(false);
  EXPECT_TRUE(data.set_compression_format(data.get_compression_format()));
  EXPECT_STREQ(data.get_compression_format(), "RGB_S3TC_DXT1");
  EXPECT_TRUE(data.get_gpu_compression_state());
}

TEST(TextureData, FormatOfACubeMapIsChangedOnAllFaces) {
  TextureData data;
  data.type = TEXTURE_CUBE;
  ASSERT_TRUE(data.cubemap_faces[5].image.create(2, 2, 1, PF_RGB_U8, true, true));
  EXPECT_TRUE(data.update_pixel_format(PF_RGBA_U8));
  EXPECT_EQ(data.cubemap_faces[5].image.pixel_format, PF_RGBA_U8);
  EXPECT_TRUE(data.update_pixel_format(PF_RGBA_U8));  // no face changes
}

TEST(TextureData, FormatOfLayersAndOfTheImage) {
  TextureData data;
  ASSERT_TRUE(data.image.create(2, 2, 1, PF_RGB_U8, true, true));
  EXPECT_TRUE(data.update_pixel_format(PF_R_U8));
  EXPECT_FALSE(data.update_pixel_format(PF_R_U8));
  ASSERT_TRUE(data.layers.alloc(2));
  for (unsigned int i = 0; i < 2; ++i) {
    ASSERT_TRUE(data.layers.layers[i].create(2, 2, 1, PF_RGB_U8, true, true));
  }
  EXPECT_TRUE(data.update_pixel_format(PF_RG_U8));
  EXPECT_EQ(data.layers.layers[1].pixel_format, PF_RG_U8);
  EXPECT_EQ(data.image.pixel_format, PF_R_U8);
}

TEST(TextureData, CleanupReleasesAllPixels) {
  TextureData data;
  ASSERT_TRUE(data.image.create(2, 2, 1, PF_R_U8, true, true));
  ASSERT_TRUE(data.cubemap_faces[0].image.create(2, 2, 1, PF_R_U8, true, true));
  ASSERT_TRUE(data.layers.alloc(1));
  data.cleanup_cubemap_data();
  EXPECT_EQ(data.cubemap_faces[0].image.u8_ptr, nullptr);
  EXPECT_NE(data.image.u8_ptr, nullptr);
  data.cleanup();
  EXPECT_EQ(data.image.u8_ptr, nullptr);
  EXPECT_EQ(data.layers.num_layers, 0u);
}

TEST(TextureData, FacesAndLayersAreTested) {
  TextureData data;
  EXPECT_EQ(data.get_cubemap_image_ptr(static_cast<CUBEMAP_FACE>(-1)), nullptr);
  EXPECT_EQ(data.get_cubemap_image_ptr(static_cast<CUBEMAP_FACE>(6)), nullptr);
  EXPECT_EQ(data.get_cubemap_image_ptr(CUBEMAP_FACE_NEGATIVE_Z), &data.cubemap_faces[5].image);
  EXPECT_EQ(data.get_layer_image_ptr(0), nullptr);
}

}  // namespace
}  // namespace orv
