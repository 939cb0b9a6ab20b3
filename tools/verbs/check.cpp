#include "tools/verbs/check.h"

#include <algorithm>
#include <cstdio>

#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/tuning/findings.h"

namespace tool {
namespace {

std::string count_text(size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

struct Counts {
  size_t errors = 0;
  size_t warnings = 0;
};

Counts check_file(const std::string& path) {
  const std::vector<Finding> findings = check_tuning_text(read_text_file(path));
  for (const Finding& finding : findings) {
    std::printf("%s: %s: %s\n", path.c_str(), finding.is_error ? "error" : "warning",
                finding.text.c_str());
  }
  const auto errors = static_cast<size_t>(std::count_if(
      findings.begin(), findings.end(), [](const Finding& finding) { return finding.is_error; }));
  if (findings.empty()) std::printf("%s: ok\n", path.c_str());
  return {errors, findings.size() - errors};
}

}  // namespace

int run_check(const std::vector<std::string>& paths, bool strict) {
  Counts total;
  for (const std::string& path : paths) {
    try {
      const Counts counts = check_file(path);
      total.errors += counts.errors;
      total.warnings += counts.warnings;
    } catch (const Failure& failure) {
      std::printf("%s\n", failure.what());
      ++total.errors;
    }
  }
  if (total.errors + total.warnings > 0) {
    std::printf("%s, %s\n", count_text(total.errors, "error").c_str(),
                count_text(total.warnings, "warning").c_str());
  }
  const bool failed = total.errors > 0 || (strict && total.warnings > 0);
  return failed ? kBadInput : kDone;
}

}  // namespace tool
