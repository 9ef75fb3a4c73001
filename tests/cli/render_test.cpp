// The render and render-all commands, run as a user would run them.
#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "command_test.h"

namespace {

namespace fs = std::filesystem;

using tessaline::testing::CommandResult;
const auto& slurp = tessaline::testing::readAll;
const auto& readPng = tessaline::testing::readRgbaPng;

class RenderCommand : public tessaline::testing::CommandTest {};

const std::string kSample = std::string(TESSALINE_TEST_DATA) + "/render/cli_sample.svg";

using Pixel = std::vector<unsigned char>;
const Pixel kTransparent{0, 0, 0, 0};

TEST_F(RenderCommand, WritesThePngAndPrintsNothingForACleanSymbol) {
  const CommandResult r = run({"render", kSample, "square", "-o", "out.png"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "");
  const auto png = readPng(dir_ / "out.png");
  ASSERT_TRUE(png.has_value());
  EXPECT_EQ(png->width, 256);
  EXPECT_EQ(png->height, 256);
  // The 24-unit box maps to 256 pixels: the square covers 64...192.
  EXPECT_EQ(png->pixel(128, 128), (Pixel{255, 0, 0, 255}));
  EXPECT_EQ(png->pixel(70, 186), (Pixel{255, 0, 0, 255}));
  EXPECT_EQ(png->pixel(20, 20), kTransparent);
  EXPECT_EQ(png->pixel(200, 128), kTransparent);
}

TEST_F(RenderCommand, EitherBackendDrawsTheSquare) {
  for (const char* backend : {"native", "cairo", "Cairo"}) {
    SCOPED_TRACE(backend);
    const CommandResult r =
        run({"render", kSample, "square", "-o", "out.png", "--backend", backend});
    EXPECT_EQ(r.status, 0) << r.err;
    const auto png = readPng(dir_ / "out.png");
    ASSERT_TRUE(png.has_value());
    EXPECT_EQ(png->pixel(128, 128), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(png->pixel(200, 128), kTransparent);
  }
}

TEST_F(RenderCommand, PrintsErrorsInOrderOneALine) {
  const CommandResult r = run({"render", kSample, "with-errors", "-o", "out.png"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out,
            "Encountered unknown attribute for symbol: $attrName\n"
            "Invalid color\n");
  const auto png = readPng(dir_ / "out.png");
  ASSERT_TRUE(png.has_value());
  // The failing shape is skipped; the next one is still drawn.
  EXPECT_EQ(png->pixel(64, 64), kTransparent);
  EXPECT_EQ(png->pixel(192, 192), (Pixel{0, 0, 255, 255}));
}

TEST_F(RenderCommand, JsonOutput) {
  {
    SCOPED_TRACE("known key");
    const CommandResult r = run({"render", kSample, "with-errors", "--json", "-o", "out.png"});
    EXPECT_EQ(r.status, 0) << r.err;
    const auto json = nlohmann::json::parse(r.out);
    EXPECT_EQ(json["key"], "with-errors");
    EXPECT_EQ(json["bitmap"], true);
    EXPECT_EQ(json["errors"], nlohmann::json::array({
                                  "Encountered unknown attribute for symbol: $attrName",
                                  "Invalid color",
                              }));
    EXPECT_EQ(r.out.find('\n'), r.out.size() - 1) << "one line";
  }
  {
    SCOPED_TRACE("unknown key");
    const CommandResult r = run({"render", kSample, "Square", "--json"});
    EXPECT_EQ(r.status, 1);
    const auto json = nlohmann::json::parse(r.out);
    EXPECT_EQ(json["key"], "Square");
    EXPECT_EQ(json["bitmap"], false);
    EXPECT_EQ(json["errors"], nlohmann::json::array({"No SVG Definition found for key"}));
  }
}

TEST_F(RenderCommand, UnknownKeyWritesNoPng) {
  const CommandResult r = run({"render", kSample, "missing", "-o", "out.png"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "No SVG Definition found for key\n");
  EXPECT_FALSE(fs::exists(dir_ / "out.png"));
  EXPECT_FALSE(fs::exists(dir_ / "missing.png"));
}

TEST_F(RenderCommand, DefaultOutputIsTheSafeFileNameAndStandardInputWorks) {
  const CommandResult r = run({"render", "-", "a/b"}, slurp(kSample));
  EXPECT_EQ(r.status, 0) << r.err;
  const auto png = readPng(dir_ / "a%2Fb.png");
  ASSERT_TRUE(png.has_value());
  EXPECT_EQ(png->pixel(128, 128), (Pixel{0, 255, 0, 255}));
}

TEST_F(RenderCommand, UsageAndInputOutputErrorsExitWithTwo) {
  struct Case {
    const char* name;
    std::vector<std::string> args;
  };
  const Case cases[] = {
      {"missing key", {"render", kSample}},
      {"unreadable file", {"render", "no-such-file.svg", "square"}},
      {"unwritable output", {"render", kSample, "square", "-o", "no/such/folder/out.png"}},
      {"unknown option", {"render", kSample, "square", "--bogus"}},
      {"unknown backend", {"render", kSample, "square", "--backend", "gpu"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const CommandResult r = run(c.args);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err, "");
  }
}

TEST_F(RenderCommand, RenderAllWritesEveryPngAndASortedIndex) {
  const CommandResult r = run({"render-all", kSample, "-o", "out/nested", "-j", "3"});
  ASSERT_EQ(r.status, 0) << r.err;
  // Standard error is not a terminal here: no progress bar.
  EXPECT_EQ(r.err, "");
  const auto index = nlohmann::json::parse(slurp(dir_ / "out/nested/index.json"));
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
    // The same pixels as rendering the key alone.
    const CommandResult single = run({"render", kSample, key, "-o", "single.png"});
    EXPECT_EQ(single.status, 0);
    EXPECT_EQ(slurp(dir_ / "out/nested" / file), slurp(dir_ / "single.png"));
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

TEST_F(RenderCommand, RenderAllUsageErrors) {
  std::ofstream(dir_ / "a-file") << "x";
  struct Case {
    const char* name;
    std::vector<std::string> args;
  };
  const Case cases[] = {
      {"no output folder", {"render-all", kSample}},
      {"zero jobs", {"render-all", kSample, "-o", "out", "-j", "0"}},
      {"output is a file", {"render-all", kSample, "-o", "a-file"}},
      {"unreadable file", {"render-all", "no-such-file.svg", "-o", "out"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const CommandResult r = run(c.args);
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err, "");
  }
}

}  // namespace
