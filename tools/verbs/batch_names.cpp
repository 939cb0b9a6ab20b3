#include "tools/verbs/batch_names.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/pictures/picture_name.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

bool is_folder(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

bool is_pattern(const std::string& output) { return output.find('{') != std::string::npos; }

std::vector<std::string> pictures_in(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> found;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(".") || !entry.is_regular_file(error)) continue;
    if (kind_of_name(name)) found.push_back(entry.path().string());
  }
  if (error) throw input_error(folder, error.message());
  if (found.empty()) {
    throw input_error(folder, std::string("holds no picture; names end in ") + known_extensions());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string fill_pattern(const std::string& pattern, const std::string& input) {
  std::string result;
  for (size_t pos = 0; pos < pattern.size();) {
    if (pattern[pos] != '{') {
      result += pattern[pos++];
      continue;
    }
    const size_t end = pattern.find('}', pos);
    const std::string word = pattern.substr(pos, end == std::string::npos ? end : end + 1 - pos);
    if (word == "{name}") {
      result += stem_of(input);
    } else if (word == "{ext}") {
      result += extension_of(input);
    } else {
      throw usage_error(pattern + ": " + word + " is unknown; {name} and {ext} can be used");
    }
    pos = end + 1;
  }
  return result;
}

}  // namespace

bool is_batch(const std::vector<std::string>& inputs, const std::string& output) {
  if (inputs.size() > 1 || is_pattern(output) || output.ends_with("/")) return true;
  // A folder that is called like a picture is probably a mistake.
  if (is_folder(output) && !kind_of_name(output)) return true;
  return !inputs.empty() && is_folder(inputs.front());
}

std::vector<BatchItem> plan_batch(const std::vector<std::string>& inputs,
                                  const std::string& output) {
  if (output == kStandardStream) {
    throw usage_error("standard output takes one picture or video");
  }
  const bool pattern = is_pattern(output);
  if (!pattern && !is_folder(output) && kind_of_name(output) && !output.ends_with("/")) {
    throw usage_error(output + ": several pictures need a folder, or a name with {name} in it");
  }
  std::vector<BatchItem> items;
  std::map<std::string, std::string> inputs_of;
  const auto add = [&](const std::string& input) {
    if (input == kStandardStream) throw usage_error("standard input cannot be one of several");
    std::string target =
        pattern ? fill_pattern(output, input) : (fs::path(output) / base_name(input)).string();
    const auto [first, is_new] = inputs_of.emplace(target, input);
    if (!is_new) {
      throw usage_error(target + ": would be the result of " + first->second + " and of " + input);
    }
    items.push_back({input, std::move(target)});
  };
  for (const std::string& input : inputs) {
    if (is_folder(input)) {
      for (const std::string& file : pictures_in(input)) add(file);
    } else {
      add(input);
    }
  }
  return items;
}

}  // namespace tool
