#include "tools/tuning/known_keys.h"

#include <algorithm>

namespace tool {
namespace {

constexpr KeyNote kNoNote = {"", "", "", 0, 0, "", "", false, false};
constexpr tuning_key kChromaNoiseKey = {nullptr,      kChromaNoise, key_type::kReal,
                                        kNoiseLevels, {1, {0}},     kNoField,
                                        kNoField,     kNoField,     kNoField};

KeyNote note_of(const std::string& path) {
  const auto notes = key_notes();
  const auto found = std::find_if(notes.begin(), notes.end(),
                                  [&](const KeyNote& note) { return path == note.path; });
  return found != notes.end() ? *found : kNoNote;
}

std::vector<KnownKey> all_keys() {
  std::vector<KnownKey> keys;
  for (const tuning_key& key : tuning_keys()) {
    const std::string path = join_path(key.section != nullptr ? key.section : "", key.name);
    keys.push_back({key, note_of(path), key.current != kNoField, false});
  }
  keys.push_back({kChromaNoiseKey, note_of(kChromaNoise), true, true});
  return keys;
}

}  // namespace

const std::vector<KnownKey>& known_keys() {
  static const std::vector<KnownKey> keys = all_keys();
  return keys;
}

const KnownKey* find_key(const std::string& path) {
  for (const KnownKey& known : known_keys()) {
    if (path == known.note.path) return &known;
  }
  return nullptr;
}

}  // namespace tool
