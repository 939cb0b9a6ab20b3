// The page of `vorel tune --page`.
#ifndef VOREL_TOOLS_VERBS_TUNE_PAGE_H_
#define VOREL_TOOLS_VERBS_TUNE_PAGE_H_

#include <string>
#include <vector>

#include "tools/report/page.h"
#include "tools/tune/tuner.h"

namespace tool {

// Gains of each level, tuned and held out, the values, and before and after of one capture in the
// middle of the noise indices, which is read again.
[[nodiscard]] Page tune_page(const std::string& name, const TuneResult& result,
                             const std::vector<CaptureSource>& sources,
                             const CaptureSettings& captures);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_TUNE_PAGE_H_
