#include "support/test_support.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace tessaline::testing {

std::string readTestData(const std::string& relativePath) {
  std::ifstream in(std::string(TESSALINE_TEST_DATA) + "/" + relativePath, std::ios::binary);
  EXPECT_TRUE(in.good()) << "cannot read test data " << relativePath;
  std::ostringstream contents;
  contents << in.rdbuf();
  return contents.str();
}

}  // namespace tessaline::testing
