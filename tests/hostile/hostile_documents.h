#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tessaline::testing {

// Documents built to hurt: huge, wide or deep. Each holds the symbols "first" and "last" (drawn
// red squares around everything else), so a test can check that the whole document was read.
enum class HostileKind {
  LargeDocument,  // about 50 MB of ordinary icons
  ManySymbols,    // 100,000 small symbols
  LongPath,       // one path whose data is 1,000,000 characters
  DeepGroups,     // 100,000 nested <g>
  DeepDefs,       // 100,000 nested <defs>
  DeepClipPaths,  // 100,000 nested <clipPath>, referenced by a shape
  DeepUnknown,    // 100,000 nested unknown elements
};

struct HostileCase {
  HostileKind kind;
  std::string_view name;
  // The symbol that carries the hostile part.
  std::string_view key;
};

std::span<const HostileCase> hostileCases();

std::string makeHostileDocument(HostileKind kind);

}  // namespace tessaline::testing
