#pragma once

namespace tessaline::detail {

// Whether `codePoint` joins the user-perceived character before it whatever that character is
// (unless it is a control character): combining marks, spacing marks, variation selectors, emoji
// modifiers, the zero-width joiner and the like.
bool extendsGraphemeCluster(char32_t codePoint);

}  // namespace tessaline::detail
