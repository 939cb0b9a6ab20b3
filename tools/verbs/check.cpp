#include "tools/verbs/check.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "tools/files/atomic_file.h"
#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/files/printable.h"
#include "tools/tuning/check.h"
#include "tools/tuning/json.h"
#include "tools/tuning/lost_points.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

std::string count_text(size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

struct CheckedFile {
  std::string path;
  std::vector<Finding> findings = {};
  std::string failure = {};  // why there are none: the file could not be read or written
  std::string backup = {};   // of the file before its points were written
  size_t points = 0;

  [[nodiscard]] size_t errors() const {
    const auto found = std::count_if(findings.begin(), findings.end(),
                                     [](const Finding& finding) { return finding.is_error; });
    return static_cast<size_t>(found) + (failure.empty() ? 0 : 1);
  }
  [[nodiscard]] size_t warnings() const {
    return findings.size() + (failure.empty() ? 0 : 1) - errors();
  }
};

// The files that an argument means. A folder's are its *.json files, in order.
std::vector<std::string> files_of(const std::string& path) {
  std::error_code error;
  if (!fs::is_directory(path, error)) return {path};
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(path, error)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path().string());
  }
  if (error) throw input_error(path, error.message());
  if (files.empty()) throw input_error(path, "holds no .json file");
  std::sort(files.begin(), files.end());
  return files;
}

// Copies the file to the first free name beside it; a copy that is cut short leaves nothing.
std::string back_up(const std::string& path) {
  std::string backup = path + ".bak";
  for (int i = 1; fs::exists(fs::symlink_status(backup)); ++i) {
    backup = path + ".bak" + std::to_string(i);
  }
  const std::string text = read_text_file(path);
  AtomicFile copy(backup);
  copy.write(text);
  copy.commit();
  return backup;
}

void fix(CheckedFile& file, std::string& text) {
  const FixedText fixed = write_points(text);
  if (fixed.points == 0) return;
  AtomicFile output(file.path);
  output.write(fixed.text);
  file.backup = back_up(file.path);
  output.commit();
  file.points = fixed.points;
  text = fixed.text;
}

void print_line(const std::string& line) { std::printf("%s\n", printable(line).c_str()); }

void print_text(const CheckedFile& file) {
  if (file.points > 0) {
    print_line(file.path + ": " + count_text(file.points, "decimal point") +
               " written; the file as it was is " + file.backup);
  }
  for (const Finding& finding : file.findings) {
    print_line(finding.where(file.path) + (finding.is_error ? ": error: " : ": warning: ") +
               finding.text());
  }
  if (!file.failure.empty()) {
    print_line(file.path + ": error: " + file.failure);
  } else if (file.findings.empty()) {
    print_line(file.path + ": ok");
  }
}

json_t* json_of(const Finding& finding) {
  return json_pack(
      "{s:s, s:I, s:I, s:s, s:s, s:s}", "severity", finding.is_error ? "error" : "warning", "line",
      static_cast<json_int_t>(finding.place.line), "column",
      static_cast<json_int_t>(finding.place.column), "key", printable(finding.path).c_str(), "what",
      printable(finding.what).c_str(), "consequence", printable(finding.consequence).c_str());
}

json_t* json_of(const CheckedFile& file) {
  json_t* findings = json_array();
  for (const Finding& finding : file.findings) json_array_append_new(findings, json_of(finding));
  json_t* object =
      json_pack("{s:s, s:o}", "file", printable(file.path).c_str(), "findings", findings);
  if (!file.failure.empty()) {
    json_object_set_new(object, "failure", json_string(printable(file.failure).c_str()));
  }
  if (file.points > 0) {
    json_object_set_new(object, "points_written", json_integer(static_cast<int>(file.points)));
    json_object_set_new(object, "backup", json_string(printable(file.backup).c_str()));
  }
  return object;
}

class Checker {
 public:
  explicit Checker(const CheckOptions& options) : options_(options) {}

  void check(const std::string& path) {
    try {
      for (const std::string& file : files_of(path)) check_file(file);
    } catch (const Failure& failure) {
      add({.path = path, .failure = reason(path, failure)}, failure.status());
    }
  }

  int finish() {
    if (options_.json) {
      const Json report(json_pack("{s:o, s:I, s:I}", "files", files_.release(), "errors",
                                  static_cast<json_int_t>(errors_), "warnings",
                                  static_cast<json_int_t>(warnings_)));
      std::printf("%s\n", json_text(report.get(), JSON_INDENT(2)).c_str());
    } else if (errors_ + warnings_ > 0) {
      std::printf("%s, %s\n", count_text(errors_, "error").c_str(),
                  count_text(warnings_, "warning").c_str());
    }
    const bool bad = errors_ > 0 || (options_.strict && warnings_ > 0);
    return status_ != kDone ? status_ : bad ? kBadInput : kDone;
  }

 private:
  void check_file(const std::string& path) {
    CheckedFile file{.path = path};
    ExitStatus status = kDone;
    try {
      std::string text = read_text_file(path);
      if (options_.fix) fix(file, text);
      file.findings = check_tuning_text(text);
    } catch (const Failure& failure) {
      file.failure = reason(path, failure);
      status = failure.status();
    }
    add(file, status);
  }

  void add(const CheckedFile& file, ExitStatus status) {
    status_ = std::max(status_, status);
    errors_ += file.errors();
    warnings_ += file.warnings();
    if (options_.json) {
      json_array_append_new(files_.get(), json_of(file));
    } else {
      print_text(file);
    }
  }

  // Without the path that the line starts with anyway.
  static std::string reason(const std::string& path, const Failure& failure) {
    const std::string text = failure.what();
    return text.starts_with(path + ": ") ? text.substr(path.size() + 2) : text;
  }

  const CheckOptions& options_;
  Json files_{json_array()};
  size_t errors_ = 0;
  size_t warnings_ = 0;
  ExitStatus status_ = kDone;
};

}  // namespace

int run_check(const CheckOptions& options) {
  Checker checker(options);
  for (const std::string& path : options.paths) checker.check(path);
  return checker.finish();
}

}  // namespace tool
