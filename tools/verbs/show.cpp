#include "tools/verbs/show.h"

#include <cmath>
#include <cstdio>
#include <vector>

#include "tools/files/atomic_file.h"
#include "tools/files/printable.h"
#include "tools/tuning/curves.h"
#include "tools/tuning/frame_values.h"
#include "tools/tuning/json.h"

namespace tool {
namespace {

constexpr char kPhoneDirectory[] = "/vendor/firmware";

// The keys that the library reads, but for the version.
std::vector<const KnownKey*> shown_keys() {
  std::vector<const KnownKey*> keys;
  for (const KnownKey& known : known_keys()) {
    if (known.key.type != key_type::kText && !known.for_command) keys.push_back(&known);
  }
  return keys;
}

const char* source_of(const LoadedTuning& loaded, const KnownKey& known, size_t index) {
  return loaded.is_from_file(known, index) ? "file" : "built in";
}

// All values of a key that has none per level.
std::string fixed_text(const LoadedTuning& loaded, const KnownKey& known) {
  const bool is_level_list = known.key.count_field != kNoField;
  const size_t count = is_level_list ? loaded.levels() : static_cast<size_t>(known.key.count);
  std::string text;
  for (size_t i = 0; i < count; ++i) {
    text += (i > 0 ? ", " : "") + stored_text(known, loaded.stored(known, i));
  }
  return text;
}

std::string level_list(const LoadedTuning& loaded, const std::vector<size_t>& levels) {
  std::string text;
  for (const size_t level : levels) {
    text += (text.empty() ? "" : ", ") + std::to_string(loaded.level(level));
  }
  return text;
}

void print_row(const std::string& name, const std::string& value, const std::string& source) {
  std::printf("  %-46s %8s  %s\n", name.c_str(), value.c_str(), source.c_str());
}

class Show {
 public:
  Show(const TuningChoice& choice, const ShowOptions& options)
      : choice_(choice), options_(options), loaded_(choice.text) {}

  void print_text() const {
    std::printf("tuning       %s%s\n", printable(choice_.description).c_str(),
                loaded_.date().empty() || choice_.is_built_in
                    ? ""
                    : (", dated " + printable(loaded_.date())).c_str());
    std::printf("sensor       %u, %s\n", options_.tuning.sensor, phone_text().c_str());
    const int gate = loaded_.tuning().enableNoiseIndex;
    std::printf("gate         frames below noise index %d are left as they are\n", gate);
    const std::vector<size_t> unreachable = loaded_.unreachable();
    if (!unreachable.empty()) {
      std::printf("out of reach levels %s: no frame uses them\n",
                  level_list(loaded_, unreachable).c_str());
    }
    if (options_.noise_index) {
      print_frame(*options_.noise_index);
    } else {
      print_levels();
    }
  }

  void print_json() const {
    json_t* values = json_array();
    for (const KnownKey* known : shown_keys()) json_array_append_new(values, json_of(*known));
    json_t* report =
        json_pack("{s:s, s:s, s:i, s:s, s:i, s:o, s:o}", "tuning",
                  printable(choice_.description).c_str(), "date", printable(loaded_.date()).c_str(),
                  "sensor", static_cast<int>(options_.tuning.sensor), "model",
                  choice_.model.c_str(), "gate", loaded_.tuning().enableNoiseIndex,
                  "unreachable_levels", json_levels(loaded_.unreachable()), "values", values);
    if (options_.noise_index) {
      json_object_set_new(report, "noise_index", json_integer(*options_.noise_index));
      json_object_set_new(report, "processed", json_boolean(is_processed(*options_.noise_index)));
    }
    const Json owner(report);
    std::printf("%s\n", json_text(report, JSON_INDENT(2) | JSON_REAL_PRECISION(8)).c_str());
  }

  void plot(const std::string& path) const {
    AtomicFile file(path);
    file.write(curves_svg(loaded_, printable(choice_.description)));
    file.commit();
  }

 private:
  [[nodiscard]] bool is_processed(int noise_index) const {
    return noise_index >= loaded_.tuning().enableNoiseIndex;
  }

  [[nodiscard]] std::string phone_text() const {
    if (choice_.model.empty()) return "of no known model: a phone uses the built-in values";
    return choice_.model + ": a phone loads " + kPhoneDirectory + "/vorel_" + choice_.model +
           ".json";
  }

  void print_frame(int noise_index) const {
    const auto [lower, upper] = levels_around(loaded_, noise_index);
    std::printf("noise index  %d, %s%s\n\n", noise_index, position(noise_index).c_str(),
                is_processed(noise_index) ? "" : "; the frame is left as it is");
    for (const KnownKey* known : shown_keys()) {
      if (!known->per_level) {
        print_row(known->path(), known->key.count == 1 ? fixed_text(loaded_, *known) : "",
                  known->key.count == 1
                      ? source_of(loaded_, *known, 0)
                      : fixed_text(loaded_, *known) + " (" + source_of(loaded_, *known, 0) + ")");
        continue;
      }
      print_row(known->path(), stored_text(*known, loaded_.for_frame(*known, noise_index)),
                levels_source(*known, lower, upper));
    }
  }

  [[nodiscard]] std::string position(int noise_index) const {
    const auto [lower, upper] = levels_around(loaded_, noise_index);
    const int from = loaded_.level(lower);
    if (lower != upper) {
      const double distance = static_cast<double>(loaded_.level(upper)) - from;
      const double part = 100 * (static_cast<double>(noise_index) - from) / distance;
      char text[96];
      std::snprintf(text, sizeof(text), "%.1f %% of the way from level %d to level %d", part, from,
                    loaded_.level(upper));
      return text;
    }
    return (noise_index == from  ? "on level "
            : noise_index < from ? "below level "
                                 : "above level ") +
           std::to_string(from);
  }

  // "file: 17.0 at 800, 45.0 at 1600".
  [[nodiscard]] std::string levels_source(const KnownKey& known, size_t lower, size_t upper) const {
    const auto at = [&](size_t level) {
      return stored_text(known, loaded_.stored(known, level)) + " at " +
             std::to_string(loaded_.level(level));
    };
    const std::string below = source_of(loaded_, known, lower);
    const std::string above = source_of(loaded_, known, upper);
    std::string text = below + ": " + at(lower);
    if (upper == lower) return text;
    return text + ", " + (above == below ? "" : above + ": ") + at(upper);
  }

  void print_levels() const {
    std::printf("\n  %-46s", "level");
    for (size_t i = 0; i < loaded_.levels(); ++i) std::printf(" %7d", loaded_.level(i));
    std::printf("\n");
    bool any_built_in = false;
    for (const KnownKey* known : shown_keys()) {
      if (known->key.count_field != kNoField) continue;
      std::printf("  %-46s", known->path().c_str());
      const size_t count =
          known->per_level ? loaded_.levels() : static_cast<size_t>(known->key.count);
      for (size_t i = 0; i < count; ++i) {
        const bool is_built_in = !loaded_.is_from_file(*known, i);
        any_built_in = any_built_in || is_built_in;
        std::printf(
            " %7s",
            (stored_text(*known, loaded_.stored(*known, i)) + (is_built_in ? "*" : "")).c_str());
      }
      std::printf("\n");
    }
    if (any_built_in) std::printf("\n  * built in, not from the file\n");
  }

  // JSON has no infinity.
  [[nodiscard]] json_t* json_number(const KnownKey& known, double value) const {
    if (!std::isfinite(value)) return json_null();
    return known.is_real() ? json_real(value) : json_integer(static_cast<json_int_t>(value));
  }

  [[nodiscard]] json_t* json_levels(const std::vector<size_t>& levels) const {
    json_t* list = json_array();
    for (const size_t level : levels) {
      json_array_append_new(list, json_integer(loaded_.level(level)));
    }
    return list;
  }

  // One value with its level, if it has one, and where it comes from.
  [[nodiscard]] json_t* json_stored(const KnownKey& known, size_t index) const {
    json_t* object =
        json_pack("{s:o, s:s}", "value", json_number(known, loaded_.stored(known, index)), "source",
                  source_of(loaded_, known, index));
    if (known.per_level) json_object_set_new(object, "level", json_integer(loaded_.level(index)));
    return object;
  }

  [[nodiscard]] json_t* json_of(const KnownKey& known) const {
    json_t* object = json_pack("{s:s}", "key", known.note.path);
    json_t* from = json_array();
    if (known.per_level && options_.noise_index) {
      const auto [lower, upper] = levels_around(loaded_, *options_.noise_index);
      json_object_set_new(object, "value",
                          json_number(known, loaded_.for_frame(known, *options_.noise_index)));
      json_array_append_new(from, json_stored(known, lower));
      if (upper != lower) json_array_append_new(from, json_stored(known, upper));
    } else {
      const bool is_level_list = known.key.count_field != kNoField;
      const size_t count = known.per_level || is_level_list ? loaded_.levels()
                                                            : static_cast<size_t>(known.key.count);
      for (size_t i = 0; i < count; ++i) json_array_append_new(from, json_stored(known, i));
    }
    json_object_set_new(object, "from", from);
    return object;
  }

  const TuningChoice& choice_;
  const ShowOptions& options_;
  LoadedTuning loaded_;
};

}  // namespace

void run_show(const ShowOptions& options) {
  const TuningChoice choice = choose_tuning(options.tuning);
  const Show show(choice, options);
  if (options.plot) show.plot(*options.plot);
  if (options.json) {
    show.print_json();
  } else {
    show.print_text();
  }
}

}  // namespace tool
