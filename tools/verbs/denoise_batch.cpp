#include "tools/verbs/denoise_batch.h"

#include <jansson.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <thread>

#include "tools/files/failure.h"
#include "tools/files/json_text.h"
#include "tools/files/printable.h"
#include "tools/verbs/batch_names.h"
#include "tools/verbs/denoise_run.h"
#include "tools/verbs/memory_budget.h"
#include "tools/verbs/progress_bar.h"

namespace tool {
namespace {

// Files that are being written, at most: their names stand in a table of fixed size.
constexpr unsigned kMostJobs = 64;

void make_folder_of(const std::string& file) {
  const std::filesystem::path folder = std::filesystem::path(file).parent_path();
  std::error_code error;
  if (!folder.empty()) std::filesystem::create_directories(folder, error);
  if (error) throw output_error(folder.string(), "cannot be made: " + error.message());
}

class DenoiseBatch {
 public:
  DenoiseBatch(const DenoiseOptions& options, const LibraryCalls& calls)
      : options_(options),
        calls_(calls),
        items_(plan_batch(options.inputs, options.output)),
        tuning_(choose_tuning(options.tuning)),
        progress_("picture", static_cast<int>(items_.size())),
        pictures_(json_array()) {}
  ~DenoiseBatch() { json_decref(pictures_); }
  DenoiseBatch(const DenoiseBatch&) = delete;
  DenoiseBatch& operator=(const DenoiseBatch&) = delete;

  int run() {
    const auto wanted = static_cast<size_t>(
        options_.jobs.value_or(static_cast<int>(std::thread::hardware_concurrency())));
    const size_t jobs = std::clamp<size_t>(std::min(wanted, items_.size()), 1, kMostJobs);
    {
      std::vector<std::jthread> others;
      for (size_t i = 1; i < jobs; ++i) others.emplace_back([this] { work(); });
      work();
    }
    progress_.clear();
    if (!options_.quiet) print_total();
    return status_;
  }

 private:
  void work() {
    for (size_t i = next_++; i < items_.size(); i = next_++) {
      try {
        process(items_[i]);
      } catch (const Failure& failure) {
        fail(items_[i], failure.status(), failure.what());
      } catch (const std::bad_alloc&) {
        fail(items_[i], kFailed, items_[i].input + ": out of memory");
      } catch (const std::exception& error) {
        fail(items_[i], kFailed, items_[i].input + ": " + error.what());
      }
      progress_.advance();
    }
  }

  void process(const BatchItem& item) {
    std::error_code error;
    if (!options_.force && std::filesystem::exists(item.output, error)) {
      throw usage_error(item.output + ": exists and is kept; --force replaces it");
    }
    const MemoryBudget::Share share = budget_.take(memory_for(item.input, options_.read));
    make_folder_of(item.output);
    const DenoiseSummary summary = denoise_file(options_, item.input, item.output, tuning_, calls_);
    if (!summary.trouble.empty()) {
      fail(item, kBadInput, summary.trouble + "; what came before it is in " + item.output);
      return;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    ++done_;
    if (options_.json) json_array_append_new(pictures_, summary_object(summary));
    // The bar says enough on a terminal.
    if (options_.quiet || options_.json || progress_.is_shown()) return;
    std::printf("%s\n", printable(summary_line(summary)).c_str());
    std::fflush(stdout);
  }

  void fail(const BatchItem& item, int status, const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    progress_.clear();
    complain(text);
    status_ = std::max(status_, status);
    if (!options_.json) return;
    json_t* entry = json_object();
    json_object_set_new(entry, "input", json_text(item.input));
    json_object_set_new(entry, "output", json_text(item.output));
    json_object_set_new(entry, "error", json_text(text));
    json_array_append_new(pictures_, entry);
  }

  void print_total() const {
    if (options_.json) {
      std::fputs(json_lines(json_pack("{sOsIsI}", "pictures", pictures_, "done",
                                      static_cast<json_int_t>(done_), "failed",
                                      static_cast<json_int_t>(items_.size() - done_)))
                     .c_str(),
                 stdout);
      return;
    }
    const size_t failed = items_.size() - done_;
    std::printf("%zu picture%s done", done_, done_ == 1 ? "" : "s");
    if (failed > 0) std::printf(", %zu of %zu not", failed, items_.size());
    std::printf("\n");
  }

  const DenoiseOptions& options_;
  LibraryCalls calls_;
  std::vector<BatchItem> items_;
  TuningChoice tuning_;
  MemoryBudget budget_;
  ProgressBar progress_;
  std::atomic<size_t> next_{0};
  std::mutex mutex_;  // of all below
  size_t done_ = 0;
  int status_ = kDone;
  json_t* pictures_;
};

}  // namespace

int denoise_batch(const DenoiseOptions& options, const LibraryCalls& calls) {
  for (const auto& [name, given] : {std::pair("--compare", options.compare.has_value()),
                                    std::pair("--truth", options.truth.has_value()),
                                    std::pair("--page", options.page.has_value()),
                                    std::pair("--dump", options.dump.has_value()),
                                    std::pair("--trace", options.trace.has_value())}) {
    if (given) throw usage_error(std::string(name) + " is about one picture or video");
  }
  return DenoiseBatch(options, calls).run();
}

}  // namespace tool
