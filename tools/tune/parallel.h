// Work on all cores whose results do not depend on how many there are.
#ifndef VOREL_TOOLS_TUNE_PARALLEL_H_
#define VOREL_TOOLS_TUNE_PARALLEL_H_

#include <cstddef>
#include <functional>

namespace tool {

// Calls work(0) to work(count - 1), each once, in any order and at the same time; each call keeps
// to results of its own. When calls throw, the one of the lowest index is thrown on.
void for_each_in_parallel(size_t count, const std::function<void(size_t)>& work);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_PARALLEL_H_
