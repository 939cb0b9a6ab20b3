#include "tools/verbs/denoise_run.h"

#include <cmath>
#include <cstdio>
#include <exception>
#include <thread>

#include "tools/files/bounded_queue.h"
#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/measure/partial_removal.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/side_by_side.h"
#include "tools/verbs/progress_bar.h"
#include "tools/verbs/result_page.h"

namespace tool {
namespace {

// Frames that wait for the library, and for being written.
constexpr size_t kReadAhead = 2;
constexpr size_t kWriteBehind = 2;

// A frame on its way.
struct Frame {
  Picture picture;
  Nv21Frame before;
  Nv21Frame after;
  Strength strength;
  bool unchanged = false;
};

class DenoiseRun {
 public:
  DenoiseRun(const DenoiseOptions& options, const std::string& input, const std::string& output,
             const TuningChoice& tuning, const LibraryCalls& calls)
      : options_(options),
        calls_(calls),
        input_name_(input),
        input_(PictureInput::open(input, options.read)),
        tuning_(tuning),
        noise_index_(options.noise_index, input, {{}, options.tuning.sensor, tuning.text, {}},
                     calls) {
    if (options_.truth) truth_ = read_picture(*options_.truth, options_.read);
    std::optional<Layout> layout = options_.read.layout;
    if (!layout && output == kStandardStream) layout = input_->layout();
    output_ = PictureOutput::open(output, {options_.quality, layout, input_->kind()});
    if (options_.compare) compare_ = PictureOutput::open(*options_.compare);
    summary_.input = input == kStandardStream ? "standard input" : input;
    summary_.output = output == kStandardStream ? "standard output" : output;
  }

  DenoiseSummary run() {
    {
      ProgressBar progress("frame", input_->expected_frames());
      progress_ = &progress;
      std::jthread reader([this] { read(); });
      std::jthread writer([this] { write(); });
      work();
    }
    rethrow_failures();
    if (summary_.frames == 0) throw input_error(input_name_, "holds no frame");
    output_->finish();
    if (compare_) compare_->finish();
    fill_names();
    warn_of_dumps();
    return std::move(summary_);
  }

 private:
  // The three steps of a frame, each in a thread of its own and in the order of the frames. A step
  // that fails closes the queues on both sides of it, which ends the others.
  void read() {
    try {
      while (std::optional<Picture> picture = input_->next()) {
        Nv21Frame before = as_nv21(*picture, input_->colour());
        const Strength strength = noise_index_.next(*picture, before);
        Nv21Frame after = before;
        if (!to_work_.push({std::move(*picture), std::move(before), std::move(after), strength})) {
          break;
        }
      }
    } catch (...) {
      read_failure_ = std::current_exception();
    }
    to_work_.close();
  }

  void work() {
    try {
      while (std::optional<Frame> frame = to_work_.pop()) {
        process(*frame);
        if (!to_write_.push(std::move(*frame))) break;
      }
    } catch (...) {
      work_failure_ = std::current_exception();
    }
    to_work_.close();
    to_write_.close();
  }

  void write() {
    try {
      while (std::optional<Frame> frame = to_write_.pop()) {
        summary_.change.add(frame->before, frame->after);
        if (frame->unchanged) {
          output_->write_unchanged(frame->picture);
        } else {
          frame->picture.pixels = std::move(frame->after);
          output_->write(frame->picture);
        }
        progress_->advance();
      }
    } catch (...) {
      write_failure_ = std::current_exception();
    }
    to_write_.close();
  }

  void rethrow_failures() {
    if (work_failure_) std::rethrow_exception(work_failure_);
    if (write_failure_) std::rethrow_exception(write_failure_);
    if (!read_failure_) return;
    try {
      std::rethrow_exception(read_failure_);
    } catch (const Failure& failure) {
      if (summary_.frames == 0 || failure.status() != kBadInput) throw;
      summary_.trouble = failure.what();
    }
  }

  void process(Frame& frame) {
    const Size size{frame.before.width, frame.before.height};
    if (!engine_) start(size);
    const vorel_frame_info report =
        engine_->process(frame.after, options_.separate_planes, frame.strength.noise_index);
    if (frame.strength.percent < 100) keep_part(frame);
    ++summary_.frames;
    summary_.strength = frame.strength;
    summary_.milliseconds += static_cast<double>(report.total_usec) / 1000.0;
    if (report.dumps_failed > dump_trouble_.dumps_failed) dump_trouble_ = report;
    if (report.status == VOREL_BELOW_GATE) {
      ++summary_.skipped_frames;
      summary_.enable_noise_index = report.enable_noise_index;
    }
    frame.unchanged = report.status == VOREL_BELOW_GATE || frame.after.data == frame.before.data;
    if (summary_.frames == 1 && (compare_ || truth_ || options_.page)) compare(frame);
  }

  static void keep_part(Frame& frame) {
    const auto stride = static_cast<size_t>(frame.after.chroma_stride());
    keep_part_of_change(
        frame.before.vu(), stride, frame.strength.percent,
        {frame.after.vu(), stride, stride, static_cast<size_t>(frame.after.chroma_height())});
  }

  void start(Size size) {
    summary_.size = size;
    if (truth_ && !(truth_->size() == size)) {
      throw input_error(*options_.truth, "is " + size_text(truth_->size()) + ", but " +
                                             input_name_ + " is " + size_text(size));
    }
    engine_ = std::make_unique<Engine>(
        EngineSettings{size, options_.tuning.sensor, tuning_.text, options_.dump.value_or("")},
        calls_);
  }

  // Measures the frames themselves; what a file makes of them (RGB that clips, JPEG) is not the
  // library's doing.
  void compare(const Frame& frame) {
    RgbImage rgb_before = as_rgb(frame.picture);
    RgbImage rgb_after = frame.unchanged ? rgb_before : nv21_to_rgb(frame.after);
    std::vector<const RgbImage*> images{&rgb_before, &rgb_after};
    std::optional<RgbImage> rgb_truth;
    if (truth_) {
      rgb_truth = as_rgb(*truth_);
      images.push_back(&*rgb_truth);
      const Nv21Frame truth = as_nv21(*truth_, frame.before.colour);
      // Both sides make the same way to RGB.
      const RgbImage rgb_frame = nv21_to_rgb(frame.before);
      summary_.distances = {{"before", {}}, {"after", {}}};
      summary_.distances[0].distance.add(frame.before, rgb_frame, truth, *rgb_truth);
      summary_.distances[1].distance.add(frame.after, nv21_to_rgb(frame.after), truth, *rgb_truth);
      if (options_.page) {
        summary_.curves = {nearness_curves("the truth", truth,
                                           {{"before", &frame.before}, {"after", &frame.after}})};
      }
    }
    if (compare_) compare_->write({side_by_side(images, std::nullopt, 1), {}});
    if (!options_.page) return;
    summary_.pictures.push_back({"before", std::move(rgb_before)});
    summary_.pictures.push_back({"after", std::move(rgb_after)});
    if (rgb_truth) summary_.pictures.push_back({"truth", std::move(*rgb_truth)});
  }

  // The frames themselves are fine.
  void warn_of_dumps() const {
    if (dump_trouble_.dumps_failed == 0) return;
    warn(std::to_string(dump_trouble_.dumps_failed) + " of a frame's " +
         std::to_string(dump_trouble_.dumps_failed + dump_trouble_.dumps_written) +
         " dumps could not be written to " +
         (summary_.dumps.empty() ? options_.dump.value_or("the dump folder") : summary_.dumps) +
         ": " + errno_text(dump_trouble_.dumps_error));
  }

  void fill_names() {
    summary_.tuning = tuning_.description;
    const std::string date = engine_->info().tuning_date;
    if (!tuning_.is_built_in) {
      summary_.tuning_date = date.empty() ? "without a date" : "dated " + date;
    }
    summary_.sensor = std::to_string(options_.tuning.sensor) +
                      (tuning_.model.empty() ? "" : " (" + tuning_.model + ")");
    summary_.noise_index_text = noise_index_.text();
    summary_.compare = options_.compare.value_or("");
    summary_.page = options_.page.value_or("");
    summary_.truth = options_.truth.value_or("");
    summary_.dumps = engine_->info().dump_path;
  }

  const DenoiseOptions& options_;
  LibraryCalls calls_;
  std::string input_name_;
  std::unique_ptr<PictureInput> input_;
  const TuningChoice& tuning_;
  NoiseIndexChoice noise_index_;
  std::optional<Picture> truth_;
  std::unique_ptr<PictureOutput> output_;
  std::unique_ptr<PictureOutput> compare_;
  std::unique_ptr<Engine> engine_;
  BoundedQueue<Frame> to_work_{kReadAhead};
  BoundedQueue<Frame> to_write_{kWriteBehind};
  std::exception_ptr read_failure_;
  std::exception_ptr work_failure_;
  std::exception_ptr write_failure_;
  ProgressBar* progress_ = nullptr;
  vorel_frame_info dump_trouble_{};  // of the frame that lost most dumps
  DenoiseSummary summary_;  // `change` is the writer's until it has ended, the rest the worker's
};

// A tint, not noise: the noise of a picture hardly has a mean.
void warn_of_tint(const DenoiseSummary& summary) {
  const ChangeCount::Shift shift = summary.change.chroma_shift();
  if (std::abs(shift.u) <= kMostChromaShift && std::abs(shift.v) <= kMostChromaShift) return;
  char text[96];
  std::snprintf(text, sizeof(text), "mean chroma moved by %+.1f (U) and %+.1f (V)", shift.u,
                shift.v);
  warn(summary.output + ": " + text +
       ", more than removing noise can; the tuning's thresholds are probably too high");
}

}  // namespace

DenoiseSummary denoise_file(const DenoiseOptions& options, const std::string& input,
                            const std::string& output, const TuningChoice& tuning,
                            const LibraryCalls& calls) {
  DenoiseSummary summary = DenoiseRun(options, input, output, tuning, calls).run();
  warn_of_tint(summary);
  return summary;
}

}  // namespace tool
