// What `vorel denoise` tells about a run.
#ifndef VOREL_TOOLS_VERBS_DENOISE_SUMMARY_H_
#define VOREL_TOOLS_VERBS_DENOISE_SUMMARY_H_

#include <jansson.h>

#include <string>
#include <vector>

#include "tools/measure/distance_table.h"
#include "tools/measure/metrics.h"
#include "tools/measure/noise_index.h"
#include "tools/pictures/picture.h"
#include "tools/report/page.h"

namespace tool {

struct DenoiseSummary {
  std::string input;
  std::string output;
  std::string tuning;       // where it came from
  std::string tuning_date;  // empty when not known
  std::string sensor;
  std::string noise_index_text;
  Size size{};
  int frames = 0;
  int skipped_frames = 0;
  Strength strength;           // of the last frame
  int enable_noise_index = 0;  // of the tuning, when frames were skipped
  double milliseconds = 0.0;   // of all frames
  ChangeCount change;
  std::string compare;                   // empty when not asked for
  std::string page;                      // likewise
  std::string truth;                     // empty when not given
  std::vector<NamedDistance> distances;  // before and after, from the truth
  std::vector<PagePicture> pictures;     // of the first frame, when a page is asked for
  std::vector<PageCurves> curves;        // likewise
  std::string dumps;                     // directory, empty without dumps
  std::string trouble;                   // what ended a video early; empty when nothing did
};

// Several lines for people.
[[nodiscard]] std::string summary_text(const DenoiseSummary& summary);
// One line, for one of many pictures; no line end.
[[nodiscard]] std::string summary_line(const DenoiseSummary& summary);
// For programs: a new object, or its text.
[[nodiscard]] json_t* summary_object(const DenoiseSummary& summary);
[[nodiscard]] std::string summary_json(const DenoiseSummary& summary);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DENOISE_SUMMARY_H_
