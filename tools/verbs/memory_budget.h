// Keeps pictures that are processed at the same time within the machine's memory.
#ifndef VOREL_TOOLS_VERBS_MEMORY_BUDGET_H_
#define VOREL_TOOLS_VERBS_MEMORY_BUDGET_H_

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>

#include "tools/pictures/read_options.h"

namespace tool {

// Bytes that `vorel denoise` needs for a picture or video at most, by what its first bytes say of
// its size. A file that says nothing counts as the largest; reading it will tell why.
[[nodiscard]] size_t memory_for(const std::string& path, const ReadOptions& options);

class MemoryBudget {
 public:
  // Half of the machine's memory.
  MemoryBudget();
  explicit MemoryBudget(size_t bytes) : left_(bytes), all_(bytes) {}

  // Gives its bytes back when it goes.
  class Share {
   public:
    Share(MemoryBudget& budget, size_t bytes) : budget_(budget), bytes_(bytes) {}
    ~Share();
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;

   private:
    MemoryBudget& budget_;
    size_t bytes_;
  };

  // Waits until there is enough. What exceeds the budget gets all of it, and so runs alone.
  [[nodiscard]] Share take(size_t bytes);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  size_t left_;
  size_t all_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_MEMORY_BUDGET_H_
