#include "command_test.h"

#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tessaline::testing {

namespace fs = std::filesystem;

std::vector<unsigned char> RgbaPng::pixel(int x, int y) const {
  const auto* p = &rgba[(static_cast<std::size_t>(y) * width + x) * 4];
  return {p[0], p[1], p[2], p[3]};
}

RgbaPng::Pixel RgbaPng::at(int x, int y) const {
  const auto* p = &rgba[(static_cast<std::size_t>(y) * width + x) * 4];
  return {p[0], p[1], p[2], p[3]};
}

std::optional<RgbaPng> readRgbaPng(const fs::path& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return std::nullopt;
  image.format = PNG_FORMAT_RGBA;
  RgbaPng png;
  png.width = static_cast<int>(image.width);
  png.height = static_cast<int>(image.height);
  png.rgba.resize(PNG_IMAGE_SIZE(image));
  if (!png_image_finish_read(&image, nullptr, png.rgba.data(), 0, nullptr)) return std::nullopt;
  return png;
}

std::string readAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::string shellQuote(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

void CommandTest::SetUp() {
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  dir_ = fs::temp_directory_path() / ("tessaline_cli_" + std::to_string(::getpid()) + "_" +
                                      info->test_suite_name() + "_" + info->name());
  fs::remove_all(dir_);
  fs::create_directories(dir_);
}

void CommandTest::TearDown() {
  fs::remove_all(dir_);
}

fs::path CommandTest::write(const std::string& name, const std::string& text) {
  std::ofstream(dir_ / name, std::ios::binary) << text;
  return dir_ / name;
}

CommandResult CommandTest::run(const std::vector<std::string>& args, const std::string& input) {
  write("stdin.txt", input);
  std::string command =
      "ulimit -f 400000; cd " + shellQuote(dir_.string()) + " && " + shellQuote(TESSALINE_COMMAND);
  for (const auto& arg : args) command += " " + shellQuote(arg);
  command += " <stdin.txt >stdout.txt 2>stderr.txt";
  const int raw = std::system(command.c_str());
  CommandResult result;
  result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  result.out = readAll(dir_ / "stdout.txt");
  result.err = readAll(dir_ / "stderr.txt");
  return result;
}

}  // namespace tessaline::testing
