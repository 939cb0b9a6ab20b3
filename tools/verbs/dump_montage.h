// All planes of a folder of dumps on one picture.
#ifndef VOREL_TOOLS_VERBS_DUMP_MONTAGE_H_
#define VOREL_TOOLS_VERBS_DUMP_MONTAGE_H_

#include <string>
#include <vector>

#include "tools/library/dump_names.h"

namespace tool {

// Each plane with its name, what it is, and the figures of its samples. Damaged dumps have a
// caption only.
void write_montage(const std::string& path, const std::string& directory,
                   const std::vector<DumpFile>& files);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DUMP_MONTAGE_H_
