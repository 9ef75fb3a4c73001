#pragma once

#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace tessaline::testing {

namespace fs = std::filesystem;

inline const std::string kSample = std::string(TESSALINE_TEST_DATA) + "/render/cli_sample.svg";

struct CommandResult {
  int status = -1;
  std::string out;
  std::string err;
};

using Pixel = std::array<int, 4>;  // straight-alpha RGBA

// An 8-bit RGBA picture read back from a PNG the command wrote.
struct RgbaPng {
  int width = 0, height = 0;
  std::vector<unsigned char> rgba;

  Pixel at(int x, int y) const {
    const auto* p = &rgba[(static_cast<std::size_t>(y) * width + x) * 4];
    return {p[0], p[1], p[2], p[3]};
  }
};

inline std::optional<RgbaPng> readPng(const fs::path& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return std::nullopt;
  image.format = PNG_FORMAT_RGBA;
  RgbaPng png{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  png.rgba.resize(PNG_IMAGE_SIZE(image));
  if (!png_image_finish_read(&image, nullptr, png.rgba.data(), 0, nullptr)) return std::nullopt;
  return png;
}

inline std::string readAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

inline std::string shellQuote(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// Runs the built command as a user would, each test in a fresh folder removed afterwards.
class CommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = fs::temp_directory_path() / ("tessaline_cli_" + std::to_string(::getpid()) + "_" +
                                        info->test_suite_name() + "_" + info->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  fs::path write(const std::string& name, const std::string& text) {
    std::ofstream(dir_ / name, std::ios::binary) << text;
    return dir_ / name;
  }

  // Runs the command in the test's folder with `input` as standard input. A file size limit
  // keeps a runaway output from filling the disk.
  CommandResult run(const std::vector<std::string>& args, const std::string& input = "") {
    write("stdin.txt", input);
    std::string command = "ulimit -f 400000; cd " + shellQuote(dir_.string()) + " && " +
                          shellQuote(TESSALINE_COMMAND);
    for (const auto& arg : args) command += " " + shellQuote(arg);
    const int raw = std::system((command + " <stdin.txt >stdout.txt 2>stderr.txt").c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readAll(dir_ / "stdout.txt"),
            readAll(dir_ / "stderr.txt")};
  }

  fs::path dir_;
};

}  // namespace tessaline::testing
