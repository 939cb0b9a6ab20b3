// A tuning file's object that counts, by key: what is written, and the built-in values for the
// rest.
#ifndef VOREL_TOOLS_TUNING_TUNING_VIEW_H_
#define VOREL_TOOLS_TUNING_TUNING_VIEW_H_

#include <string>

#include "tools/tuning/known_keys.h"
#include "tools/tuning/located.h"

namespace tool {

class TuningView {
 public:
  explicit TuningView(Located used) : used_(used) {}

  [[nodiscard]] Located object() const { return used_; }
  [[nodiscard]] Located value(const KnownKey& known) const;
  // One value of the key: an element of its array, or the value itself.
  [[nodiscard]] Located value(const KnownKey& known, size_t index) const;
  [[nodiscard]] bool has(const KnownKey& known) const { return static_cast<bool>(value(known)); }
  // Whether everything that the file has of the key is of the kind that it must be. An integer in a
  // table of reals counts as the number that it was meant to be.
  [[nodiscard]] bool is_sound(const KnownKey& known) const;
  // The number in force: what is written, else the built-in value.
  [[nodiscard]] double number(const KnownKey& known, size_t index) const;
  // Where to point at for a value: itself, else what should hold it.
  [[nodiscard]] size_t begin(const KnownKey& known, size_t index) const;
  // Noise levels in force, at least one.
  [[nodiscard]] size_t levels() const;

 private:
  Located used_;
};

[[nodiscard]] std::string value_path(const KnownKey& known, size_t index);

// As a tuning file writes it: reals with a decimal point.
[[nodiscard]] std::string number_text(const KnownKey& known, double number);
[[nodiscard]] std::string real_text(double number);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_TUNING_VIEW_H_
