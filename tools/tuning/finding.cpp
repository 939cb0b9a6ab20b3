#include "tools/tuning/finding.h"

#include <algorithm>

namespace tool {

void FindingList::add(Severity severity, size_t offset, std::string path, std::string what,
                      std::string consequence) {
  Finding finding{severity != Severity::kWarning,
                  severity == Severity::kWholeFile,
                  place_of(text_, offset),
                  std::move(path),
                  std::move(what),
                  std::move(consequence)};
  const auto is_before = [](const Finding& a, const Finding& b) {
    return std::pair(a.place.line, a.place.column) < std::pair(b.place.line, b.place.column);
  };
  const auto at = std::upper_bound(findings_.begin(), findings_.end(), finding, is_before);
  findings_.insert(at, std::move(finding));
}

}  // namespace tool
