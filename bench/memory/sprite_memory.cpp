// Memory of parsing a sprite, relative to the document's size:
//
//   tessaline_sprite_memory SPRITE.svg...
//
// prints, per file, the document size, the peak of heap bytes allocated through operator new
// while SVGFile parses it and what stays allocated once it is parsed. The document text is read
// before measuring and not counted; expat's own buffers (plain malloc, freed by the end of the
// parse) are not seen here either. The counting operator new lives only in this
// program, so the benchmarks' timings are not disturbed by it.
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <sstream>
#include <string>

#include "tessaline/tessaline.h"

namespace {

std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> peakBytes{0};

// Each block carries its size in front, so delete can subtract it.
constexpr std::size_t kHeader = alignof(std::max_align_t);

void* allocate(std::size_t size) {
  auto* block = static_cast<unsigned char*>(std::malloc(size + kHeader));
  if (block == nullptr) throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(block) = size;
  const std::size_t now = liveBytes += size;
  std::size_t peak = peakBytes.load();
  while (now > peak && !peakBytes.compare_exchange_weak(peak, now)) {
  }
  return block + kHeader;
}

void release(void* pointer) {
  if (pointer == nullptr) return;
  auto* block = static_cast<unsigned char*>(pointer) - kHeader;
  liveBytes -= *reinterpret_cast<std::size_t*>(block);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  return allocate(size);
}
void* operator new[](std::size_t size) {
  return allocate(size);
}
void operator delete(void* pointer) noexcept {
  release(pointer);
}
void operator delete[](void* pointer) noexcept {
  release(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
  release(pointer);
}
void operator delete[](void* pointer, std::size_t) noexcept {
  release(pointer);
}

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: tessaline_sprite_memory SPRITE.svg...\n");
    return 2;
  }
  std::printf("%-26s %10s %12s %9s %12s %9s\n", "sprite", "doc KB", "peak KB", "peak/doc",
              "kept KB", "kept/doc");
  for (int i = 1; i < argc; ++i) {
    std::ifstream in(argv[i], std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "cannot read %s\n", argv[i]);
      return 1;
    }
    std::stringstream buffer;
    buffer << in.rdbuf();
    const std::string text = buffer.str();
    buffer.str({});
    const std::size_t before = liveBytes.load();
    peakBytes = before;
    std::size_t kept = 0, peak = 0;
    {
      const tessaline::SVGFile file(text);
      kept = liveBytes.load() - before;
      peak = peakBytes.load() - before;
    }
    const double doc = static_cast<double>(text.size());
    std::string name = argv[i];
    name = name.substr(name.find_last_of('/') + 1);
    std::printf("%-26s %10.0f %12.0f %8.2fx %12.0f %8.2fx\n", name.c_str(), doc / 1024,
                static_cast<double>(peak) / 1024, static_cast<double>(peak) / doc,
                static_cast<double>(kept) / 1024, static_cast<double>(kept) / doc);
  }
  return 0;
}
