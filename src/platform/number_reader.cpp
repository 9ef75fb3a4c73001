#include "platform/number_reader.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace tessaline {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isLeadingSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

// Rough decimal magnitude of a number whose value does not fit a double, to tell overflow from
// underflow: position of the first significant digit relative to the point, plus the exponent.
long decimalMagnitude(std::string_view number) {
  std::size_t i = 0;
  if (i < number.size() && (number[i] == '+' || number[i] == '-')) ++i;
  long position = 0;
  bool seenPoint = false;
  bool seenSignificant = false;
  long magnitude = 0;
  for (; i < number.size() && number[i] != 'e' && number[i] != 'E'; ++i) {
    if (number[i] == '.') {
      seenPoint = true;
      continue;
    }
    if (!seenPoint) ++position;
    if (seenPoint && !seenSignificant) --position;
    if (number[i] != '0' && !seenSignificant) {
      seenSignificant = true;
      magnitude = position;
    }
  }
  if (!seenSignificant) return std::numeric_limits<long>::min();
  long exponent = 0;
  if (i < number.size()) {
    ++i;
    bool negative = false;
    if (i < number.size() && (number[i] == '+' || number[i] == '-')) negative = number[i++] == '-';
    for (; i < number.size() && exponent < 100000; ++i)
      exponent = exponent * 10 + (number[i] - '0');
    if (negative) exponent = -exponent;
  }
  return magnitude + exponent;
}

// The value of a plain decimal ("12", "0.375", no sign or exponent) when shortDecimalValue
// gives it. Path data is almost all such numbers; anything else is left to from_chars.
std::optional<float> shortDecimal(std::string_view digits) {
  std::uint64_t integer = 0;
  int fractionDigits = -1;  // -1 until the point
  int count = 0;
  for (const char c : digits) {
    if (c == '.') {
      fractionDigits = 0;
      continue;
    }
    if (!isDigit(c) || ++count > 9) return std::nullopt;
    integer = integer * 10 + static_cast<std::uint32_t>(c - '0');
    if (fractionDigits >= 0) ++fractionDigits;
  }
  return shortDecimalValue(integer, count, fractionDigits > 0 ? fractionDigits : 0);
}

}  // namespace

std::size_t scanDecimalPrefix(std::string_view text) {
  std::size_t i = 0;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  std::size_t digits = 0;
  while (i < text.size() && isDigit(text[i])) ++i, ++digits;
  if (i < text.size() && text[i] == '.') {
    std::size_t afterPoint = i + 1;
    std::size_t fraction = 0;
    while (afterPoint + fraction < text.size() && isDigit(text[afterPoint + fraction])) ++fraction;
    if (digits + fraction > 0) {
      i = afterPoint + fraction;
      digits += fraction;
    }
  }
  if (digits == 0) return 0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    if (j < text.size() && isDigit(text[j])) {
      while (j < text.size() && isDigit(text[j])) ++j;
      i = j;
    }
  }
  return i;
}

float readLenientFloat(std::string_view text) {
  std::size_t start = 0;
  while (start < text.size() && isLeadingSpace(text[start])) ++start;
  text.remove_prefix(start);
  const std::size_t length = scanDecimalPrefix(text);
  if (length == 0) return 0.0f;
  std::string_view number = text.substr(0, length);
  const bool negative = number.front() == '-';
  // from_chars accepts neither a leading '+' nor a sign before a bare fraction handled apart.
  std::string_view unsignedPart = number;
  if (number.front() == '+' || number.front() == '-') unsignedPart.remove_prefix(1);

  if (const std::optional<float> quick = shortDecimal(unsignedPart)) {
    return negative ? -*quick : *quick;
  }
  float value = 0;
  auto [end, error] =
      std::from_chars(unsignedPart.data(), unsignedPart.data() + unsignedPart.size(), value);
  if (error == std::errc::result_out_of_range) {
    value = decimalMagnitude(unsignedPart) > 0 ? std::numeric_limits<float>::infinity() : 0.0f;
  } else if (error != std::errc()) {
    value = 0;
  }
  (void)end;
  return negative ? -value : value;
}

}  // namespace tessaline
