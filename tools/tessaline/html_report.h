#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaline::cli {

// One symbol of the report: its key, the image's path relative to the page (absent when the
// symbol has no bitmap) and its error texts in order.
struct ReportEntry {
  std::string key;
  std::optional<std::string> imagePath;
  std::vector<std::string> errors;
};

struct ReportPage {
  std::string documentName;  // shown as the page's heading
  std::string version;       // the tessaline version that wrote the page
  std::vector<ReportEntry> entries;
};

// Text made safe for HTML element content and quoted attribute values: & < > " ' become
// character references, and bytes that do not form valid UTF-8 become U+FFFD.
std::string escapeHtml(std::string_view text);

// A relative path made safe for a URL: '%' (the only byte outside [A-Za-z0-9._/-] that image
// file names use) and any other unusual byte are percent-encoded.
std::string encodeUrlPath(std::string_view path);

// The whole self-contained page: styles and script inline, images referenced by relative path.
// The page's script marks each image with data-loaded="1" (or "0" on failure), keeps counts in
// the body's data-images-total / -loaded / -failed and data-visible attributes, and reads its
// controls' initial state from the query or fragment: ?filter=TEXT&errors=1.
std::string renderReportHtml(const ReportPage& page);

}  // namespace tessaline::cli
