// What is wrong with a tuning file, and where.
#ifndef VOREL_TOOLS_TUNING_FINDING_H_
#define VOREL_TOOLS_TUNING_FINDING_H_

#include <string>
#include <utility>
#include <vector>

#include "tools/tuning/json_places.h"

namespace tool {

struct Finding {
  bool is_error;       // the library reads something else than is written, or ruins frames
  bool is_whole_file;  // the library reads nothing of it
  TextPlace place;
  std::string path;         // "interleaving_tuning.d_UV_thresh_table[3]"; empty for the file
  std::string what;         // what is found there
  std::string consequence;  // what comes of it

  [[nodiscard]] std::string text() const {
    return (path.empty() ? "" : path + ": ") + what + "; " + consequence;
  }
  // "file.json:3:7", as compilers write it.
  [[nodiscard]] std::string where(const std::string& file) const {
    return file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
  }
};

enum class Severity { kWarning, kError, kWholeFile };

// Collects findings about one text.
class FindingList {
 public:
  explicit FindingList(const std::string& text) : text_(text) {}

  // Keeps the order of the text.
  void add(Severity severity, size_t offset, std::string path, std::string what,
           std::string consequence);
  void error(size_t offset, std::string path, std::string what, std::string consequence) {
    add(Severity::kError, offset, std::move(path), std::move(what), std::move(consequence));
  }
  void warning(size_t offset, std::string path, std::string what, std::string consequence) {
    add(Severity::kWarning, offset, std::move(path), std::move(what), std::move(consequence));
  }

  [[nodiscard]] std::vector<Finding> take() { return std::move(findings_); }

 private:
  const std::string& text_;
  std::vector<Finding> findings_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_FINDING_H_
