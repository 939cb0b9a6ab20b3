// The page of `vorel denoise --page`.
#ifndef VOREL_TOOLS_VERBS_DENOISE_PAGE_H_
#define VOREL_TOOLS_VERBS_DENOISE_PAGE_H_

#include "tools/report/page.h"
#include "tools/verbs/denoise_summary.h"

namespace tool {

// `tuning_text` is what the library got. Takes the summary's pictures.
[[nodiscard]] Page denoise_page(DenoiseSummary& summary, const std::string& tuning_text);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DENOISE_PAGE_H_
