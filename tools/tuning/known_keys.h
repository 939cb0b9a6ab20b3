// Everything that is known about the keys of a tuning file: what the library's table says, and what
// people want to know.
#ifndef VOREL_TOOLS_TUNING_KNOWN_KEYS_H_
#define VOREL_TOOLS_TUNING_KNOWN_KEYS_H_

#include <span>
#include <string>
#include <vector>

#include "tuning/keys.h"

namespace tool {

// For people, and for the checker: what a value does and from where on it does harm.
struct KeyNote {
  const char* path;
  const char* unit;         // empty where there is none
  const char* description;  // a sentence or more
  double least;             // values outside do what the texts say; equal for texts
  double most;
  const char* below;
  const char* above;
  bool ruins;  // outside, every frame comes out wrong; otherwise the value is of no use
  bool rises;  // from level to level
};

struct KnownKey {
  tuning_key key;
  KeyNote note;
  bool per_level;    // a value for each noise level
  bool for_command;  // the library does not read it

  [[nodiscard]] std::string path() const { return note.path; }
  [[nodiscard]] bool is_real() const { return key.type == key_type::kReal; }
};

// For `vorel denoise --noise-index auto`, not for the library: the chroma noise that a frame of
// each level shows.
inline constexpr char kChromaNoise[] = "chromaNoise_values";

// The keys of the library's table in its order, then those for the command.
[[nodiscard]] const std::vector<KnownKey>& known_keys();

[[nodiscard]] const KnownKey* find_key(const std::string& path);

// One note a key, in any order.
[[nodiscard]] std::span<const KeyNote> key_notes();

// "section.name", or the name alone at the top level (empty section).
[[nodiscard]] inline std::string join_path(const std::string& section, const std::string& name) {
  return section.empty() ? name : section + "." + name;
}
[[nodiscard]] inline std::string section_of(const KnownKey& known) {
  return known.key.section != nullptr ? known.key.section : "";
}

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_KNOWN_KEYS_H_
