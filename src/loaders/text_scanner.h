#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace orv::detail {

/// Reads words, lines and numbers from a text in memory just as the fscanf and fgets of the C
/// library read them from a file: white space in front of a word or number is skipped, line ends
/// included, and what matched before a number failed is used up. Numbers have '.' as their decimal
/// point in every locale and floats are rounded correctly.
class TextScanner {
 public:
  TextScanner(const char* begin, const char* end) : p_(begin), end_(end) {}
  explicit TextScanner(std::string_view text)
      : TextScanner(text.data(), text.data() + text.size()) {}

  bool at_end() const { return p_ == end_; }
  const char* position() const { return p_; }

  /// Whether the word that is being read ends here.
  bool at_word_end() const { return p_ == end_ || is_space(*p_); }

  void skip_space() {
    while (p_ != end_ && is_space(*p_)) ++p_;
  }

  /// "%s": the next word, "" at the end of the text.
  std::string_view read_word() {
    skip_space();
    const char* begin = p_;
    while (p_ != end_ && !is_space(*p_)) ++p_;
    return {begin, static_cast<std::size_t>(p_ - begin)};
  }

  /// The text up to and with the next line end, but at most `limit` bytes.
  std::string_view read_line(std::size_t limit = static_cast<std::size_t>(-1)) {
    const char* begin = p_;
    std::size_t size = static_cast<std::size_t>(end_ - p_);
    if (size > limit) size = limit;
    const void* line_end = size == 0 ? nullptr : std::memchr(p_, '\n', size);
    p_ = line_end ? static_cast<const char*>(line_end) + 1 : p_ + size;
    return {begin, static_cast<std::size_t>(p_ - begin)};
  }

  /// One character of a format that is neither blank nor a conversion.
  bool read_literal(char c) {
    if (p_ == end_ || *p_ != c) return false;
    ++p_;
    return true;
  }

  /// "%d". False, with `value` kept, when there is no number; what does not fit is clamped.
  bool read_int(int& value) {
    skip_space();
    bool negative = false;
    if (p_ != end_ && (*p_ == '-' || *p_ == '+')) negative = *p_++ == '-';
    const char* digits = p_;
    std::uint64_t read = 0;
    p_ = read_digits(p_, read);
    if (p_ == digits) return false;
    std::int64_t number =
        p_ - digits <= 18 ? static_cast<std::int64_t>(read) : clamp_digits(digits, p_);
    if (negative) number = -number;
    if (number > INT32_MAX) number = INT32_MAX;
    if (number < INT32_MIN) number = INT32_MIN;
    value = static_cast<int>(number);
    return true;
  }

  /// "%f". False, with `value` kept, when there is no number.
  bool read_float(float& value) {
    skip_space();
    return read_plain_float(value) || read_any_float(value);
  }

  static bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
  static bool is_digit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

 private:
  static constexpr double POWERS_OF_TEN[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                             1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

  static constexpr std::uint64_t WHOLE_POWERS_OF_TEN[] = {
      1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

  /// Appends the digits at `p` to a number, eight at a time: bytes that are digits are made 0 to 9,
  /// moved up against the first byte that is none, and added up in pairs. The number wraps when
  /// there are too many digits.
  const char* read_digits(const char* p, std::uint64_t& number) const {
    while (end_ - p >= 8) {
      std::uint64_t bytes;
      std::memcpy(&bytes, p, 8);
      bytes ^= 0x3030303030303030u;
      const std::uint64_t others = ((bytes + 0x7676767676767676u) | bytes) & 0x8080808080808080u;
      const int count = others == 0 ? 8 : std::countr_zero(others) / 8;
      if (count == 0) return p;
      bytes <<= (8 - count) * 8;
      bytes = (bytes * 10 + (bytes >> 8)) & 0x00FF00FF00FF00FFu;
      bytes = (bytes * 100 + (bytes >> 16)) & 0x0000FFFF0000FFFFu;
      bytes = (bytes * 10000 + (bytes >> 32)) & 0x00000000FFFFFFFFu;
      number = number * WHOLE_POWERS_OF_TEN[count] + bytes;
      p += count;
      if (count < 8) return p;
    }
    while (p != end_ && is_digit(*p)) {
      number = number * 10 + static_cast<std::uint64_t>(*p - '0');
      ++p;
    }
    return p;
  }

  /// The number of many digits, which may all be zeros, or one that is too large for an int.
  static std::int64_t clamp_digits(const char* p, const char* end) {
    std::int64_t number = 0;
    for (; p != end && number <= INT32_MAX; ++p) number = number * 10 + (*p - '0');
    return number;
  }

  /// The numbers that nearly all files are made of: a few digits with a point and a small exponent.
  /// False without having moved for all others.
  bool read_plain_float(float& value) {
    const char* p = p_;
    const bool negative = p != end_ && *p == '-';
    if (negative) ++p;
    const char* begin = p;
    std::uint64_t mantissa = 0;
    // Mostly a single digit.
    while (p != end_ && is_digit(*p)) mantissa = mantissa * 10 + static_cast<unsigned>(*p++ - '0');
    std::ptrdiff_t num_digits = p - begin;
    std::ptrdiff_t exponent = 0;
    if (p != end_ && *p == '.') {
      const char* fraction = ++p;
      p = read_digits(p, mantissa);
      exponent = fraction - p;
      num_digits -= exponent;
    }
    if (num_digits == 0 || num_digits > 18) return false;
    if (p != end_ && !is_space(*p)) {
      const char c = static_cast<char>(*p | 0x20);
      if (c == 'x') return false;
      if (c == 'e') {
        p = read_exponent(p + 1, exponent);
        if (!p) return false;
      }
    }
    if (!make_float(mantissa, exponent, value)) return false;
    if (negative) value = -value;
    p_ = p;
    return true;
  }

  const char* read_exponent(const char* p, std::ptrdiff_t& exponent) const {
    bool negative = false;
    if (p != end_ && (*p == '-' || *p == '+')) negative = *p++ == '-';
    const char* begin = p;
    std::uint64_t number = 0;
    p = read_digits(p, number);
    if (p == begin || p - begin > 4) return nullptr;
    exponent +=
        negative ? -static_cast<std::ptrdiff_t>(number) : static_cast<std::ptrdiff_t>(number);
    return p;
  }

  /// A double quotient or product of two exact doubles is rounded once. Rounding it again to a
  /// float is right unless it came out halfway between two floats.
  static bool make_float(std::uint64_t mantissa, std::ptrdiff_t exponent, float& value) {
    constexpr std::uint64_t BITS_BEHIND_FLOAT = 0x1FFFFFFF;
    constexpr std::uint64_t HALFWAY = 0x10000000;
    if (mantissa >> 53 != 0 || exponent < -22 || exponent > 22) return false;
    double number = static_cast<double>(mantissa);
    if (exponent < 0) {
      number /= POWERS_OF_TEN[-exponent];
    } else {
      number *= POWERS_OF_TEN[exponent];
    }
    if ((std::bit_cast<std::uint64_t>(number) & BITS_BEHIND_FLOAT) == HALFWAY) return false;
    value = static_cast<float>(number);
    return true;
  }

  bool read_any_float(float& value);
  bool read_float_word(const char* word, std::size_t min_length);

  const char* p_;
  const char* end_;
};

}  // namespace orv::detail
