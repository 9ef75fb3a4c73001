#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tessaline::testing {

struct CommandResult {
  int status = -1;
  std::string out;
  std::string err;
};

// An 8-bit RGBA picture read back from a PNG the command wrote.
struct RgbaPng {
  struct Pixel {
    int r, g, b, a;
  };
  int width = 0;
  int height = 0;
  std::vector<unsigned char> rgba;

  std::vector<unsigned char> pixel(int x, int y) const;
  Pixel at(int x, int y) const;
};

std::optional<RgbaPng> readRgbaPng(const std::filesystem::path& path);
std::string readAll(const std::filesystem::path& path);
std::string shellQuote(const std::string& text);

// Runs the built command as a user would, each test in a fresh folder removed afterwards.
class CommandTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::filesystem::path write(const std::string& name, const std::string& text);
  // Runs the command in the test's folder with `input` as standard input. A file size limit
  // keeps a runaway output from filling the disk.
  CommandResult run(const std::vector<std::string>& args, const std::string& input = "");

  std::filesystem::path dir_;
};

}  // namespace tessaline::testing
