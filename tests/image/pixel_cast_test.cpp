#include "image/pixel_cast.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace orv::detail {
namespace {

TEST(PixelCast, ManyBytesAreEachBy255) {
  std::vector<unsigned char> bytes;
  for (unsigned int i = 0; i < 300; ++i) bytes.push_back(static_cast<unsigned char>(i));
  for (std::size_t count = 0; count <= bytes.size(); count += 7) {
    std::vector<float> values(count + 1, -1.0f);
    bytes_to_units(bytes.data(), values.data(), count);
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(values[i], byte_to_unit(bytes[i])) << i;
    EXPECT_EQ(values[count], -1.0f);
  }
}

TEST(PixelCast, ManyValuesOfAnyBitsAreCutLikeSingleOnes) {
  std::mt19937 generator(5);
  std::vector<float> values(4099);
  for (float& value : values) value = std::bit_cast<float>(static_cast<std::uint32_t>(generator()));
  std::vector<unsigned char> bytes(values.size());
  units_to_bytes(values.data(), bytes.data(), values.size());
  for (std::size_t i = 0; i < values.size(); ++i) EXPECT_EQ(bytes[i], unit_to_byte(values[i])) << i;
}

TEST(PixelCast, LargeValuesAtAnyPlaceOfAGroupAreCutLikeSingleOnes) {
  const float limit = 0x1p31f / 255.0f;
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float odd : {limit, -limit, 0x1p40f, -0x1.8p33f, infinity, -infinity,
                          std::numeric_limits<float>::quiet_NaN(), 8421504.5f, -8421504.5f}) {
    for (std::size_t place = 0; place < 16; ++place) {
      std::vector<float> values(35);
      for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<float>(i) * 0.3f - 2.0f;
      values[place] = values[place + 16] = odd;
      std::vector<unsigned char> bytes(values.size() + 1, 77);
      units_to_bytes(values.data(), bytes.data(), values.size());
      for (std::size_t i = 0; i < values.size(); ++i) EXPECT_EQ(bytes[i], unit_to_byte(values[i]));
      EXPECT_EQ(bytes.back(), 77);
    }
  }
}

}  // namespace
}  // namespace orv::detail
