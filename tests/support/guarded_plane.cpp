#include "tests/support/guarded_plane.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>

namespace {

const size_t kPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));

void require(bool done, const char* what) {
  if (done) return;
  std::perror(what);
  std::abort();
}

// Emulators refuse a length of 0.
void protect(uint8_t* pages, size_t bytes, int access) {
  require(bytes == 0 || mprotect(pages, bytes, access) == 0, "mprotect");
}

// Usable pages between two unreadable ones. Those given back last stay mapped, unreadable as a
// whole: to make them readable again takes a fraction of what new ones take.
class Mappings {
 public:
  uint8_t* take(size_t usable) {
    uint8_t* pages = take_kept(usable);
    if (pages == nullptr) return make(usable);
    protect(pages, usable, PROT_READ | PROT_WRITE);
    std::memset(pages, 0, usable);
    return pages;
  }

  void give_back(uint8_t* pages, size_t usable) {
    protect(pages, usable, PROT_NONE);
    const std::lock_guard<std::mutex> lock(mutex_);
    kept_.push_back({pages, usable});
    if (kept_.size() <= kMostKept) return;
    const Kept oldest = kept_.front();
    kept_.pop_front();
    munmap(oldest.pages - kPage, oldest.usable + 2 * kPage);
  }

 private:
  struct Kept {
    uint8_t* pages;
    size_t usable;
  };
  static constexpr size_t kMostKept = 16;

  uint8_t* take_kept(size_t usable) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = std::find_if(kept_.begin(), kept_.end(),
                                    [&](const Kept& kept) { return kept.usable == usable; });
    if (found == kept_.end()) return nullptr;
    uint8_t* pages = found->pages;
    kept_.erase(found);
    return pages;
  }

  static uint8_t* make(size_t usable) {
    void* mapping =
        mmap(nullptr, usable + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(mapping != MAP_FAILED, "mmap");
    uint8_t* pages = static_cast<uint8_t*>(mapping) + kPage;
    protect(pages, usable, PROT_READ | PROT_WRITE);
    return pages;
  }

  std::mutex mutex_;
  std::deque<Kept> kept_;
};

// Never destroyed: planes may be given back at the very end.
Mappings& mappings() {
  static Mappings* const all = new Mappings;
  return *all;
}

}  // namespace

GuardedBytes::GuardedBytes(size_t bytes, Guard guard)
    : usable_((bytes + kPage - 1) / kPage * kPage),
      pages_(mappings().take(usable_)),
      data_(guard == Guard::kEnd ? pages_ + usable_ - bytes : pages_),
      size_(bytes) {}

GuardedBytes::~GuardedBytes() { mappings().give_back(pages_, usable_); }

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
