#include "parse/attribute_set_interner.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessaline {
namespace {

void mix(std::size_t& seed, const std::optional<std::string>& value) {
  const std::size_t h = value ? std::hash<std::string>{}(*value) : 0x9e3779b9u;
  seed ^= h + 0x9e3779b97f4a7c15ull + (seed << 6) + (seed >> 2);
}

std::size_t hashOf(const PresentationAttributes& a) {
  std::size_t seed = 0;
  for (const auto* field :
       {&a.fill, &a.opacity, &a.fillOpacity, &a.transform, &a.stroke, &a.strokeWidth,
        &a.strokeMiterLimit, &a.strokeLineCap, &a.strokeLineJoin, &a.clipPath}) {
    mix(seed, *field);
  }
  return seed;
}

}  // namespace

std::shared_ptr<const PresentationAttributes> AttributeSetInterner::intern(
    PresentationAttributes attributes) {
  std::vector<std::shared_ptr<const PresentationAttributes>>& bucket = byHash_[hashOf(attributes)];
  for (const auto& existing : bucket) {
    if (*existing == attributes) return existing;
  }
  bucket.push_back(std::make_shared<const PresentationAttributes>(std::move(attributes)));
  return bucket.back();
}

StyledAttributes AttributeSetInterner::apply(const PresentationAttributes* base,
                                             const SVGTag& tag) {
  constexpr std::size_t kSlots = 64;
  // Only the presentation attributes decide the outcome, in their order; the lengths keep
  // "ab" + "c" apart from "a" + "bc".
  text_.clear();
  for (const SVGAttributeView& attribute : tag.attributes) {
    if (!PresentationAttributes::isPresentationName(attribute.name)) continue;
    for (std::string_view part : {attribute.name, attribute.value}) {
      const std::size_t length = part.size();
      text_.append(reinterpret_cast<const char*>(&length), sizeof length).append(part);
    }
  }
  const std::size_t hash =
      std::hash<std::string_view>{}(text_) ^ std::hash<const void*>{}(base)*0x9e3779b97f4a7c15ull;
  if (remembered_.empty()) remembered_.resize(kSlots);
  Remembered& slot = remembered_[hash % kSlots];
  if (slot.outcome.attributes && slot.base == base && slot.text == text_) return slot.outcome;

  PresentationAttributes attributes(base);
  const ConsumedAttributes consumed = attributes.apply(tag);
  slot.base = base;
  slot.text = text_;
  slot.outcome = {intern(std::move(attributes)), consumed};
  return slot.outcome;
}

}  // namespace tessaline
