#include "json_writer.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tessaline::cli {
namespace {

using Json = nlohmann::ordered_json;

// Indentation stops growing past this depth: each line of a deeply nested document would
// otherwise carry its whole depth in blanks, and the output would grow with the square of it.
constexpr std::size_t kMaxIndentLevels = 32;

std::string indentFor(std::size_t level) {
  return std::string(2 * std::min(level, kMaxIndentLevels), ' ');
}

std::string compact(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// An open object or array and the position reached in it.
struct OpenContainer {
  Json::const_iterator next;
  Json::const_iterator end;
  bool isObject;
  bool first = true;
};

}  // namespace

void writeJson(std::ostream& out, const Json& value) {
  std::vector<OpenContainer> open;
  // Opens a non-empty container, or writes a scalar, an empty container or an array of numbers
  // (a view box, a point) whole, on one line.
  auto begin = [&](const Json& item) {
    if (item.is_array() && !item.empty() && std::ranges::all_of(item, &Json::is_number)) {
      out << '[';
      for (auto it = item.cbegin(); it != item.cend(); ++it) {
        out << (it == item.cbegin() ? "" : ", ") << compact(*it);
      }
      out << ']';
    } else if (item.is_structured() && !item.empty()) {
      out << (item.is_object() ? '{' : '[');
      open.push_back({item.cbegin(), item.cend(), item.is_object()});
    } else {
      out << compact(item);
    }
  };

  begin(value);
  while (!open.empty()) {
    OpenContainer& container = open.back();
    if (container.next == container.end) {
      out << '\n' << indentFor(open.size() - 1) << (container.isObject ? '}' : ']');
      open.pop_back();
      continue;
    }
    out << (container.first ? "\n" : ",\n") << indentFor(open.size());
    container.first = false;
    if (container.isObject) out << compact(Json(container.next.key())) << ": ";
    const Json& item = *container.next;
    ++container.next;
    begin(item);  // may grow `open`: `container` is not used past this point
  }
  out << '\n';
}

}  // namespace tessaline::cli
