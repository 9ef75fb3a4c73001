// The render and render-all commands, run as a user would run them.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "command_test.h"

namespace tessaline::testing {
namespace {

class RenderCommand : public CommandTest {};

const std::string kSample = std::string(TESSALINE_TEST_DATA) + "/render/cli_sample.svg";
constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};
constexpr Pixel kTransparent{0, 0, 0, 0};

TEST_F(RenderCommand, EitherBackendWritesThePngAndPrintsNothingForACleanSymbol) {
  const std::vector<std::string> backends[] = {
      {}, {"--backend", "native"}, {"--backend", "cairo"}, {"--backend", "Cairo"}};
  for (const auto& backend : backends) {
    SCOPED_TRACE(backend.empty() ? "default" : backend[1]);
    std::vector<std::string> args{"render", kSample, "square", "-o", "out.png"};
    args.insert(args.end(), backend.begin(), backend.end());
    fs::remove(dir_ / "out.png");
    const CommandResult r = run(args);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "");
    const auto png = readPng(dir_ / "out.png");
    ASSERT_TRUE(png.has_value());
    EXPECT_EQ(png->width, 256);
    EXPECT_EQ(png->height, 256);
    // The 24-unit box maps to 256 pixels: the square covers 64...192.
    EXPECT_EQ(png->at(128, 128), kRed);
    EXPECT_EQ(png->at(70, 186), kRed);
    EXPECT_EQ(png->at(20, 20), kTransparent);
    EXPECT_EQ(png->at(200, 128), kTransparent);
  }
}

TEST_F(RenderCommand, PrintsErrorsInOrderOneALineOrAsOneJsonLine) {
  const CommandResult text = run({"render", kSample, "with-errors", "-o", "text.png"});
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_EQ(text.out, "Encountered unknown attribute for symbol: $attrName\nInvalid color\n");
  const CommandResult json = run({"render", kSample, "with-errors", "--json", "-o", "json.png"});
  EXPECT_EQ(json.status, 0) << json.err;
  EXPECT_EQ(json.out, R"({"key":"with-errors","bitmap":true,"errors":[)"
                      R"("Encountered unknown attribute for symbol: $attrName","Invalid color"]})"
                      "\n");
  for (const char* file : {"text.png", "json.png"}) {
    const auto png = readPng(dir_ / file);
    ASSERT_TRUE(png.has_value()) << file;
    // The failing shape is skipped; the next one is still drawn.
    EXPECT_EQ(png->at(64, 64), kTransparent);
    EXPECT_EQ(png->at(192, 192), kBlue);
  }
}

TEST_F(RenderCommand, UnknownKeyExitsWithOneAndWritesNoPng) {
  const CommandResult text = run({"render", kSample, "missing", "-o", "out.png"});
  EXPECT_EQ(text.status, 1);
  EXPECT_EQ(text.out, "No SVG Definition found for key\n");
  const CommandResult json = run({"render", kSample, "Square", "--json"});
  EXPECT_EQ(json.status, 1);
  EXPECT_EQ(json.out,
            R"({"key":"Square","bitmap":false,"errors":["No SVG Definition found for key"]})"
            "\n");
  for (const char* file : {"out.png", "missing.png", "Square.png"}) {
    EXPECT_FALSE(fs::exists(dir_ / file)) << file;
  }
}

TEST_F(RenderCommand, DefaultOutputIsTheSafeFileNameAndStandardInputWorks) {
  const CommandResult r = run({"render", "-", "a/b"}, readAll(kSample));
  EXPECT_EQ(r.status, 0) << r.err;
  const auto png = readPng(dir_ / "a%2Fb.png");
  ASSERT_TRUE(png.has_value());
  EXPECT_EQ(png->at(128, 128), (Pixel{0, 255, 0, 255}));
}

TEST_F(RenderCommand, RenderAllWritesEveryPngAndASortedIndex) {
  const CommandResult r = run({"render-all", kSample, "-o", "out/nested", "-j", "3"});
  ASSERT_EQ(r.status, 0) << r.err;
  // Standard error is not a terminal here: no progress bar.
  EXPECT_EQ(r.err, "");
  const auto index = nlohmann::json::parse(readAll(dir_ / "out/nested/index.json"));
  ASSERT_TRUE(index.is_array());
  std::vector<std::string> keys;
  std::set<std::string> files;
  for (const auto& entry : index) {
    const std::string key = entry["key"];
    const std::string file = entry["file"];
    SCOPED_TRACE(key);
    keys.push_back(key);
    files.insert(file);
    EXPECT_EQ(file.find('/'), std::string::npos);
    EXPECT_NE(file.front(), '.');
    // The same pixels and as many errors as rendering the key alone.
    const CommandResult single = run({"render", kSample, key, "-o", "single.png"});
    EXPECT_EQ(single.status, 0);
    EXPECT_EQ(readAll(dir_ / "out/nested" / file), readAll(dir_ / "single.png"));
    EXPECT_EQ(entry["errors"].size(),
              static_cast<std::size_t>(std::count(single.out.begin(), single.out.end(), '\n')));
  }
  EXPECT_EQ(keys,
            (std::vector<std::string>{"%2Ehidden", ".hidden", "a/b", "square", "with-errors"}));
  EXPECT_EQ(files.size(), keys.size()) << "names differ for different keys";
  EXPECT_EQ(index[4]["errors"], nlohmann::json::array({
                                    "Encountered unknown attribute for symbol: $attrName",
                                    "Invalid color",
                                }));
}

}  // namespace
}  // namespace tessaline::testing
