// What `vorel dump` tells about planes and pixels.
#ifndef VOREL_TOOLS_VERBS_DUMP_REPORT_H_
#define VOREL_TOOLS_VERBS_DUMP_REPORT_H_

#include <string>
#include <vector>

#include "tools/library/dump_trace.h"

namespace tool {

// A line per step, then one per stage. Ends with a line end.
[[nodiscard]] std::string trace_table(const DumpTrace& trace);
[[nodiscard]] std::string trace_json(const DumpTrace& trace);

// The dumps with the figures of their planes.
[[nodiscard]] std::string list_json(const std::string& directory,
                                    const std::vector<DumpFile>& files);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DUMP_REPORT_H_
