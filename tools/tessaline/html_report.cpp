#include "html_report.h"

#include <cstddef>
#include <cstdint>

#include "report_assets.h"

namespace tessaline::cli {

namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// Length of the valid UTF-8 sequence that starts at `at`, or 0 when the bytes there are not one
// (overlong forms, surrogates and code points past U+10FFFF are invalid too).
std::size_t validSequenceLength(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[at + i]); };
  const std::uint8_t lead = byte(0);
  std::size_t length = 0;
  std::uint32_t min = 0;
  std::uint32_t code = 0;
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, min = 0x80, code = lead & 0x1Fu;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, min = 0x800, code = lead & 0x0Fu;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, min = 0x10000, code = lead & 0x07u;
  } else {
    return 0;
  }
  if (at + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3Fu);
  }
  if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
  return length;
}

void appendCard(std::string& html, const ReportEntry& entry) {
  const std::string key = escapeHtml(entry.key);
  html += "<article class=\"card";
  if (!entry.errors.empty()) html += " has-errors";
  html +=
      "\" data-key=\"" + key + "\" data-errors=\"" + std::to_string(entry.errors.size()) + "\">\n";
  if (entry.imagePath) {
    const std::string url = escapeHtml(encodeUrlPath(*entry.imagePath));
    html += "<a class=\"picture\" href=\"" + url + "\"><img class=\"symbol\" src=\"" + url +
            "\" alt=\"" + key +
            "\" width=\"128\" height=\"128\" onload=\"tessalineImageDone(this, true)\" "
            "onerror=\"tessalineImageDone(this, false)\"></a>\n";
  } else {
    html += "<div class=\"picture no-image\">no image</div>\n";
  }
  html += "<h2 class=\"key\">" + key + "</h2>\n";
  if (!entry.errors.empty()) {
    html += "<ul class=\"errors\">\n";
    for (const std::string& error : entry.errors) html += "<li>" + escapeHtml(error) + "</li>\n";
    html += "</ul>\n";
  }
  html += "</article>\n";
}

}  // namespace

std::string escapeHtml(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = validSequenceLength(text, at);
    if (length == 0) {
      result += kReplacementCharacter;
      ++at;
      continue;
    }
    if (length > 1) {
      result += text.substr(at, length);
      at += length;
      continue;
    }
    switch (const char c = text[at++]) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&#39;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string encodeUrlPath(std::string_view path) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string result;
  for (const char ch : path) {
    const auto c = static_cast<unsigned char>(ch);
    const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                       c == '.' || c == '_' || c == '-' || c == '/';
    if (plain) {
      result += ch;
    } else {
      result += '%';
      result += kHex[c >> 4];
      result += kHex[c & 0x0f];
    }
  }
  return result;
}

std::string renderReportHtml(const ReportPage& page) {
  std::size_t withErrors = 0;
  for (const ReportEntry& entry : page.entries) withErrors += entry.errors.empty() ? 0 : 1;
  const std::string name = escapeHtml(page.documentName);
  const std::string count = std::to_string(page.entries.size());

  std::string html;
  html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
  html += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
  html += "<title>" + name + " - Tessaline report</title>\n";
  html += "<style>";
  html += kReportStyle;
  html += "</style>\n<script>";
  html += kReportScript;
  html += "</script>\n</head>\n";
  html += "<body data-images-total=\"0\" data-images-loaded=\"0\" data-images-failed=\"0\">\n";
  html += "<header>\n<h1>" + name + "</h1>\n";
  html += "<p class=\"summary\">" + count + (page.entries.size() == 1 ? " symbol" : " symbols") +
          ", <span class=\"error-count\">" + std::to_string(withErrors) +
          " with errors</span>; rendered at 256 &times; 256 by tessaline " +
          escapeHtml(page.version) + "</p>\n";
  html += "<div class=\"controls\">\n";
  html +=
      "<input id=\"filter\" type=\"search\" placeholder=\"Filter by key (press /)\" "
      "autocomplete=\"off\" aria-label=\"Filter by key\">\n";
  html += "<label><input id=\"only-errors\" type=\"checkbox\"> only symbols with errors</label>\n";
  html += "<span id=\"shown\"></span>\n</div>\n</header>\n<main id=\"cards\">\n";
  for (const ReportEntry& entry : page.entries) appendCard(html, entry);
  html += "</main>\n";
  html += page.entries.empty() ? "<p id=\"no-match\">This document has no symbols.</p>\n"
                               : "<p id=\"no-match\" hidden>No symbol matches.</p>\n";
  html += "<script>tessalineStart();</script>\n</body>\n</html>\n";
  return html;
}

}  // namespace tessaline::cli
