// FindingList about tuning files, and the checks of single values.
#ifndef VOREL_TUNING_FINDINGS_H_
#define VOREL_TUNING_FINDINGS_H_

#include <jansson.h>

#include <cstddef>

#include "tuning/check.h"
#include "tuning/keys.h"

inline constexpr size_t kTextSize = 256;  // longer texts are cut

struct finding_text {
  char chars[kTextSize];
};

[[nodiscard, gnu::format(printf, 1, 2)]] finding_text format_text(const char* pattern, ...);

class FindingList {
 public:
  FindingList(tuning_finding_function report, void* context) : report_(report), context_(context) {}

  void error(const finding_text& path, const finding_text& what, const finding_text& consequence) {
    add({true, path.chars, what.chars, consequence.chars});
  }
  void warning(const finding_text& path, const finding_text& what,
               const finding_text& consequence) {
    add({false, path.chars, what.chars, consequence.chars});
  }
  int count() const { return count_; }

 private:
  void add(const tuning_finding& finding) {
    ++count_;
    report_(finding, context_);
  }

  tuning_finding_function report_;
  void* context_;
  int count_ = 0;
};

// "an integer", "a string" and so on.
[[nodiscard]] const char* kind_of(const json_t* value);

// "section.name", or the name alone at the top level (null section).
[[nodiscard]] finding_text path_of(const char* section, const char* name);
[[nodiscard]] finding_text element_path(const tuning_key& key, size_t index);

// One value of a key, or one element of its array.
void check_value(const tuning_key& key, const finding_text& path, const json_t* value,
                 FindingList& found);

#endif  // VOREL_TUNING_FINDINGS_H_
