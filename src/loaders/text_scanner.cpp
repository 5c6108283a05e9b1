#include "loaders/text_scanner.h"

#include <charconv>
#include <limits>

namespace orv::detail {

namespace {

/// What fscanf takes for the characters of a number, without its sign.
struct NumberText {
  const char* begin;
  const char* end;
  bool hexadecimal;
};

bool is_hex_digit(char c) {
  const char lower = static_cast<char>(c | 0x20);
  return TextScanner::is_digit(c) || (lower >= 'a' && lower <= 'f');
}

/// The longest text that could become a number, even if it is none in the end, such as "1e+".
NumberText find_number(const char* p, const char* end) {
  NumberText text = {p, p, false};
  bool has_digit = false;
  bool has_point = false;
  bool has_exponent = false;
  if (end - p >= 2 && p[0] == '0' && (p[1] | 0x20) == 'x') {
    text.hexadecimal = true;
    p += 2;
  }
  const char exponent_letter = text.hexadecimal ? 'p' : 'e';
  for (; p != end; ++p) {
    const char c = *p;
    if (TextScanner::is_digit(c) || (text.hexadecimal && !has_exponent && is_hex_digit(c))) {
      has_digit = true;
    } else if (has_exponent && (p[-1] | 0x20) == exponent_letter && (c == '-' || c == '+')) {
      continue;
    } else if (has_digit && !has_exponent && (c | 0x20) == exponent_letter) {
      has_exponent = has_point = true;
    } else if (!has_point && c == '.') {
      has_point = true;
    } else {
      break;
    }
  }
  text.end = p;
  return text;
}

/// Whether a number out of the range of floats is too large, not too small.
bool is_large(const char* p, const char* end, bool hexadecimal) {
  const auto is_number_digit = [=](char c) {
    return hexadecimal ? is_hex_digit(c) : TextScanner::is_digit(c);
  };
  // The exponent of the first digit that is not 0, in digits.
  std::int64_t magnitude = 0;
  bool in_fraction = false;
  bool significant = false;
  for (; p != end && (is_number_digit(*p) || *p == '.'); ++p) {
    if (*p == '.') {
      in_fraction = true;
      continue;
    }
    significant = significant || *p != '0';
    if (significant && !in_fraction) ++magnitude;
    if (!significant && in_fraction) --magnitude;
  }
  if (hexadecimal) magnitude *= 4;
  if (p == end) return magnitude > 0;
  ++p;
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+')) ++p;
  std::int64_t exponent = 0;
  for (; p != end && TextScanner::is_digit(*p); ++p) {
    if (exponent < std::numeric_limits<std::int32_t>::max()) exponent = exponent * 10 + (*p - '0');
  }
  return magnitude + (negative ? -exponent : exponent) > 0;
}

bool convert(NumberText text, float& value) {
  const auto format = text.hexadecimal ? std::chars_format::hex : std::chars_format::general;
  const char* begin = text.hexadecimal ? text.begin + 2 : text.begin;
  const auto result = std::from_chars(begin, text.end, value, format);
  if (result.ec == std::errc()) return true;
  if (result.ec == std::errc::result_out_of_range) {
    value = is_large(begin, result.ptr, text.hexadecimal) ? std::numeric_limits<float>::infinity()
                                                          : 0.0f;
    return true;
  }
  // "0x" followed by no digit but a point is the number 0.
  value = 0.0f;
  return text.hexadecimal;
}

}  // namespace

/// Letters of a word in any case. A letter that differs is used up too, as the C library does it.
bool TextScanner::read_float_word(const char* word, std::size_t min_length) {
  for (std::size_t i = 0; word[i] != '\0'; ++i) {
    if (p_ == end_) return i == min_length;
    const char c = *p_;
    if ((c | 0x20) == word[i]) {
      ++p_;
    } else {
      if (i == min_length) return true;
      ++p_;
      return false;
    }
  }
  return true;
}

bool TextScanner::read_any_float(float& value) {
  bool negative = false;
  if (p_ != end_ && (*p_ == '-' || *p_ == '+')) negative = *p_++ == '-';
  if (p_ == end_) return false;
  float number = 0.0f;
  if ((*p_ | 0x20) == 'n') {
    if (!read_float_word("nan", 3)) return false;
    number = std::numeric_limits<float>::quiet_NaN();
  } else if ((*p_ | 0x20) == 'i') {
    if (!read_float_word("infinity", 3)) return false;
    number = std::numeric_limits<float>::infinity();
  } else {
    const NumberText text = find_number(p_, end_);
    p_ = text.end;
    if (text.hexadecimal ? text.end - text.begin == 2 : text.end == text.begin) return false;
    if (!convert(text, number)) return false;
  }
  value = negative ? -number : number;
  return true;
}

}  // namespace orv::detail
