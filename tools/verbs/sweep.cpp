#include "tools/verbs/sweep.h"

#include <algorithm>
#include <cstdio>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/library/library_log.h"
#include "tools/pictures/colour.h"
#include "tools/report/contact_sheet.h"
#include "tools/tune/frame_trial.h"
#include "tools/tune/parallel.h"
#include "tools/tuning/edit.h"
#include "tools/tuning/frame_values.h"
#include "tools/verbs/result_page.h"
#include "tools/verbs/sweep_results.h"

namespace tool {
namespace {

// A sheet shows no more of a picture unless asked to.
constexpr int kSheetWidth = 480;
constexpr int kSheetHeight = 360;

Nv21Frame read_frame(const std::string& path, const ReadOptions& read, Picture& picture) {
  const std::unique_ptr<PictureInput> input = PictureInput::open(path, read);
  std::optional<Picture> first = input->next();
  if (!first) throw input_error(path, "holds no frame");
  warn_of_losses(path, *first);
  picture = std::move(*first);
  return as_nv21(picture, input->colour());
}

class Sweep {
 public:
  explicit Sweep(const SweepOptions& options)
      : options_(options),
        key_(typed_key(options.key)),
        picture_{RgbImage(0, 0), {}},
        before_(0, 0),
        tuning_(choose_tuning(options.tuning)) {
    for (const std::string& text : options.values) {
      const double value = typed_value(*key_.known, text);
      if (std::find(values_.begin(), values_.end(), value) == values_.end()) {
        values_.push_back(value);
      }
    }
    before_ = read_frame(options.picture, options.read, picture_);
    NoiseIndexRequest request = options.noise_index;
    request.percent = 100;  // values are told apart by all that they do
    NoiseIndexChoice choice(request, options.picture, {{}, options.tuning.sensor, tuning_.text, {}},
                            {});
    noise_index_ = choice.next(picture_, before_).noise_index;
    noise_index_text_ = choice.text();
    if (options.truth) read_truth();
    if (options.crop) check_crop(*options.crop);
  }

  void run() {
    const LoadedTuning loaded(tuning_.text);
    const KnownKey& known = *key_.known;
    const double tuned =
        known.per_level ? loaded.for_frame(known, noise_index_) : loaded.stored(known, key_.index);
    std::vector<double> values = values_;
    if (std::find(values.begin(), values.end(), tuned) == values.end()) {
      values.insert(values.begin(), tuned);
    }
    results_.assign(values.size() + 1, {"", {}, Nv21Frame(0, 0), RgbImage(0, 0), {}, {}, {}});
    const SweepTruth* truth = truth_ ? &*truth_ : nullptr;
    for_each_in_parallel(results_.size(), [&](size_t i) {
      if (i == 0) {
        results_[0] = sweep_result("as it came", std::nullopt, before_, before_, truth);
        return;
      }
      const double value = values[i - 1];
      const bool is_tuned = value == tuned;
      const std::string text =
          is_tuned ? tuning_.text : with_value(tuning_.description, tuning_.text, key_, value);
      results_[i] = sweep_result(stored_text(known, value) + (is_tuned ? ", as tuned" : ""), value,
                                 before_, denoise_with(text, before_, noise_index_), truth);
    });
    warn_of_no_effect(loaded);
  }

  void write_files() const {
    if (options_.csv) write_text_file(*options_.csv, table_csv(table()));
    if (options_.sheet) {
      const std::unique_ptr<PictureOutput> output = PictureOutput::open(*options_.sheet);
      output->write({sheet(), {}});
      output->finish();
    }
    if (options_.page) write_text_file(*options_.page, page_html(page()));
  }

  void print() const {
    std::printf("%s, noise index %s, %s: %s\n%s", options_.picture.c_str(),
                noise_index_text_.c_str(), tuning_.description.c_str(), key_.known->path().c_str(),
                table_text(table()).c_str());
    if (truth_) {
      std::printf("nearest to the truth in chroma: %s\n",
                  results_[best_of(results_)].label.c_str());
    }
    if (options_.sheet) {
      const Crop crop = sheet_crop();
      std::printf("contact sheet of %d,%d,%d,%d in %s\n", crop.x, crop.y, crop.width, crop.height,
                  options_.sheet->c_str());
    }
    if (options_.page) std::printf("page in %s\n", options_.page->c_str());
  }

 private:
  void read_truth() {
    const Picture truth = read_picture(*options_.truth, options_.read);
    const Size size{before_.width, before_.height};
    if (!(truth.size() == size)) {
      throw input_error(*options_.truth, "is " + size_text(truth.size()) + ", but " +
                                             options_.picture + " is " + size_text(size));
    }
    truth_.emplace(as_nv21(truth, before_.colour), as_rgb(truth));
  }

  void check_crop(const Crop& crop) const {
    if (crop.width <= before_.width - crop.x && crop.height <= before_.height - crop.y) return;
    throw usage_error("--crop leaves the picture, which has " +
                      size_text({before_.width, before_.height}) + " pixels");
  }

  void warn_of_no_effect(const LoadedTuning& loaded) const {
    const bool has_effect = std::any_of(
        results_.begin() + 1, results_.end(),
        [&](const SweepResult& result) { return result.frame.data != results_[1].frame.data; });
    if (has_effect) return;
    const int gate = loaded.tuning().enableNoiseIndex;
    warn(key_.known->path() + " changes nothing here: " +
         (noise_index_ < gate
              ? "noise index " + std::to_string(noise_index_) +
                    " is below the tuning's enableNoiseIndex " + std::to_string(gate) +
                    "; -n says another"
              : "all results are the same; its path may be switched off in this tuning"));
  }

  [[nodiscard]] Table table() const { return sweep_table(short_name(*key_.known), results_); }

  [[nodiscard]] Crop sheet_crop() const {
    if (options_.crop) return *options_.crop;
    const int width = std::min(before_.width, kSheetWidth);
    const int height = std::min(before_.height, kSheetHeight);
    return {(before_.width - width) / 2, (before_.height - height) / 2, width, height};
  }

  [[nodiscard]] RgbImage sheet() const {
    const Crop crop = sheet_crop();
    std::vector<Tile> tiles;
    for (const SweepResult& result : results_) {
      tiles.push_back({side_by_side({&result.image}, crop, options_.zoom), sweep_caption(result)});
    }
    if (truth_) tiles.push_back({side_by_side({&truth_->image}, crop, options_.zoom), "truth"});
    return contact_sheet(tiles, {options_.picture + ", noise index " + noise_index_text_ + "\n" +
                                 key_.known->path()});
  }

  [[nodiscard]] RgbImage page_image(const RgbImage& image) const {
    return options_.crop ? side_by_side({&image}, options_.crop, 1) : image;
  }

  [[nodiscard]] Page page() const {
    Page page{.title = "Sweep of " + key_.known->path(),
              .facts = {},
              .pictures = {},
              .tables = {},
              .curves = sweep_curves(short_name(*key_.known), results_)};
    page.facts = {{"picture", options_.picture},
                  {"tuning", tuning_.description},
                  {"noise index", noise_index_text_}};
    for (const SweepResult& result : results_) {
      page.pictures.push_back({result.label, page_image(result.image)});
    }
    page.right = best_of(results_);
    if (truth_) {
      page.facts.push_back({"truth", *options_.truth});
      page.reference = page.pictures.size();
      page.pictures.push_back({"truth", page_image(truth_->image)});
    }
    page.tables = {table()};
    page.tables.front().title = "Figures of each value";
    return page;
  }

  const SweepOptions& options_;
  TypedKey key_;
  std::vector<double> values_;
  Picture picture_;
  Nv21Frame before_;
  TuningChoice tuning_;
  int noise_index_ = 0;
  std::string noise_index_text_;
  std::optional<SweepTruth> truth_;
  std::vector<SweepResult> results_;  // the picture as it came first
};

void check_files(const SweepOptions& options) {
  std::vector<std::string> outputs;
  for (const auto& output : {options.sheet, options.csv, options.page}) {
    if (output) outputs.push_back(*output);
  }
  if (options.sheet == kStandardStream) {
    throw usage_error("the figures go to standard output; give the contact sheet a file");
  }
  std::vector<std::string> inputs{options.picture};
  if (options.truth) inputs.push_back(*options.truth);
  if (options.tuning.name) inputs.push_back(*options.tuning.name);
  check_outputs(outputs, inputs, options.force);
}

}  // namespace

void run_sweep(const SweepOptions& options) {
  check_files(options);
  const LibraryLog log(LogLevel::kWarning);
  Sweep sweep(options);
  sweep.run();
  sweep.write_files();
  if (!options.quiet && options.csv != kStandardStream) sweep.print();
}

}  // namespace tool
