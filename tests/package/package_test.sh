#!/usr/bin/env bash
# Installs the built library into a scratch prefix, then builds the example host against it twice:
# through the CMake package and through pkg-config. Finally runs the host on a tiny sprite.
set -euo pipefail
build_dir=$1
source_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null

cmake -S "$source_dir/examples/host" -B "$work/host" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/host" >/dev/null

pc_dir=$(dirname "$(find "$work/prefix" -name tessaline.pc | head -n 1)")
PKG_CONFIG_PATH="$pc_dir" g++ -std=c++20 "$source_dir/examples/host/main.cpp" -o "$work/host-pc" \
  $(PKG_CONFIG_PATH="$pc_dir" pkg-config --cflags --libs --static tessaline)

cat > "$work/sprite.svg" <<'SVG'
<svg xmlns="http://www.w3.org/2000/svg">
  <symbol id="dot" viewBox="0 0 24 24"><circle cx="12" cy="12" r="8" fill="#ff0000"/></symbol>
</svg>
SVG
cd "$work"
for host in "$work/host/tessaline_host" "$work/host-pc"; do
  output=$("$host" "$work/sprite.svg" dot)
  echo "$output"
  grep -q "1 symbols" <<<"$output"
  grep -q "dot: 256x256, centre pixel rgba(255, 0, 0, 255)" <<<"$output"
  test -s "$work/dot.png"
  rm -f "$work/dot.png"
done
echo "package test passed"
