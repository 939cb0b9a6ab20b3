// Option values: texts to numbers, with messages that say what would be right.
#ifndef VOREL_TOOLS_VERBS_VERB_OPTIONS_H_
#define VOREL_TOOLS_VERBS_VERB_OPTIONS_H_

#include <CLI/CLI.hpp>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "tools/library/tuning_choice.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/side_by_side.h"
#include "tools/verbs/noise_index_choice.h"

namespace tool {

// Accepts whole decimal numbers from `first` to `last`.
[[nodiscard]] CLI::Validator whole_number(uint64_t first, uint64_t last);
inline constexpr uint64_t kMaxInt = std::numeric_limits<int>::max();

// Accepts WIDTHxHEIGHT.
[[nodiscard]] CLI::Validator picture_size();

// Accepts X,Y,WIDTH,HEIGHT.
[[nodiscard]] CLI::Validator crop_rectangle();
[[nodiscard]] Crop parse_crop(const std::string& text);
[[nodiscard]] std::string crop_text(const Crop& crop);

// Adds a verb; `footer` ends its help and must outlive the app.
CLI::App& add_verb(CLI::App& app, const char* name, const char* description, const char* footer);

// Adds -n, --noise-index: a number, auto or exif. `request` must live as long as the app.
void add_noise_index(CLI::App& verb, NoiseIndexRequest& request);

// Adds --sensor and --tuning. `request` must live as long as the app.
void add_tuning(CLI::App& verb, TuningRequest& request);

// Options that several verbs have.
void add_output(CLI::App& verb, std::string& output, const char* description = "file to write");
void add_quality(CLI::App& verb, std::optional<int>& quality);
void add_force(CLI::App& verb, bool& force);
void add_crop(CLI::App& verb, std::optional<Crop>& crop, const char* description);
void add_page(CLI::App& verb, std::optional<std::string>& page);

// Adds --size, --layout, --stride, --frames, --range and --matrix. `read` must live as long as the
// app.
void add_read_options(CLI::App& app, ReadOptions& read);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_VERB_OPTIONS_H_
