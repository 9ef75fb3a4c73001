#include "parse/attribute_set_interner.h"

#include <functional>
#include <optional>
#include <string>

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

}  // namespace tessaline
