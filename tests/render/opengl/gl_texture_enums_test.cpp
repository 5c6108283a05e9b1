#include "render/opengl/gl_texture_enums.h"

#include <GL/glext.h>
#include <gtest/gtest.h>

using namespace orv;
using namespace orv::detail;

namespace {

struct FormatRow {
  int value;
  GLenum internal_format, format, type;
  unsigned int size;
};

constexpr GLenum U8 = GL_UNSIGNED_BYTE;

const FormatRow TEXTURE_FORMATS[] = {{1, GL_RGB, GL_RGB, U8, 3},
                                     {2, GL_RGB, GL_BGR, U8, 3},
                                     {3, GL_RGBA, GL_RGBA, U8, 4},
                                     {4, GL_RGBA, GL_BGRA, U8, 4},
                                     {5, GL_RGB32F, GL_RGB, GL_FLOAT, 12},
                                     {6, GL_RGBA32F, GL_RGBA, GL_FLOAT, 16},
                                     {7, GL_R32F, GL_RED, GL_FLOAT, 4},
                                     {8, GL_RGB16F, GL_RGB, GL_FLOAT, 12},
                                     {9, GL_RGBA16F, GL_RGBA, GL_FLOAT, 16},
                                     {10, GL_R16F, GL_RED, GL_FLOAT, 4},
                                     {11, GL_RED, GL_RED, U8, 1},
                                     {12, GL_RG, GL_RG, U8, 2}};

const FormatRow INTEGER_FORMATS[] = {{13, GL_R32UI, GL_RED_INTEGER, GL_UNSIGNED_INT, 4},
                                     {14, GL_RG32UI, GL_RG_INTEGER, GL_UNSIGNED_INT, 8},
                                     {15, GL_RGBA32UI, GL_RGBA_INTEGER, GL_UNSIGNED_INT, 16},
                                     {16, GL_R32I, GL_RED_INTEGER, GL_INT, 4},
                                     {17, GL_RG32I, GL_RG_INTEGER, GL_INT, 8},
                                     {18, GL_RGBA32I, GL_RGBA_INTEGER, GL_INT, 16},
                                     {19, GL_R16UI, GL_RED_INTEGER, GL_UNSIGNED_SHORT, 2},
                                     {20, GL_RG16UI, GL_RG_INTEGER, GL_UNSIGNED_SHORT, 4},
                                     {21, GL_RGBA16UI, GL_RGBA_INTEGER, GL_UNSIGNED_SHORT, 8},
                                     {22, GL_R16I, GL_RED_INTEGER, GL_SHORT, 2},
                                     {23, GL_RG16I, GL_RG_INTEGER, GL_SHORT, 4},
                                     {24, GL_RGBA16I, GL_RGBA_INTEGER, GL_SHORT, 8},
                                     {25, GL_R8UI, GL_RED_INTEGER, U8, 1},
                                     {26, GL_RG8UI, GL_RG_INTEGER, U8, 2},
                                     {27, GL_RGBA8UI, GL_RGBA_INTEGER, U8, 4},
                                     {28, GL_R8I, GL_RED_INTEGER, GL_BYTE, 1},
                                     {29, GL_RG8I, GL_RG_INTEGER, GL_BYTE, 2},
                                     {30, GL_RGBA8I, GL_RGBA_INTEGER, GL_BYTE, 4}};

void expect_row(const FormatRow& row, const GlPixelFormat& found) {
  EXPECT_TRUE(found.is_valid()) << row.value;
  EXPECT_EQ(row.internal_format, found.internal_format) << row.value;
  EXPECT_EQ(row.format, found.format) << row.value;
  EXPECT_EQ(row.type, found.type) << row.value;
  EXPECT_EQ(row.size, gl_pixel_size(found)) << row.value;
}

}  // namespace

TEST(GlTextureEnums, TexturesTakeTwelveFormats) {
  for (const FormatRow& row : TEXTURE_FORMATS) {
    const auto format = static_cast<PIXEL_FORMAT>(row.value);
    expect_row(row, gl_texture_format(format));
    expect_row(row, gl_target_format(format));
    EXPECT_FALSE(gl_target_format(format).integer);
  }
}

TEST(GlTextureEnums, IntegersAreForRenderTargetsAlone) {
  for (const FormatRow& row : INTEGER_FORMATS) {
    const auto format = static_cast<PIXEL_FORMAT>(row.value);
    EXPECT_FALSE(gl_texture_format(format).is_valid()) << row.value;
    expect_row(row, gl_target_format(format));
    EXPECT_TRUE(gl_target_format(format).integer) << row.value;
  }
}

TEST(GlTextureEnums, NumbersPastTheTablesAreNoFormats) {
  for (const int value : {-1, 0, 31, 1 << 30}) {
    EXPECT_FALSE(gl_texture_format(static_cast<PIXEL_FORMAT>(value)).is_valid());
    EXPECT_FALSE(gl_target_format(static_cast<PIXEL_FORMAT>(value)).is_valid());
  }
}

TEST(GlTextureEnums, CompressionByChannels) {
  EXPECT_EQ(static_cast<GLenum>(GL_COMPRESSED_RGB), gl_texture_format(PF_BGR_U8).compressed);
  EXPECT_EQ(static_cast<GLenum>(GL_COMPRESSED_RGBA), gl_texture_format(PF_RGBA_U8).compressed);
  EXPECT_EQ(static_cast<GLenum>(GL_COMPRESSED_RED), gl_texture_format(PF_R_U8).compressed);
  EXPECT_EQ(static_cast<GLenum>(GL_COMPRESSED_RG), gl_texture_format(PF_RG_U8).compressed);
}

TEST(GlTextureEnums, CompressionByName) {
  const struct {
    const char* name;
    GLenum format;
    GlCompressionGroup group;
  } rows[] = {{"COMPRESSED_RED", GL_COMPRESSED_RED, GlCompressionGroup::GENERIC},
              {"COMPRESSED_RG", GL_COMPRESSED_RG, GlCompressionGroup::GENERIC},
              {"COMPRESSED_RGB", GL_COMPRESSED_RGB, GlCompressionGroup::GENERIC},
              {"COMPRESSED_RGBA", GL_COMPRESSED_RGBA, GlCompressionGroup::GENERIC},
              {"RGB_S3TC_DXT1", GL_COMPRESSED_RGB_S3TC_DXT1_EXT, GlCompressionGroup::S3TC},
              {"RGBA_S3TC_DXT1", GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, GlCompressionGroup::S3TC},
              {"RGBA_S3TC_DXT3", GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, GlCompressionGroup::S3TC},
              {"RGBA_S3TC_DXT5", GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, GlCompressionGroup::S3TC},
              {"RED_RGTC1", GL_COMPRESSED_RED_RGTC1, GlCompressionGroup::RGTC},
              {"SIGNED_RED_RGTC1", GL_COMPRESSED_SIGNED_RED_RGTC1, GlCompressionGroup::RGTC},
              {"RED_GREEN_RGTC2", GL_COMPRESSED_RG_RGTC2, GlCompressionGroup::RGTC},
              {"SIGNED_RED_GREEN_RGTC2", GL_COMPRESSED_SIGNED_RG_RGTC2, GlCompressionGroup::RGTC}};
  for (const auto& row : rows) {
    GlCompressionGroup group{};
    EXPECT_EQ(row.format, gl_compressed_format(row.name, &group)) << row.name;
    EXPECT_EQ(row.group, group) << row.name;
  }
  GlCompressionGroup group{};
  EXPECT_EQ(0u, gl_compressed_format("RGBA_S3TC", &group));
  EXPECT_EQ(0u, gl_compressed_format("", &group));
}

TEST(GlTextureEnums, ImagesOfUnlistedFormatsAreRgba) {
  EXPECT_EQ(static_cast<GLenum>(GL_RGBA8), gl_image_format(PF_RGBA_U8));
  EXPECT_EQ(static_cast<GLenum>(GL_RGBA8), gl_image_format(PF_BGRA_U8));
  EXPECT_EQ(static_cast<GLenum>(GL_RG8), gl_image_format(PF_RG_U8));
  EXPECT_EQ(static_cast<GLenum>(GL_R8), gl_image_format(PF_R_U8));
  EXPECT_EQ(static_cast<GLenum>(GL_RGBA32F), gl_image_format(PF_RGBA_F32));
  EXPECT_EQ(static_cast<GLenum>(GL_R32F), gl_image_format(PF_R_F32));
  for (const PIXEL_FORMAT format : {PF_UNKNOWN, PF_RGB_U8, PF_RGBA_F16, PF_R_U32}) {
    EXPECT_EQ(static_cast<GLenum>(GL_RGBA), gl_image_format(format));
  }
}

TEST(GlTextureEnums, TargetsByType) {
  const GLenum targets[] = {GL_TEXTURE_2D,        GL_TEXTURE_1D,       GL_TEXTURE_2D,
                            GL_TEXTURE_3D,        GL_TEXTURE_CUBE_MAP, GL_TEXTURE_2D_MULTISAMPLE,
                            GL_TEXTURE_RECTANGLE, GL_TEXTURE_2D_ARRAY, GL_TEXTURE_2D};
  for (int type = 0; type < 9; ++type) {
    EXPECT_EQ(targets[type], gl_texture_target(static_cast<TEXTURE_TYPE>(type))) << type;
  }
}

TEST(GlTextureEnums, FiltersAndWrapping) {
  const auto mode = [](int value) { return static_cast<SAMPLER_FILTERING_MODE>(value); };
  EXPECT_EQ(GL_NEAREST, gl_mag_filter(mode(1)));
  EXPECT_EQ(GL_NEAREST_MIPMAP_NEAREST, gl_min_filter(mode(1), true));
  EXPECT_EQ(GL_NEAREST, gl_min_filter(mode(1), false));
  EXPECT_EQ(GL_LINEAR_MIPMAP_LINEAR, gl_min_filter(mode(3), true));
  for (const int other : {0, 2, 3, 9, -1}) {
    EXPECT_EQ(GL_LINEAR, gl_mag_filter(mode(other)));
    EXPECT_EQ(GL_LINEAR, gl_min_filter(mode(other), false));
    if (other == 3) continue;
    EXPECT_EQ(GL_LINEAR_MIPMAP_NEAREST, gl_min_filter(mode(other), true));
  }
  EXPECT_EQ(GL_REPEAT, gl_wrap(SAMPLER_ADDRESSING_WRAP));
  EXPECT_EQ(GL_MIRRORED_REPEAT, gl_wrap(SAMPLER_ADDRESSING_MIRROR));
  for (const int other : {0, 2, 4}) {
    EXPECT_EQ(GL_CLAMP_TO_EDGE, gl_wrap(static_cast<SAMPLER_ADDRESSING_MODE>(other)));
  }
}

TEST(GlTextureEnums, RowsAreAlignedToWhatDividesTheWidth) {
  EXPECT_EQ(1, gl_row_alignment(5));
  EXPECT_EQ(2, gl_row_alignment(6));
  EXPECT_EQ(4, gl_row_alignment(4));
  EXPECT_EQ(4, gl_row_alignment(12));
  EXPECT_EQ(8, gl_row_alignment(256));
}
