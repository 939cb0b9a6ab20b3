#include "tests/support/guarded_plane.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

GuardedBytes::GuardedBytes(size_t bytes, Guard guard) : size_(bytes) {
  const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const size_t usable = (bytes + page - 1) / page * page;
  mapped_ = usable + 2 * page;
  void* mapping =
      mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) {
    std::perror("mmap");
    std::abort();
  }
  mapping_ = static_cast<uint8_t*>(mapping);
  mprotect(mapping_, page, PROT_NONE);
  mprotect(mapping_ + page + usable, page, PROT_NONE);
  data_ = guard == Guard::kEnd ? mapping_ + page + usable - bytes : mapping_ + page;
}

GuardedBytes::~GuardedBytes() { munmap(mapping_, mapped_); }

void fill_pattern(uint8_t* data, size_t count, Pattern pattern, std::mt19937& random) {
  for (size_t i = 0; i < count; ++i) {
    switch (pattern) {
      case Pattern::kRandom:
        data[i] = static_cast<uint8_t>(random());
        break;
      case Pattern::kLow:
        data[i] = 0;
        break;
      case Pattern::kHigh:
        data[i] = 255;
        break;
      case Pattern::kAlternating:
        data[i] = static_cast<uint8_t>(i % 2 * 255);
        break;
      case Pattern::kNear:
        data[i] = static_cast<uint8_t>(116 + random() % 24);
        break;
      case Pattern::kPicture:
        data[i] = static_cast<uint8_t>(96 + (i >> 6) % 64 + random() % 16);
        break;
    }
  }
}
