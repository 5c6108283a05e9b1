// TextureMgr: what goes through the image codecs, and raw pixels.
#include <orv/gpu/texture_mgr.h>

#include "gpu/texture_mgr_fixture.h"
#include "support/held.h"
#include "support/recording_renderer.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <vector>

namespace orv {
namespace {

using test::Bytes;
using test::FakeCodec;
using test::Held;
using test::RecordingRenderer;
using test::sample;
using test::TempFile;
using test::TextureMgrTest;

// ---- loading ----

TEST_F(TextureMgrTest, LoadsARealFileAndConvertsIt) {
  mgr.register_image_codec_plugin(&stb);
  Texture* texture = mgr.create_texture_2d_from_file(sample().c_str(), true, PF_RGBA_F32);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_width(), 32u);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_F32);
  EXPECT_TRUE(texture->get_image_ptr()->owns_pixels);
  EXPECT_EQ(texture->get_image_ptr()->get_codec_id(), stb.get_id());
  EXPECT_EQ(mgr.get_last_image_codec(), &stb);
  EXPECT_EQ(texture->get_ref(), 1);
}

TEST_F(TextureMgrTest, LoadsFromMemory) {
  mgr.register_image_codec_plugin(&stb);
  Bytes file = test::read_bytes(sample());
  Texture* texture = mgr.create_texture_2d_from_memory(
      file.data(), static_cast<unsigned int>(file.size()), false, PF_RGBA_U8);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_U8);
  Held<Texture> other;
  other->create_1d(2, PF_R_U8, true);
  EXPECT_FALSE(mgr.load_texture_2d_from_memory(other, file.data(), 3, false, PF_RGBA_U8));
  EXPECT_EQ(other->get_data_ptr()->type, TEXTURE_2D);  // set before the attempt
}

TEST_F(TextureMgrTest, AFailingFileIsDecodedTwice) {
  FakeCodec codec("stb");
  codec.succeeds = false;
  EXPECT_EQ(load(codec), nullptr);
  EXPECT_EQ(codec.loads, 2);
}

TEST_F(TextureMgrTest, TheFallbackIsAskedAfterTheCurrentCodec) {
  FakeCodec current("current"), fallback("stb");
  current.succeeds = false;
  mgr.register_image_codec_plugin(&fallback);
  EXPECT_NE(load(current), nullptr);
  EXPECT_EQ(current.loads, 1);
  EXPECT_EQ(fallback.loads, 1);
  EXPECT_EQ(mgr.get_last_image_codec(), &fallback);
}

struct CodecCall {
  const char* name;
  std::function<bool(TextureMgr&, Texture*, Renderer*)> run;
};

unsigned char ENCODED[] = {0};

const CodecCall CODEC_CALLS[] = {
    {"image", [](TextureMgr& m, Texture* t,
                 Renderer*) { return m.load_image_from_file(t, "x", false, PF_RGB_U8); }},
    {"2d", [](TextureMgr& m, Texture* t,
              Renderer*) { return m.load_texture_2d_from_file(t, "x", false, PF_RGB_U8); }},
    {"memory",
     [](TextureMgr& m, Texture* t, Renderer*) {
       return m.load_texture_2d_from_memory(t, ENCODED, 1, false, PF_RGB_U8);
     }},
    {"face",
     [](TextureMgr& m, Texture* t, Renderer*) {
       return m.load_cubemap_face_from_file(t, CUBEMAP_FACE_POSITIVE_X, "x", false);
     }},
    {"face in memory",
     [](TextureMgr& m, Texture* t, Renderer*) {
       return m.load_cubemap_face_from_memory(t, CUBEMAP_FACE_POSITIVE_X, ENCODED, 1, false);
     }},
    {"layer", [](TextureMgr& m, Texture* t,
                 Renderer*) { return m.load_texture_2d_array_layer_from_file(t, 0, "x", false); }},
    {"gpu", [](TextureMgr& m, Texture* t,
               Renderer* r) { return m.update_gpu_memory_from_file(r, t, "x", false, PF_RGB_U8); }},
};

TEST_F(TextureMgrTest, EveryCallTriesTheCurrentCodecAndThenTheFallback) {
  RecordingRenderer renderer;
  for (const CodecCall& call : CODEC_CALLS) {
    SCOPED_TRACE(call.name);
    mgr.stop(nullptr);
    FakeCodec current("current"), fallback("stb");
    mgr.register_image_codec_plugin(&fallback);
    use(current);
    Held<Texture> texture;
    ASSERT_TRUE(texture->create_2d_array(2, 2, 1, PF_RGB_U8, true));
    current.succeeds = false;
    EXPECT_TRUE(call.run(mgr, texture, &renderer));
    EXPECT_EQ(current.loads, 1);
    EXPECT_EQ(fallback.loads, 1);
    EXPECT_EQ(mgr.get_last_image_codec(), &fallback);
    current.succeeds = true;
    EXPECT_TRUE(call.run(mgr, texture, &renderer));
    EXPECT_EQ(current.loads, 2);
    EXPECT_EQ(fallback.loads, 1);
    EXPECT_EQ(mgr.get_last_image_codec(), &current);
    // With one codec under both names a failing file is decoded twice.
    mgr.set_current_image_codec_name("stb");
    fallback.succeeds = false;
    EXPECT_FALSE(call.run(mgr, texture, &renderer));
    EXPECT_EQ(fallback.loads, 3);
    mgr.stop(nullptr);
  }
}

TEST_F(TextureMgrTest, CoreCodecIgnoresTheFlip) {
  mgr.register_image_codec_plugin(&stb);
  const Bytes pixels = {1, 2, 3, 4, 5, 6};
  Bytes file = test::tga_rgb(1, 2, pixels);
  Held<Texture> texture;
  for (const bool flip : {false, true}) {
    ASSERT_TRUE(mgr.load_texture_2d_from_memory(
        texture, file.data(), static_cast<unsigned int>(file.size()), flip, PF_RGB_U8));
    EXPECT_EQ(std::memcmp(texture->get_pixmap_u8_ptr(), pixels.data(), 6), 0) << flip;
  }
}

TEST_F(TextureMgrTest, SwappedFormatsNameTheBytesAnewAndLeaveThem) {
  mgr.register_image_codec_plugin(&stb);
  Bytes file = test::tga_rgb(1, 1, {10, 20, 30});
  Texture* texture = mgr.create_texture_2d_from_memory(
      file.data(), static_cast<unsigned int>(file.size()), false, PF_BGR_U8);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_pixel_format(), PF_BGR_U8);
  EXPECT_EQ(texture->get_pixmap_u8_ptr()[0], 10);
  EXPECT_EQ(texture->get_pixmap_u8_ptr()[2], 30);
}

TEST_F(TextureMgrTest, FlipAndFormatReachTheCodec) {
  FakeCodec codec("fake");
  Texture* texture = load(codec);
  ASSERT_TRUE(mgr.load_image_from_file(texture, "any", true, PF_BGRA_U8));
  EXPECT_TRUE(codec.last_option);
  EXPECT_EQ(codec.last_format, PF_BGRA_U8);
  // The name of the order changes, the bytes stay.
  EXPECT_EQ(texture->get_pixel_format(), PF_BGRA_U8);
}

TEST_F(TextureMgrTest, LoadingTakesTheTextureIntoTheListAndKeepsItsType) {
  FakeCodec codec("fake");
  load(codec);
  Held<Texture> texture;
  texture->create_1d(2, PF_R_U8, true);
  texture->get_data_ptr()->gpu_update_needed = false;
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_1D);
  EXPECT_TRUE(texture->get_data_ptr()->gpu_update_needed);
  EXPECT_EQ(texture->get_ref(), 2);
  EXPECT_TRUE(mgr.load_texture_2d_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_FALSE(mgr.load_image_from_file(nullptr, "any", false, PF_RGB_U8));
  EXPECT_FALSE(mgr.load_image_from_file(texture, nullptr, false, PF_RGB_U8));
}

TEST_F(TextureMgrTest, ATextureClassOfAHostSeesTheImage) {
  class Watching : public Texture {
   public:
    bool load_from_image(const Image& image) override {
      seen_width = image.width;
      return accepts && Texture::load_from_image(image);
    }
    unsigned int seen_width = 0;
    bool accepts = true;
  };
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Held<Watching> texture;
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(texture->seen_width, 2u);
  EXPECT_NE(texture->get_image_ptr()->u8_ptr, nullptr);
  texture->accepts = false;
  Held<Watching> refusing;
  refusing->accepts = false;
  mgr.stop(nullptr);
  mgr.register_image_codec_plugin(&codec);
  EXPECT_FALSE(mgr.load_image_from_file(refusing, "any", false, PF_RGB_U8));
  EXPECT_EQ(mgr.get_last_image_codec(), nullptr);
  EXPECT_TRUE(mgr.has_resource(refusing));  // listed in any case
}

TEST_F(TextureMgrTest, RawPixelsAreCopied) {
  const unsigned char pixels[6] = {1, 2, 3, 4, 5, 6};
  Texture* texture = mgr.create_texture_2d_from_raw_memory(pixels, 2, 1, PF_RGB_U8);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(std::memcmp(texture->get_pixmap_ptr(), pixels, 6), 0);
  const float floats[2] = {0.5f, 2.0f};
  ASSERT_TRUE(mgr.load_texture_2d_from_raw_memory(texture, floats, 1, 2, PF_R_F32));
  EXPECT_EQ(texture->get_pixmap_f32_ptr()[1], 2.0f);
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(nullptr, pixels, 1, 1, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, nullptr, 1, 1, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 0, 1, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 1, 0, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 1, 1, PF_UNKNOWN));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 1, 1, PF_RGBA_F16));
}

// ---- cube maps ----

/// Six TGA files of 3 x 2 pixels; the one of face f holds the bytes 40 * f + 1 and upwards.
class FaceFiles {
 public:
  FaceFiles() {
    for (int face = 0; face < 6; ++face) {
      files_.push_back(std::make_unique<TempFile>("face_" + std::to_string(face) + ".tga"));
      test::write_bytes(files_.back()->path(), test::tga_rgb(3, 2, pixels(face)));
    }
  }

  static Bytes pixels(int face) {
    Bytes bytes(3 * 2 * 3);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(40 * face + 1));
    return bytes;
  }

  const char* path(int face) const { return files_[static_cast<std::size_t>(face)]->path(); }

 private:
  std::vector<std::unique_ptr<TempFile>> files_;
};

Bytes bytes_of(const Image& image) {
  return Bytes(image.u8_ptr, image.u8_ptr + image.get_u8_capacity());
}

TEST_F(TextureMgrTest, CubeMapTakesSixFilesInOrder) {
  mgr.register_image_codec_plugin(&stb);
  const FaceFiles files;
  Texture* texture =
      mgr.create_texture_cube_from_files(files.path(0), files.path(1), files.path(2), files.path(3),
                                         files.path(4), files.path(5), false);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_CUBE);
  EXPECT_TRUE(texture->get_data_ptr()->gpu_update_needed);
  EXPECT_TRUE(mgr.has_resource(texture));
  EXPECT_EQ(mgr.get_last_image_codec(), &stb);
  for (int face = 0; face < 6; ++face) {
    SCOPED_TRACE(face);
    const Image* image = texture->get_cubemap_image_ptr(static_cast<CUBEMAP_FACE>(face));
    EXPECT_EQ(image->width, 3u);
    EXPECT_EQ(image->height, 2u);
    EXPECT_EQ(image->pixel_format, PF_RGB_U8);
    EXPECT_EQ(image->get_codec_id(), stb.get_id());
    EXPECT_EQ(bytes_of(*image), FaceFiles::pixels(face));
    EXPECT_TRUE(texture->get_data_ptr()->cubemap_faces[face].loaded);
  }
}

TEST_F(TextureMgrTest, CubeMapWithAMissingFileKeepsTheFacesBeforeIt) {
  mgr.register_image_codec_plugin(&stb);
  const FaceFiles files;
  const char* paths[6] = {files.path(0), files.path(1), "/no/such/file.tga",
                          files.path(3), files.path(4), files.path(5)};
  Held<Texture> texture;
  EXPECT_FALSE(mgr.load_texture_cube_from_files(texture, paths, false));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_CUBE);
  EXPECT_EQ(bytes_of(*texture->get_cubemap_image_ptr(CUBEMAP_FACE_NEGATIVE_X)),
            FaceFiles::pixels(1));
  EXPECT_EQ(texture->get_cubemap_image_ptr(CUBEMAP_FACE_POSITIVE_Y)->u8_ptr, nullptr);
  EXPECT_EQ(texture->get_cubemap_image_ptr(CUBEMAP_FACE_NEGATIVE_Y)->u8_ptr, nullptr);
  EXPECT_EQ(mgr.create_texture_cube_from_files(paths, false), nullptr);
  EXPECT_EQ(mgr.get_num_resources(), 0u);
}

TEST_F(TextureMgrTest, ANullFourthFaceLeavesThreeAndTheType) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Held<Texture> texture;
  EXPECT_FALSE(mgr.load_texture_cube_from_files(texture, "a", "b", "c", nullptr, "e", "f", false));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_CUBE);
  EXPECT_EQ(codec.loads, 3);
  EXPECT_EQ(codec.last_format, PF_RGB_U8);
  EXPECT_NE(texture->get_cubemap_image_ptr(CUBEMAP_FACE_POSITIVE_Y)->u8_ptr, nullptr);
  EXPECT_EQ(texture->get_cubemap_image_ptr(CUBEMAP_FACE_NEGATIVE_Y)->u8_ptr, nullptr);
  EXPECT_FALSE(mgr.load_texture_cube_from_files(nullptr, nullptr, false));
}

TEST_F(TextureMgrTest, CubeMapFromMemory) {
  mgr.register_image_codec_plugin(&stb);
  Bytes files[6];
  unsigned char* datas[6];
  unsigned int sizes[6];
  for (int face = 0; face < 6; ++face) {
    files[face] = test::tga_rgb(3, 2, FaceFiles::pixels(face));
    datas[face] = files[face].data();
    sizes[face] = static_cast<unsigned int>(files[face].size());
  }
  Texture* texture = mgr.create_texture_cube_from_memory(datas, sizes, false);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_CUBE);
  for (int face = 0; face < 6; ++face) {
    const Image* image = texture->get_cubemap_image_ptr(static_cast<CUBEMAP_FACE>(face));
    EXPECT_EQ(bytes_of(*image), FaceFiles::pixels(face)) << face;
    EXPECT_EQ(image->get_codec_id(), stb.get_id());
  }
  sizes[5] = 10;
  EXPECT_EQ(mgr.create_texture_cube_from_memory(datas, sizes, false), nullptr);
  datas[2] = nullptr;
  EXPECT_FALSE(mgr.load_texture_cube_from_memory(texture, datas, sizes, false));
  EXPECT_FALSE(mgr.load_texture_cube_from_memory(texture, nullptr, sizes, false));
  EXPECT_FALSE(mgr.load_texture_cube_from_memory(texture, datas, nullptr, false));
  EXPECT_EQ(mgr.get_num_resources(), 1u);
}

TEST_F(TextureMgrTest, SingleFacesAreTested) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  unsigned char byte = 0;
  Held<Texture> texture;
  EXPECT_TRUE(mgr.load_cubemap_face_from_file(texture, CUBEMAP_FACE_NEGATIVE_X, "a", true));
  EXPECT_TRUE(mgr.load_cubemap_face_from_memory(texture, CUBEMAP_FACE_POSITIVE_Z, &byte, 1, true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_file(texture, static_cast<CUBEMAP_FACE>(6), "a", true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_file(texture, CUBEMAP_FACE_NEGATIVE_X, nullptr, true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_file(nullptr, CUBEMAP_FACE_NEGATIVE_X, "a", true));
  EXPECT_FALSE(
      mgr.load_cubemap_face_from_memory(texture, CUBEMAP_FACE_NEGATIVE_X, nullptr, 1, true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_memory(texture, CUBEMAP_FACE_NEGATIVE_X, &byte, 0, true));
}

// ---- layers ----

TEST_F(TextureMgrTest, LayersAreDecodedInPlaceInTheirOwnFormat) {
  FakeCodec codec("stb");
  codec.given_format = PF_RGBA_U8;
  mgr.register_image_codec_plugin(&codec);
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(2, 2, 2, PF_RGBA_U8, true));
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_file(texture, 1, "a", false));
  EXPECT_EQ(codec.last_format, PF_RGBA_U8);
  EXPECT_EQ(texture->get_layer_image_ptr(1)->u8_ptr[0], 40);
  EXPECT_EQ(texture->get_layer_image_ptr(1)->get_codec_id(), codec.get_id());
  EXPECT_EQ(texture->get_layer_image_ptr(0)->u8_ptr[0], 0);
  EXPECT_TRUE(mgr.has_resource(texture));
  EXPECT_EQ(mgr.get_last_image_codec(), &codec);
}

TEST_F(TextureMgrTest, ALayerIndexEqualToTheCountIsRefused) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  const unsigned char pixels[16] = {};
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(2, 2, 2, PF_RGBA_U8, true));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_file(texture, 2, "a", false));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 2, pixels));
  EXPECT_EQ(codec.loads, 0);
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_file(nullptr, 0, "a", false));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_file(texture, 0, nullptr, false));
}

TEST_F(TextureMgrTest, RawLayersAreCopied) {
  unsigned char pixels[16];
  std::memset(pixels, 3, 16);
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(2, 2, 2, PF_RGBA_U8, true));
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 1, pixels));
  EXPECT_EQ(texture->get_layer_image_ptr(1)->u8_ptr[15], 3);
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_raw_memory(nullptr, 0, pixels));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 0, nullptr));
  // A float store beside the bytes gets them when they fit.
  Image* layer = texture->get_layer_image_ptr(0);
  ASSERT_TRUE(layer->create(1, 1, 1, PF_R_F32, true, true));
  ASSERT_TRUE(layer->create(2, 2, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 0, pixels));
  EXPECT_EQ(layer->u8_ptr[15], 3);
  EXPECT_EQ(layer->f32_ptr[0], 0.0f);  // four bytes were too few
  ASSERT_TRUE(layer->create(2, 2, 1, PF_R_F32, true, true));
  ASSERT_TRUE(layer->create(2, 2, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 0, pixels));
  EXPECT_EQ(std::memcmp(layer->u8_ptr, pixels, 16), 0);
  EXPECT_EQ(std::memcmp(layer->f32_ptr, pixels, 16), 0);
}

// ---- codecs that lend their pixels ----

/// Keeps the pixels of each picture until it is asked to free them.
class LendingCodec : public FakeCodec {
 public:
  explicit LendingCodec(const char* name) : FakeCodec(name) {}
  ~LendingCodec() override {
    for (const unsigned char* block : lent) delete[] block;
  }

  bool load_image_from_file(Image* image, const char*, bool, PIXEL_FORMAT) override {
    if (!image->create(2, 2, 1, PF_RGB_U8, false, false)) return false;
    image->codec_pixels = new unsigned char[12]{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    lent.insert(image->codec_pixels);
    return true;
  }
  bool free_image_resources(Image* image) override {
    if (lent.erase(image->codec_pixels) == 0) return false;
    delete[] image->codec_pixels;
    image->codec_pixels = nullptr;
    return true;
  }

  std::set<const unsigned char*> lent;
};

TEST_F(TextureMgrTest, LentPixelsGoBackWhenOthersTakeTheirPlace) {
  LendingCodec lender("lender");
  FakeCodec owner("owner");
  use(lender);
  Texture* texture = mgr.create_texture_2d_from_file("any", false, PF_RGB_U8);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(lender.lent.count(texture->get_pixmap_u8_ptr()), 1u);
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(lender.lent.size(), 1u);
  EXPECT_EQ(lender.lent.count(texture->get_pixmap_u8_ptr()), 1u);
  use(owner);
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_TRUE(lender.lent.empty());
  EXPECT_EQ(texture->get_image_ptr()->codec_pixels, nullptr);
  EXPECT_EQ(texture->get_pixmap_u8_ptr()[0], 40);
}

TEST_F(TextureMgrTest, LentPixelsOfAHostsTextureGoBackToo) {
  class HostTexture : public Texture {};
  LendingCodec lender("lender");
  FakeCodec owner("owner");
  Held<HostTexture> texture;
  use(lender);
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(lender.lent.size(), 1u);
  use(owner);
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_TRUE(lender.lent.empty());
  EXPECT_EQ(texture->get_image_ptr()->codec_pixels, nullptr);
  EXPECT_TRUE(mgr.free_image_resource(texture));
}

TEST_F(TextureMgrTest, LentPixelsStayWhenTheNextFileFails) {
  LendingCodec lender("lender");
  FakeCodec owner("owner");
  owner.succeeds = false;
  use(lender);
  Texture* texture = mgr.create_texture_2d_from_file("any", false, PF_RGB_U8);
  ASSERT_NE(texture, nullptr);
  use(owner);
  EXPECT_FALSE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(lender.lent.count(texture->get_pixmap_u8_ptr()), 1u);
}

TEST_F(TextureMgrTest, FacesOwnACopyOfLentPixels) {
  LendingCodec lender("lender");
  use(lender);
  Held<Texture> texture;
  EXPECT_TRUE(mgr.load_cubemap_face_from_file(texture, CUBEMAP_FACE_POSITIVE_Z, "any", false));
  EXPECT_TRUE(lender.lent.empty());
  const Image* face = texture->get_cubemap_image_ptr(CUBEMAP_FACE_POSITIVE_Z);
  EXPECT_EQ(bytes_of(*face), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  EXPECT_EQ(face->codec_pixels, nullptr);
  EXPECT_EQ(face->get_codec_id(), lender.get_id());
}

TEST_F(TextureMgrTest, LentPixelsOfALayerGoBackWhenAnotherCodecLoads) {
  LendingCodec lender("lender");
  FakeCodec owner("owner");
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(2, 2, 1, PF_RGB_U8, true));
  use(lender);
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_file(texture, 0, "any", false));
  EXPECT_EQ(lender.lent.size(), 1u);
  use(owner);
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_file(texture, 0, "any", false));
  EXPECT_TRUE(lender.lent.empty());
  EXPECT_EQ(texture->get_layer_image_ptr(0)->codec_pixels, nullptr);
}

}  // namespace
}  // namespace orv
