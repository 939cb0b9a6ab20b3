// Which files a run over several pictures reads and writes.
#ifndef VOREL_TOOLS_VERBS_BATCH_NAMES_H_
#define VOREL_TOOLS_VERBS_BATCH_NAMES_H_

#include <string>
#include <vector>

namespace tool {

// Several inputs, a folder among them, or an output that stands for several: a folder (which exists
// or ends in a slash) or a pattern.
[[nodiscard]] bool is_batch(const std::vector<std::string>& inputs, const std::string& output);

struct BatchItem {
  std::string input;
  std::string output;
};

// In the order given; of a folder its pictures and videos by name, without those of folders in it.
// `output` is a folder, where every file keeps its name, or a pattern: {name} is the input's name
// without its extension, {ext} the extension. A usage error when two results would have one name,
// an input error when a folder holds no picture. Nothing is created.
[[nodiscard]] std::vector<BatchItem> plan_batch(const std::vector<std::string>& inputs,
                                                const std::string& output);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_BATCH_NAMES_H_
