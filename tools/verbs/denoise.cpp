#include "tools/verbs/denoise.h"

#include <cstdio>
#include <filesystem>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/library/trace_file.h"
#include "tools/verbs/batch_names.h"
#include "tools/verbs/denoise_batch.h"
#include "tools/verbs/denoise_page.h"
#include "tools/verbs/denoise_run.h"
#include "tools/verbs/result_page.h"

namespace tool {
namespace {

void make_dump_folder(const std::string& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw output_error(directory, "cannot be made: " + error.message());
}

int denoise_one(const DenoiseOptions& options, const LibraryCalls& calls) {
  const std::string& input = options.inputs.front();
  std::vector<std::string> outputs{options.output};
  if (options.compare) outputs.push_back(*options.compare);
  if (options.page) outputs.push_back(*options.page);
  if (options.trace) outputs.push_back(*options.trace);
  std::vector<std::string> inputs{input};
  if (options.truth) inputs.push_back(*options.truth);
  if (options.tuning.name) inputs.push_back(*options.tuning.name);
  check_outputs(outputs, inputs, options.force);
  const TuningChoice tuning = choose_tuning(options.tuning);
  if (options.dump) make_dump_folder(*options.dump);
  std::optional<TraceFile> trace;
  if (options.trace) trace.emplace(*options.trace);
  DenoiseSummary summary = denoise_file(options, input, options.output, tuning, calls);
  if (trace) trace->finish();
  if (options.page) {
    write_text_file(*options.page, page_html(denoise_page(summary, tuning.text)));
  }
  if (!options.quiet) {
    std::fputs(
        (options.json ? summary_json(summary) : summary_text(summary)).c_str(),
        options.output == kStandardStream || options.compare == kStandardStream ? stderr : stdout);
  }
  if (summary.trouble.empty()) return kDone;
  complain(summary.trouble + "; what came before it is in " + summary.output);
  return kBadInput;
}

}  // namespace

int run_denoise(const DenoiseOptions& options, const LibraryCalls& calls) {
  const LibraryLog log(options.log);
  return is_batch(options.inputs, options.output) ? denoise_batch(options, calls)
                                                  : denoise_one(options, calls);
}

}  // namespace tool
