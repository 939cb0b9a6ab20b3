// What a tuning run tells about its result.
#ifndef VOREL_TOOLS_TUNE_REPORT_H_
#define VOREL_TOOLS_TUNE_REPORT_H_

#include <string>

#include "tools/tune/tuner.h"

namespace tool {

// Tables for people: gains per level beside other tunings', per scene, and what was not captured.
[[nodiscard]] std::string report_text(const TuneResult& result);

// The same for programs, with every trial.
[[nodiscard]] std::string report_json(const TuneResult& result);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_REPORT_H_
