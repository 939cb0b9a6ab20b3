#include "tools/verbs/tune.h"

#include <cstdio>
#include <filesystem>
#include <map>

#include "tools/files/atomic_file.h"
#include "tools/files/failure.h"
#include "tools/library/library_log.h"
#include "tools/tune/manifest.h"
#include "tools/tune/report.h"
#include "tools/verbs/result_page.h"
#include "tools/verbs/tune_page.h"

namespace tool {
namespace {

int only_noise_index(const TuneOptions& options, const char* option) {
  if (options.noise_indices.size() == 1) return options.noise_indices[0];
  throw usage_error(std::string(option) +
                    " needs --noise-index with the one index of the pictures");
}

// What the inputs are, as options say.
std::vector<CaptureSource> sources_by_option(const TuneOptions& options,
                                             const std::vector<std::string>& pictures) {
  if (!options.truth.empty()) {
    return {{std::filesystem::path(options.truth).stem().string(),
             only_noise_index(options, "--truth"), pictures, options.truth}};
  }
  if (options.is_burst) {
    return {{std::filesystem::path(pictures[0]).stem().string(),
             only_noise_index(options, "--burst"), pictures, ""}};
  }
  if (options.noise_indices.empty()) {
    throw usage_error("--clean needs --noise-index with the indices to make, such as 100,400,1600");
  }
  std::vector<CaptureSource> sources;
  for (const std::string& picture : pictures) {
    for (const int noise_index : options.noise_indices) {
      sources.push_back({std::filesystem::path(picture).stem().string(), noise_index, {}, picture});
    }
  }
  return sources;
}

std::vector<CaptureSource> collect_sources(const TuneOptions& options) {
  std::vector<CaptureSource> sources;
  std::vector<std::string> pictures;
  for (const std::string& input : options.inputs) {
    if (is_manifest(input)) {
      const std::vector<CaptureSource> listed = read_manifest(input);
      sources.insert(sources.end(), listed.begin(), listed.end());
    } else if (std::filesystem::is_directory(input)) {
      const std::vector<std::string> found = pictures_in(input);
      pictures.insert(pictures.end(), found.begin(), found.end());
    } else {
      pictures.push_back(input);
    }
  }
  const int kinds =
      (options.truth.empty() ? 0 : 1) + (options.is_burst ? 1 : 0) + (options.is_clean ? 1 : 0);
  if (kinds > 1) throw usage_error("--truth, --burst and --clean exclude each other");
  if (kinds > 0 && pictures.empty())
    throw usage_error("a manifest says itself what its pictures are");
  if (kinds == 0 && !options.noise_indices.empty()) {
    throw usage_error(
        "--noise-index needs --truth, --burst or --clean; else names or a manifest say it");
  }
  if (!pictures.empty()) {
    const std::vector<CaptureSource> named =
        kinds > 0 ? sources_by_option(options, pictures) : sources_by_name(pictures);
    sources.insert(sources.end(), named.begin(), named.end());
  }
  return sources;
}

std::vector<std::string> files_of(const std::vector<CaptureSource>& sources) {
  std::vector<std::string> files;
  for (const CaptureSource& source : sources) {
    files.insert(files.end(), source.noisy.begin(), source.noisy.end());
    if (!source.clean.empty()) files.push_back(source.clean);
  }
  return files;
}

size_t check_sources(const std::vector<CaptureSource>& sources) {
  for (const std::string& file : files_of(sources)) {
    std::error_code error;
    if (!std::filesystem::exists(file, error)) throw input_error(file, "does not exist");
  }
  std::map<int, int> levels;
  for (const CaptureSource& source : sources) ++levels[source.noise_index];
  if (levels.size() > kMaxLevels) {
    throw usage_error("the captures have " + std::to_string(levels.size()) +
                      " noise indices; a tuning file has at most " + std::to_string(kMaxLevels));
  }
  return levels.size();
}

void print_plan(const std::vector<CaptureSource>& sources) {
  for (const CaptureSource& source : sources) {
    const std::string what =
        source.noisy.empty() ? "noise made on " + source.clean
        : source.clean.empty()
            ? std::to_string(source.noisy.size()) + " files of a burst"
            : std::to_string(source.noisy.size()) + " with truth " + source.clean;
    std::printf("%-20s noise index %-7d %s\n", source.scene.c_str(), source.noise_index,
                what.c_str());
  }
}

}  // namespace

void run_tune(const TuneOptions& options) {
  if (options.output.empty() && !options.dry_run) throw usage_error("--output is required");
  const std::vector<CaptureSource> sources = collect_sources(options);
  const size_t levels = check_sources(sources);
  if (options.dry_run) {
    print_plan(sources);
    std::printf("%zu captures at %zu noise indices; nothing was searched\n", sources.size(),
                levels);
    return;
  }
  std::vector<std::string> outputs{options.output};
  if (!options.report.empty()) outputs.push_back(options.report);
  if (options.page) outputs.push_back(*options.page);
  std::vector<std::string> inputs = files_of(sources);
  inputs.insert(inputs.end(), options.inputs.begin(), options.inputs.end());
  check_outputs(outputs, inputs, options.force);

  AtomicFile output(options.output);  // before the work: a place that cannot be written ends it
  const LibraryLog log(LogLevel::kError);
  const TuneResult result = run_tuning(sources, options.settings);
  output.write(tuning_text(result.values));
  output.commit();
  if (!options.report.empty()) {
    AtomicFile report(options.report);
    const bool as_json = std::filesystem::path(options.report).extension() == ".json";
    report.write(as_json ? report_json(result) : report_text(result));
    report.commit();
  }
  if (options.page) {
    const Page page = tune_page(options.output, result, sources, options.settings.captures);
    write_text_file(*options.page, page_html(page));
  }
  if (options.quiet) return;
  std::printf("%s\n%s", options.output.c_str(), report_text(result).c_str());
}

}  // namespace tool
