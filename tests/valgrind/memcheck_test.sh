#!/usr/bin/env bash
# Runs the command under valgrind's memcheck over the example sprite and the every-element test
# document: rendering every symbol with both backends, the contact sheet and the report. Any
# invalid access or leaked block fails the test. Skips (exit 77) where valgrind is not installed.
set -euo pipefail
tool=$1
source_dir=$2
if ! command -v valgrind >/dev/null; then
  echo "valgrind is not installed: skipping (scripts/bootstrap --with-extras installs it)"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

memcheck() {
  echo "== $*"
  valgrind --quiet --error-exitcode=3 --leak-check=full --show-leak-kinds=definite,indirect,possible \
    --errors-for-leak-kinds=definite,indirect,possible --track-origins=yes "$tool" "$@" >/dev/null
}

for document in "$source_dir/examples/sprite.svg" "$source_dir/tests/data/every_element.svg"; do
  name=$(basename "$document" .svg)
  memcheck render-all "$document" -o "$work/$name-native" -j 2
  memcheck render-all "$document" -o "$work/$name-cairo" -j 2 --backend cairo
done
memcheck sheet "$source_dir/examples/sprite.svg" -o "$work/sheet.png"
memcheck report "$source_dir/examples/sprite.svg" -o "$work/report"
memcheck inspect "$source_dir/tests/data/every_element.svg"
echo "memcheck: no invalid accesses, no leaks"
