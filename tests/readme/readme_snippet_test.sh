#!/usr/bin/env bash
# The C++ example in README.md must be exactly examples/readme_example.cpp, which the test build
# compiles and runs: the code block after the "readme_example.cpp" marker is compared with it.
#
#   readme_snippet_test.sh path/to/source
set -euo pipefail
source_dir=$1
snippet=$(awk '/<!-- readme_example.cpp/ { marker = 1; next }
               marker && /^```cpp$/ { inside = 1; next }
               inside && /^```$/ { exit }
               inside { print }' "$source_dir/README.md")
if [ -z "$snippet" ]; then
  echo "FAIL: README.md has no C++ block after the readme_example.cpp marker" >&2
  exit 1
fi
if ! diff -u "$source_dir/examples/readme_example.cpp" <(printf '%s\n' "$snippet"); then
  echo "FAIL: README.md's C++ example differs from examples/readme_example.cpp (diff above)" >&2
  exit 1
fi
echo "README example matches examples/readme_example.cpp"
