// The values in force for a frame, and where each comes from. The library's own code reads the file
// and selects.
#ifndef VOREL_TOOLS_TUNING_FRAME_VALUES_H_
#define VOREL_TOOLS_TUNING_FRAME_VALUES_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/tuning/known_keys.h"
#include "tools/tuning/tuning_text.h"
#include "tools/tuning/tuning_view.h"
#include "tuning/tuning.h"

namespace tool {

// A tuning as the library has it after reading the text.
class LoadedTuning {
 public:
  explicit LoadedTuning(const std::string& text);

  // The value of a key as read: of a table at a level, of others at an index.
  [[nodiscard]] double stored(const KnownKey& known, size_t index) const;
  // Whether the file says it; otherwise it is built in.
  [[nodiscard]] bool is_from_file(const KnownKey& known, size_t index) const;
  // The value of a table for a frame.
  [[nodiscard]] double for_frame(const KnownKey& known, int noise_index) const;

  [[nodiscard]] const cnr_tuning& tuning() const { return tuning_; }
  [[nodiscard]] size_t levels() const;
  [[nodiscard]] int level(size_t index) const { return tuning_.NILevel[index]; }
  [[nodiscard]] std::string date() const { return date_; }
  // Levels that give nothing to any frame.
  [[nodiscard]] std::vector<size_t> unreachable() const;

 private:
  TuningText text_;
  std::optional<TuningView> view_;
  cnr_tuning tuning_{};
  std::string date_;
};

// The levels that a noise index lies between; one twice when it lies on or beyond it.
struct LevelPair {
  size_t lower;
  size_t upper;
};
[[nodiscard]] LevelPair levels_around(const LoadedTuning& loaded, int noise_index);

// As a tuning file would write it, with no more digits than a float has.
[[nodiscard]] std::string stored_text(const KnownKey& known, double value);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_FRAME_VALUES_H_
