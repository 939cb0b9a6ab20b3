#include "tools/verbs/denoise.h"

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "tools/files/failure.h"
#include "tools/files/printable.h"
#include "tools/library/trace_file.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/side_by_side.h"
#include "tools/verbs/denoise_summary.h"

namespace tool {
namespace {

// A line on the terminal that counts frames; nothing when standard error goes elsewhere.
class Progress {
 public:
  explicit Progress(std::optional<int> total) : total_(total), shown_(isatty(STDERR_FILENO) != 0) {
    if (total_ == 1) shown_ = false;
  }
  ~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(int frame) const {
    if (!shown_) return;
    std::fprintf(stderr, "\rframe %d", frame);
    if (total_) std::fprintf(stderr, " of %d", *total_);
    std::fflush(stderr);
  }

 private:
  std::optional<int> total_;
  bool shown_;
};

// Asks the library for all its dumps, below an existing or new directory.
void request_dumps(const std::string& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw output_error(directory, "cannot be made: " + error.message());
  setenv("VOREL_DUMP_DIR", directory.c_str(), 1);
  setenv("PERSIST_VENDOR_LIBVOREL_DEBUG", "5", 1);
}

class DenoiseRun {
 public:
  DenoiseRun(const DenoiseOptions& options, const LibraryCalls& calls)
      : options_(options),
        calls_(calls),
        log_(options.log),
        input_(PictureInput::open(options.input, options.read)),
        tuning_(choose_tuning(options.tuning)),
        noise_index_(options.noise_index, options.input, calibration_for(tuning_.text)) {
    if (options_.truth) truth_ = read_picture(*options_.truth, options_.read);
    output_ =
        PictureOutput::open(options_.output, {options_.quality, input_->layout(), input_->kind()});
    if (options_.compare) compare_ = PictureOutput::open(*options_.compare);
    if (options_.dump) request_dumps(*options_.dump);
    if (options_.trace) trace_.emplace(*options_.trace);
  }

  DenoiseSummary run() {
    {
      const Progress progress(input_->expected_frames());
      while (std::optional<Picture> picture = input_->next()) {
        progress.show(summary_.frames + 1);
        process(std::move(*picture));
      }
    }
    if (summary_.frames == 0) throw input_error(options_.input, "holds no frame");
    output_->finish();
    if (compare_) compare_->finish();
    if (trace_) trace_->finish();
    fill_names();
    warn_of_dumps();
    return std::move(summary_);
  }

 private:
  void process(Picture picture) {
    const Nv21Frame before = as_nv21(picture, input_->colour());
    if (!engine_) start({before.width, before.height});

    Nv21Frame after = before;
    const int noise_index = noise_index_.next(picture, before);
    const vorel_frame_info report = engine_->process(after, options_.separate_planes, noise_index);
    const bool skipped = report.status == VOREL_BELOW_GATE;

    if (report.dumps_failed > dump_trouble_.dumps_failed) dump_trouble_ = report;
    ++summary_.frames;
    summary_.milliseconds += static_cast<double>(report.total_usec) / 1000.0;
    summary_.change.add(before, after);
    if (skipped) {
      ++summary_.skipped_frames;
      summary_.noise_index = noise_index;
      summary_.enable_noise_index = report.enable_noise_index;
    }
    if (summary_.frames == 1 && (compare_ || truth_)) compare(picture, before, after);
    // A picture that was not processed is written as it came, without a detour over YUV.
    if (!skipped) picture.pixels = after;
    output_->write(picture);
  }

  void start(Size size) {
    summary_.size = size;
    if (truth_ && !(truth_->size() == size)) {
      throw input_error(*options_.truth, "is " + size_text(truth_->size()) + ", but " +
                                             options_.input + " is " + size_text(size));
    }
    engine_ = std::make_unique<Engine>(EngineSettings{size, options_.tuning.sensor, tuning_.text},
                                       calls_);
  }

  // The frame as a reader of the output will see it: through a PNG file chroma makes a round trip
  // over RGB.
  Nv21Frame as_written(const Nv21Frame& after, const RgbImage& rgb_after) const {
    const bool through_rgb = kind_of_name(options_.output) == FileKind::kPng;
    if (!through_rgb || after.colour.matrix != Matrix::kBt601) return after;
    return rgb_to_nv21(rgb_after, after.colour);
  }

  void compare(const Picture& picture, const Nv21Frame& before, const Nv21Frame& after) {
    const RgbImage rgb_before = as_rgb(picture);
    const RgbImage rgb_after = nv21_to_rgb(after);
    std::vector<const RgbImage*> images{&rgb_before, &rgb_after};
    std::optional<RgbImage> rgb_truth;
    if (truth_) {
      rgb_truth = as_rgb(*truth_);
      images.push_back(&*rgb_truth);
      const Nv21Frame truth = as_nv21(*truth_, before.colour);
      summary_.distances = {{"before", {}}, {"after", {}}};
      summary_.distances[0].distance.add(before, rgb_before, truth, *rgb_truth);
      summary_.distances[1].distance.add(as_written(after, rgb_after), rgb_after, truth,
                                         *rgb_truth);
    }
    if (compare_) compare_->write({side_by_side(images, std::nullopt, 1), {}});
  }

  // The frames themselves are fine.
  void warn_of_dumps() const {
    if (dump_trouble_.dumps_failed == 0) return;
    const std::string folder = engine_->info().dump_path;
    std::fprintf(
        stderr, "vorel: warning: %d of a frame's %d dumps could not be written to %s: %s\n",
        dump_trouble_.dumps_failed, dump_trouble_.dumps_failed + dump_trouble_.dumps_written,
        printable(folder.empty() ? *options_.dump : folder).c_str(),
        std::generic_category().message(dump_trouble_.dumps_error).c_str());
  }

  void fill_names() {
    summary_.input = options_.input;
    summary_.output = options_.output;
    summary_.tuning = tuning_.description;
    const std::string date = engine_->info().tuning_date;
    if (!tuning_.is_built_in) {
      summary_.tuning_date = date.empty() ? "without a date" : "dated " + date;
    }
    summary_.sensor = std::to_string(options_.tuning.sensor) +
                      (tuning_.model.empty() ? "" : " (" + tuning_.model + ")");
    summary_.noise_index_text = noise_index_.text();
    summary_.compare = options_.compare.value_or("");
    summary_.truth = options_.truth.value_or("");
    summary_.dumps = engine_->info().dump_path;
  }

  const DenoiseOptions& options_;
  LibraryCalls calls_;
  LibraryLog log_;
  std::unique_ptr<PictureInput> input_;
  TuningChoice tuning_;
  NoiseIndexChoice noise_index_;
  std::optional<Picture> truth_;
  std::unique_ptr<PictureOutput> output_;
  std::unique_ptr<PictureOutput> compare_;
  std::optional<TraceFile> trace_;
  std::unique_ptr<Engine> engine_;
  vorel_frame_info dump_trouble_{};  // of the frame that lost most dumps
  DenoiseSummary summary_;
};

}  // namespace

void run_denoise(const DenoiseOptions& options, const LibraryCalls& calls) {
  std::vector<std::string> outputs{options.output};
  if (options.compare) outputs.push_back(*options.compare);
  if (options.trace) outputs.push_back(*options.trace);
  std::vector<std::string> inputs{options.input};
  if (options.truth) inputs.push_back(*options.truth);
  if (options.tuning.name) inputs.push_back(*options.tuning.name);
  check_outputs(outputs, inputs, options.force);

  const DenoiseSummary summary = DenoiseRun(options, calls).run();
  if (!options.quiet) std::fputs(summary_text(summary).c_str(), stdout);
}

}  // namespace tool
