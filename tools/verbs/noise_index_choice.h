// Where the noise index of a file's frames comes from.
#ifndef VOREL_TOOLS_VERBS_NOISE_INDEX_CHOICE_H_
#define VOREL_TOOLS_VERBS_NOISE_INDEX_CHOICE_H_

#include <optional>
#include <string>

#include "tools/library/engine.h"
#include "tools/measure/noise_index.h"
#include "tools/pictures/picture.h"

namespace tool {

struct NoiseIndexRequest {
  enum class Source { kEstimate, kExif, kNumber };
  Source source = Source::kEstimate;
  int number = 0;
  std::optional<int> percent{};  // of the change that is kept; nothing: as estimated, else all
};

// The calibration of a tuning's text, or the sample's.
[[nodiscard]] NoiseCalibration calibration_for(const std::string& tuning_text);

// For one file: a picture or the frames of a video, in order.
class NoiseIndexChoice {
 public:
  // Trials are run with these settings and calls.
  NoiseIndexChoice(const NoiseIndexRequest& request, std::string path, EngineSettings settings,
                   const LibraryCalls& calls)
      : request_(request),
        path_(std::move(path)),
        settings_(std::move(settings)),
        calls_(calls),
        tracker_(calibration_for(settings_.tuning)) {}

  // `frame` holds the picture's pixels. Frames that nothing can be told about get index 0. Throws
  // an input error when Exif's number is asked for and missing.
  Strength next(const Picture& picture, const Nv21Frame& frame);

  // For the user: the index and, unless it is all, the percentage that is kept, or least and
  // largest of both, and where they come from.
  [[nodiscard]] std::string text() const;

 private:
  Strength choose(const Nv21Frame& frame);

  NoiseIndexRequest request_;
  std::string path_;
  EngineSettings settings_;
  LibraryCalls calls_;
  NoiseIndexTracker tracker_;
  std::optional<int> iso_;  // of the first picture
  int frames_ = 0;
  Strength least_;
  Strength most_;
  bool estimated_ = false;
};

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_NOISE_INDEX_CHOICE_H_
