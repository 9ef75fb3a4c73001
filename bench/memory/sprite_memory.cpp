// Memory of parsing a sprite, relative to the document's size:
//
//   tessaline_sprite_memory SPRITE.svg...
//
// prints, per file, the document size, the peak of heap bytes held while SVGFile parses it and
// what stays held once it is parsed. Counting is done at the C allocator, which this program
// replaces with a counting front to the C library's own, so everything the parse allocates is
// seen: the library's objects (operator new allocates through malloc) and expat's buffers alike.
// A block counts as the bytes the allocator reserves for it (malloc_usable_size), not the bytes
// requested. The document text is read before measuring and not counted. The counting lives only
// in this program, so the benchmarks' timings are not disturbed by it.
#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "tessaline/tessaline.h"

// The C library's allocator under its own names, which it exports so that a program may put
// itself in front of it.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> peakBytes{0};

std::size_t heldBy(void* block) {
  return block == nullptr ? 0 : malloc_usable_size(block);
}

void* counted(void* block) {
  const std::size_t now = liveBytes += heldBy(block);
  std::size_t peak = peakBytes.load();
  while (now > peak && !peakBytes.compare_exchange_weak(peak, now)) {
  }
  return block;
}

}  // namespace

// Every entry point that hands out or takes back a block, so that none is freed uncounted.
extern "C" {
void* malloc(std::size_t size) {
  return counted(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) {
  return counted(__libc_calloc(count, size));
}
void* realloc(void* block, std::size_t size) {
  const std::size_t before = heldBy(block);
  void* moved = __libc_realloc(block, size);
  // A failed resize leaves the block as it was; a resize to nothing frees it.
  if (moved == nullptr && size != 0) return nullptr;
  liveBytes -= before;
  return counted(moved);
}
void free(void* block) {
  liveBytes -= heldBy(block);
  __libc_free(block);
}
void* memalign(std::size_t alignment, std::size_t size) {
  return counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return memalign(alignment, size);
}
int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
  // memalign rounds a bad alignment up; posix_memalign must refuse it instead.
  const bool powerOfTwo = alignment != 0 && (alignment & (alignment - 1)) == 0;
  if (!powerOfTwo || alignment % sizeof(void*) != 0) return EINVAL;
  void* block = memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *out = block;
  return 0;
}
void* valloc(std::size_t size) {
  return memalign(4096, size);
}
void* pvalloc(std::size_t size) {
  return memalign(4096, (size + 4095) / 4096 * 4096);
}
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
