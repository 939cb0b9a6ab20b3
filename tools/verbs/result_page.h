// What the pages of several verbs have in common.
#ifndef VOREL_TOOLS_VERBS_RESULT_PAGE_H_
#define VOREL_TOOLS_VERBS_RESULT_PAGE_H_

#include <string>
#include <vector>

#include "tools/measure/distance_table.h"
#include "tools/pictures/picture.h"
#include "tools/report/page.h"

namespace tool {

void write_text_file(const std::string& path, const std::string& text);

// The figures that `vorel compare` prints, a row for each picture.
[[nodiscard]] Table distance_figures(const std::string& reference,
                                     const std::vector<NamedDistance>& pictures);

struct NamedFrame {
  std::string name;
  const Nv21Frame* frame;
};
// How many chroma samples are how near to the reference's.
[[nodiscard]] PageCurves nearness_curves(const std::string& reference_name,
                                         const Nv21Frame& reference,
                                         const std::vector<NamedFrame>& frames);

// The wavelet path's thresholds over the noise index, as the library takes them from a tuning.
[[nodiscard]] PageCurves strength_curves(const std::string& tuning_text);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_RESULT_PAGE_H_
