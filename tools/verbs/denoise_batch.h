// `vorel denoise` over several pictures.
#ifndef VOREL_TOOLS_VERBS_DENOISE_BATCH_H_
#define VOREL_TOOLS_VERBS_DENOISE_BATCH_H_

#include "tools/verbs/denoise.h"

namespace tool {

// Several pictures at a time, each with a handle of its own. Pictures that fail are told and do not
// stop the others; outputs that exist are kept without `force`. Returns the highest exit status of
// all.
[[nodiscard]] int denoise_batch(const DenoiseOptions& options, const LibraryCalls& calls);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DENOISE_BATCH_H_
