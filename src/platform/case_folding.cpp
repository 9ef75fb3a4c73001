#include "platform/case_folding.h"

namespace tessaline::detail {

std::size_t foldCaseBeyondAscii(std::string_view text, char* out) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, kKelvinSign.size(), kKelvinSign) == 0) {
      out[length++] = 'k';
      i += kKelvinSign.size() - 1;
    } else {
      out[length++] = foldAsciiCase(text[i]);
    }
  }
  return length;
}

}  // namespace tessaline::detail
