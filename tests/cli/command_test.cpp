// Usage and input/output errors of every command: exit status 2, nothing on standard output and
// one line on standard error that names the problem.
#include "command_test.h"

#include <algorithm>

namespace tessaline::testing {
namespace {

class UsageErrors : public CommandTest {};

TEST_F(UsageErrors, ExitTwoWithOneLine) {
  const std::string sample = std::string(TESSALINE_TEST_DATA) + "/render/cli_sample.svg";
  write("a-file", "x");
  fs::create_directories(dir_ / "folder");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"list"}, "FILE is required"},
      {{"list", "missing.svg"}, "cannot read missing.svg"},
      {{"list", "folder"}, "cannot read folder"},
      {{"list", "--bogus", sample}, "--bogus"},
      {{"inspect"}, "FILE is required"},
      {{"inspect", "missing.svg"}, "cannot read missing.svg"},
      {{"inspect", sample, "square", "extra"}, "extra"},
      {{"render", sample}, "KEY is required"},
      {{"render", "missing.svg", "square"}, "cannot read missing.svg"},
      {{"render", sample, "square", "-o", "no/such/folder/out.png"},
       "cannot write no/such/folder/out.png"},
      {{"render", sample, "square", "--bogus"}, "--bogus"},
      {{"render", sample, "square", "--backend", "gpu"}, "--backend"},
      {{"render-all", sample}, "--output is required"},
      {{"render-all", "missing.svg", "-o", "out"}, "cannot read missing.svg"},
      {{"render-all", sample, "-o", "out", "-j", "0"}, "--jobs"},
      {{"render-all", sample, "-o", "a-file"}, "cannot create a-file"},
      {{"sheet", sample}, "--output is required"},
      {{"sheet", "missing.svg", "-o", "s.png"}, "cannot read missing.svg"},
      {{"sheet", sample, "-o", "s.png", "--columns", "0"}, "--columns"},
      {{"sheet", sample, "-o", "s.png", "--cell", "8"}, "--cell"},
      {{"sheet", sample, "-o", "s.png", "--cell", "big"}, "--cell"},
      {{"sheet", sample, "-o", "no/such/folder/s.png"}, "cannot write no/such/folder/s.png"},
      {{"sheet", sample, "-o", "folder"}, "cannot write folder"},
      {{"report", sample}, "--output is required"},
      {{"report", "missing.svg", "-o", "out"}, "cannot read missing.svg"},
      {{"report", sample, "-o", "a-file"}, "cannot create a-file/images"},
      {{"report", sample, "-o", "out", "-j", "0"}, "--jobs"},
  };
  for (const auto& [args, message] : cases) {
    std::string label;
    for (const auto& arg : args) label += arg + " ";
    SCOPED_TRACE(label);
    const CommandResult result = run(args);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_EQ(result.err.rfind("tessaline: ", 0), 0u) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
}

}  // namespace
}  // namespace tessaline::testing
