#include "loaders/text_scanner.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

namespace orv::detail {
namespace {

/// The same text as a file of the C library, which the scanner has to agree with.
class TextFile {
 public:
  explicit TextFile(std::string text) : text_(std::move(text)) {
    file_ = fmemopen(text_.data(), text_.size(), "r");
  }
  ~TextFile() {
    if (file_) std::fclose(file_);
  }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  std::FILE* get() { return file_; }
  std::size_t position() { return static_cast<std::size_t>(std::ftell(file_)); }

 private:
  std::string text_;
  std::FILE* file_;
};

std::uint32_t bits(float value) { return std::bit_cast<std::uint32_t>(value); }

bool same(float a, float b) { return (std::isnan(a) && std::isnan(b)) || bits(a) == bits(b); }

bool fits_int(const std::string& text) {
  int run = 0;
  for (char c : text) {
    run = TextScanner::is_digit(c) ? run + 1 : 0;
    if (run > 9) return false;
  }
  return true;
}

/// One random text, read by both with random conversions until the end.
void compare(const std::string& text, std::mt19937& random) {
  TextFile file(text);
  ASSERT_NE(file.get(), nullptr);
  TextScanner scanner(text);
  for (int step = 0; step < 20; ++step) {
    switch (random() % 5) {
      case 0:
      case 1: {
        float theirs = -7.0f;
        float ours = -7.0f;
        const bool read = std::fscanf(file.get(), "%f", &theirs) == 1;
        ASSERT_EQ(scanner.read_float(ours), read) << text;
        ASSERT_TRUE(same(ours, theirs)) << text << ": " << ours << " " << theirs;
        break;
      }
      case 2: {
        int theirs = -7;
        int ours = -7;
        const bool read = std::fscanf(file.get(), "%d", &theirs) == 1;
        ASSERT_EQ(scanner.read_int(ours), read) << text;
        ASSERT_EQ(ours, theirs) << text;
        break;
      }
      case 3: {
        char theirs[64] = "";
        const bool read = std::fscanf(file.get(), "%63s", theirs) == 1;
        const std::string_view ours = scanner.read_word();
        ASSERT_EQ(!ours.empty(), read) << text;
        if (!read) break;
        ASSERT_EQ(ours, theirs) << text;
        break;
      }
      default: {
        char theirs[64] = "";
        const bool read = std::fgets(theirs, 16, file.get()) != nullptr;
        const std::string_view ours = scanner.read_line(15);
        ASSERT_EQ(!ours.empty(), read) << text;
        if (!read) break;
        ASSERT_EQ(ours, theirs) << text;
      }
    }
    ASSERT_EQ(static_cast<std::size_t>(scanner.position() - text.data()), file.position()) << text;
  }
}

TEST(TextScanner, AgreesWithFscanfOnRandomTexts) {
  std::mt19937 random(1);
  constexpr std::string_view ALPHABETS[] = {"0123456789.-+eE \n/", "0123456789",
                                            "01.eExX+-pPaAfF \n", "nNaAiIfFtTyY-+ 1\n",
                                            "0123456789..--e \t\r\n\v\f/vfg#"};
  for (int i = 0; i < 60000; ++i) {
    const std::string_view alphabet = ALPHABETS[random() % std::size(ALPHABETS)];
    std::string text;
    const std::size_t size = 1 + random() % 24;
    while (text.size() < size) text += alphabet[random() % alphabet.size()];
    if (!fits_int(text)) continue;
    ASSERT_NO_FATAL_FAILURE(compare(text, random));
  }
}

TEST(TextScanner, RoundsFloatsAsStrtofDoes) {
  std::mt19937 random(2);
  for (int i = 0; i < 300000; ++i) {
    char text[64];
    switch (random() % 4) {
      case 0:
        std::snprintf(text, sizeof(text), "%.*f", static_cast<int>(random() % 12),
                      static_cast<double>(static_cast<int>(random())) / 1e6);
        break;
      case 1:
        std::snprintf(text, sizeof(text), "%.*e", static_cast<int>(random() % 20),
                      static_cast<double>(std::bit_cast<float>(static_cast<unsigned>(random()))));
        break;
      case 2:
        std::snprintf(text, sizeof(text), "%u.%ue%d", static_cast<unsigned>(random()),
                      static_cast<unsigned>(random()), static_cast<int>(random() % 120) - 60);
        break;
      default:
        std::snprintf(text, sizeof(text), "%a",
                      static_cast<double>(static_cast<int>(random())) / 3.0);
    }
    float value = -7.0f;
    ASSERT_TRUE(TextScanner(text).read_float(value)) << text;
    ASSERT_TRUE(same(value, std::strtof(text, nullptr))) << text << ": " << value;
  }
}

TEST(TextScanner, RoundsHalvesBetweenFloatsByTheDigitsBehind) {
  float value = 0.0f;
  ASSERT_TRUE(TextScanner("16777217").read_float(value));
  EXPECT_EQ(value, 16777216.0f);
  ASSERT_TRUE(TextScanner("16777217.0000000001").read_float(value));
  EXPECT_EQ(value, 16777218.0f);
  ASSERT_TRUE(TextScanner("16777219").read_float(value));
  EXPECT_EQ(value, 16777220.0f);
  ASSERT_TRUE(TextScanner("1.00000005960464477539062500001").read_float(value));
  EXPECT_EQ(value, std::nextafter(1.0f, 2.0f));
}

TEST(TextScanner, ReadsNumbersBeyondTheRangeOfFloats) {
  const auto read = [](const std::string& text) {
    float value = -7.0f;
    EXPECT_TRUE(TextScanner(text).read_float(value)) << text;
    return value;
  };
  EXPECT_EQ(read("1e39"), INFINITY);
  EXPECT_EQ(read("-1e400"), -INFINITY);
  EXPECT_EQ(read("1" + std::string(500, '0')), INFINITY);
  EXPECT_EQ(read("1e-400"), 0.0f);
  EXPECT_EQ(read("0." + std::string(500, '0') + "1"), 0.0f);
  EXPECT_EQ(read("0." + std::string(500, '0') + "1e+501"), 1.0f);
  EXPECT_EQ(read("1e99999999999999999999"), INFINITY);
  EXPECT_EQ(read("0e99999999999999999999"), 0.0f);
  EXPECT_EQ(read("0x1p999"), INFINITY);
  EXPECT_EQ(read("0x1p-999"), 0.0f);
  EXPECT_TRUE(std::signbit(read("-0")));
  EXPECT_TRUE(std::isnan(read("NaN")));
  EXPECT_EQ(read("-Infinity"), -INFINITY);
}

TEST(TextScanner, ClampsIntegersThatDoNotFit) {
  const auto read = [](std::string_view text) {
    int value = 7;
    EXPECT_TRUE(TextScanner(text).read_int(value)) << text;
    return value;
  };
  EXPECT_EQ(read("2147483647"), INT32_MAX);
  EXPECT_EQ(read("2147483648"), INT32_MAX);
  EXPECT_EQ(read("99999999999999999999999999"), INT32_MAX);
  EXPECT_EQ(read("-2147483648"), INT32_MIN);
  EXPECT_EQ(read("-99999999999999999999999999"), INT32_MIN);
}

TEST(TextScanner, StaysAtTheEndOfTheText) {
  TextScanner scanner("");
  int number = 7;
  float value = 7.0f;
  EXPECT_FALSE(scanner.read_int(number));
  EXPECT_FALSE(scanner.read_float(value));
  EXPECT_FALSE(scanner.read_literal('/'));
  EXPECT_TRUE(scanner.read_word().empty());
  EXPECT_TRUE(scanner.read_line().empty());
  EXPECT_TRUE(scanner.at_end());
  EXPECT_EQ(number, 7);
  EXPECT_EQ(value, 7.0f);
}

}  // namespace
}  // namespace orv::detail
