#pragma once

#include <cstddef>
#include <string_view>

#include "platform/case_folding.h"

namespace tessaline {

// A name folded to lower case in a buffer of its own, for matching against the names the library
// knows. Parsing folds every element and attribute name of a document; folding into a
// std::string would cost an allocation for each name past the small-string size.
class FoldedName {
 public:
  // Longer than any name the library recognises (the longest is "stroke-miterlimit").
  static constexpr std::size_t kCapacity = 24;

  explicit FoldedName(std::string_view name) {
    // A longer name cannot match: it is left empty, and no recognised name is empty.
    if (name.size() > kCapacity) return;
    size_ = foldCase(name, text_);
  }

  std::string_view view() const { return {text_, size_}; }
  bool operator==(std::string_view other) const { return view() == other; }

 private:
  char text_[kCapacity];
  std::size_t size_ = 0;
};

// What `lookUp` gives for the folded form of `name`, `notFound` being its answer for a name it
// does not know. Documents mostly write their names in lower case already, so the name is tried
// as written first and folded only when that fails and folding would change it.
template <typename LookUp, typename Result>
Result lookUpFolded(std::string_view name, LookUp&& lookUp, Result notFound) {
  const Result found = lookUp(name);
  if (found != notFound || !foldingMayChange(name)) return found;
  return lookUp(FoldedName(name).view());
}

}  // namespace tessaline
