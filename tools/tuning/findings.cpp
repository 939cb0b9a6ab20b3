#include "tools/tuning/findings.h"

#include <jansson.h>

#include "tuning/check.h"

namespace tool {
namespace {

void collect(const tuning_finding& finding, void* context) {
  const std::string path = finding.path;
  static_cast<std::vector<Finding>*>(context)->push_back(
      {finding.is_error, finding.is_error && path.starts_with("root"),
       path + ": " + finding.what + "; " + finding.consequence});
}

}  // namespace

std::vector<Finding> check_tuning_text(const std::string& text) {
  std::vector<Finding> findings;
  json_error_t error;
  // As the library reads it: what follows the first value does not matter.
  json_t* root = json_loads(text.c_str(), JSON_DISABLE_EOF_CHECK, &error);
  if (root == nullptr) {
    findings.push_back(
        {true, true,
         "line " + std::to_string(error.line) + ": " + error.text + "; the whole file is ignored"});
    return findings;
  }
  check_tuning(root, collect, &findings);
  json_decref(root);
  return findings;
}

}  // namespace tool
