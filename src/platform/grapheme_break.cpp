#include "platform/grapheme_break.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace tessaline {
namespace detail {
namespace {

constexpr char32_t kFirstSyllable = 0xAC00;
constexpr char32_t kLastSyllable = 0xD7A3;
constexpr char32_t kTrailingConsonants = 28;  // syllables per leading consonant and vowel

template <typename Range, std::size_t N>
constexpr bool isSortedAndDisjoint(const Range (&ranges)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    if (ranges[i].first > ranges[i].last) return false;
    if (i > 0 && ranges[i - 1].last >= ranges[i].first) return false;
  }
  return true;
}
static_assert(isSortedAndDisjoint(kGraphemeClassRanges));
static_assert(isSortedAndDisjoint(kExtendedPictographicRanges));

// The range holding `codePoint`, or nullptr.
template <typename Range, std::size_t N>
const Range* rangeOf(const Range (&ranges)[N], char32_t codePoint) {
  const auto* it =
      std::upper_bound(std::begin(ranges), std::end(ranges), codePoint,
                       [](char32_t value, const Range& range) { return value < range.first; });
  if (it == std::begin(ranges) || codePoint > std::prev(it)->last) return nullptr;
  return std::prev(it);
}

}  // namespace

GraphemeClass graphemeClassOf(char32_t codePoint) {
  if (codePoint >= 0x20 && codePoint < 0x7F) return GraphemeClass::Other;  // printable ASCII
  if (codePoint >= kFirstSyllable && codePoint <= kLastSyllable) {
    return (codePoint - kFirstSyllable) % kTrailingConsonants == 0 ? GraphemeClass::LV
                                                                   : GraphemeClass::LVT;
  }
  const GraphemeClassRange* range = rangeOf(kGraphemeClassRanges, codePoint);
  return range ? range->graphemeClass : GraphemeClass::Other;
}

bool isExtendedPictographic(char32_t codePoint) {
  return codePoint >= 0xA9 && rangeOf(kExtendedPictographicRanges, codePoint) != nullptr;
}

}  // namespace detail

bool GraphemeBreaker::breaksBefore(char32_t next) {
  using detail::GraphemeClass;
  const GraphemeClass before = previous_;
  const GraphemeClass after = detail::graphemeClassOf(next);
  const bool pictographic = detail::isExtendedPictographic(next);
  const bool joinsPictograph = pictographicJoiner_ && pictographic;
  const bool pairsIndicator = oddIndicators_ && after == GraphemeClass::RegionalIndicator;

  // The state for the code point after `next`.
  previous_ = after;
  oddIndicators_ = after == GraphemeClass::RegionalIndicator && !pairsIndicator;
  if (pictographic) {
    pictographicRun_ = true;
  } else if (after != GraphemeClass::Extend && after != GraphemeClass::ZWJ) {
    pictographicRun_ = false;
  }
  pictographicJoiner_ = after == GraphemeClass::ZWJ && pictographicRun_;
  if (after == GraphemeClass::ZWJ) pictographicRun_ = false;

  const auto isOneOf = [](GraphemeClass c, std::initializer_list<GraphemeClass> classes) {
    return std::find(classes.begin(), classes.end(), c) != classes.end();
  };
  if (before == GraphemeClass::CR && after == GraphemeClass::LF) return false;
  if (isOneOf(before, {GraphemeClass::Control, GraphemeClass::CR, GraphemeClass::LF})) return true;
  if (isOneOf(after, {GraphemeClass::Control, GraphemeClass::CR, GraphemeClass::LF})) return true;
  if (before == GraphemeClass::L &&
      isOneOf(after, {GraphemeClass::L, GraphemeClass::V, GraphemeClass::LV, GraphemeClass::LVT})) {
    return false;
  }
  if (isOneOf(before, {GraphemeClass::LV, GraphemeClass::V}) &&
      isOneOf(after, {GraphemeClass::V, GraphemeClass::T})) {
    return false;
  }
  if (isOneOf(before, {GraphemeClass::LVT, GraphemeClass::T}) && after == GraphemeClass::T) {
    return false;
  }
  if (isOneOf(after, {GraphemeClass::Extend, GraphemeClass::ZWJ, GraphemeClass::SpacingMark})) {
    return false;
  }
  if (before == GraphemeClass::Prepend) return false;
  if (joinsPictograph || pairsIndicator) return false;
  return true;
}

}  // namespace tessaline
