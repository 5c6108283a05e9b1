// TextureMgr: pictures of TrueType characters.
#include <orv/gpu/texture_mgr.h>

#include "gpu/texture_mgr_fixture.h"
#include "support/held.h"
#include "text/stb_truetype.h"

#include <algorithm>
#include <vector>

namespace orv {
namespace {

using test::Bytes;
using test::Held;
using test::sample;
using test::TempFile;
using test::TextureMgrTest;

// ---- fonts ----

TEST_F(TextureMgrTest, FontsAreBakedIntoOneChannel) {
  const std::string path = test::data_path("ttf/DejaVuSansMono.ttf");
  Texture* texture = mgr.create_texture_from_truetype_file(path.c_str(), 24, 256, 512);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_EQ(texture->get_pixel_format(), PF_R_U8);
  EXPECT_EQ(texture->get_width(), 256u);
  EXPECT_EQ(texture->get_height(), 512u);
  const unsigned char* pixels = texture->get_pixmap_u8_ptr();
  const auto inked = std::count_if(pixels, pixels + 256 * 512, [](int p) { return p > 128; });
  EXPECT_GT(inked, 5000);
  // A picture too small for all characters shows those that fit.
  EXPECT_TRUE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 24, 30, 30));
  EXPECT_EQ(texture->get_width(), 30u);
}

TEST_F(TextureMgrTest, CharactersZeroTo254AreBaked) {
  const std::string path = test::data_path("ttf/DejaVuSansMono.ttf");
  const Bytes font = test::read_bytes(path);
  Texture* texture = mgr.create_texture_from_truetype_file(path.c_str(), 24, 256, 512);
  ASSERT_NE(texture, nullptr);
  const auto shows = [&](int first, int count) {
    Bytes pixels(256 * 512);
    std::vector<detail::BakedChar> glyphs(static_cast<std::size_t>(count));
    EXPECT_GT(detail::bake_font_bitmap(font.data(), font.size(), 24, pixels.data(), 256, 512, first,
                                       count, glyphs.data())
                  .num_baked,
              0);
    return std::memcmp(texture->get_pixmap_u8_ptr(), pixels.data(), pixels.size()) == 0;
  };
  EXPECT_TRUE(shows(0, 255));
  EXPECT_FALSE(shows(0, 254));
  EXPECT_FALSE(shows(0, 256));
  EXPECT_FALSE(shows(1, 254));
  EXPECT_FALSE(shows(32, 224));
}

TEST_F(TextureMgrTest, SpoiledFontsAreRefused) {
  Held<Texture> texture;
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, sample().c_str(), 16, 64, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, "/tmp", 16, 64, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, nullptr, 16, 64, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(nullptr, sample().c_str(), 16, 64, 64));
  const std::string path = test::data_path("ttf/DejaVuSansMono.ttf");
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 16, 0, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 16, 64, -1));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 16, 99999, 99999));
  Bytes font = test::read_bytes(path);
  const TempFile file("cut.ttf");
  for (const std::size_t length : {std::size_t{0}, std::size_t{5}, std::size_t{100}}) {
    test::write_bytes(file.path(),
                      Bytes(font.begin(), font.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, file.path(), 16, 64, 64));
  }
  // Longer pieces may hold what is needed; they end cleanly.
  for (std::size_t length = 1000; length < font.size(); length += font.size() / 13) {
    test::write_bytes(file.path(),
                      Bytes(font.begin(), font.begin() + static_cast<std::ptrdiff_t>(length)));
    mgr.load_texture_2d_from_truetype_file(texture, file.path(), 16, 64, 64);
  }
}

}  // namespace
}  // namespace orv
