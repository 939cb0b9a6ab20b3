#include "tools/tune/manifest.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>

#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/pictures/picture_name.h"
#include "tools/tuning/json.h"

namespace tool {
namespace {

// One line of a manifest, or what one name says.
struct Entry {
  std::string where;  // for messages
  std::string scene;
  std::string noise_index;
  std::vector<std::string> noisy;
  std::string clean;
};

std::optional<int> parse_noise_index(const std::string& text) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, value);
  if (parsed.ec != std::errc{} || parsed.ptr != end || value < 1) return std::nullopt;
  return value;
}

std::string below(const std::string& manifest, const std::string& name) {
  if (name.empty()) return name;
  return (std::filesystem::path(manifest).parent_path() / name).string();
}

// Bursts come in several entries; everything else is an entry of its own.
std::vector<CaptureSource> group(const std::string& path, const std::vector<Entry>& entries) {
  std::vector<CaptureSource> sources;
  std::map<std::pair<std::string, int>, size_t> bursts;
  for (const Entry& entry : entries) {
    const std::optional<int> noise_index = parse_noise_index(entry.noise_index);
    if (!noise_index) {
      throw input_error(path, entry.where + ": noise_index must be a whole number above 0, not '" +
                                  entry.noise_index + "'");
    }
    if (entry.noisy.empty() && entry.clean.empty()) {
      throw input_error(path, entry.where + ": names neither a noisy nor a clean picture");
    }
    CaptureSource source{entry.scene, *noise_index, {}, below(path, entry.clean)};
    for (const std::string& name : entry.noisy) source.noisy.push_back(below(path, name));
    if (source.scene.empty()) {
      source.scene = std::filesystem::path(source.clean.empty() ? source.noisy[0] : source.clean)
                         .stem()
                         .string();
    }
    if (!source.clean.empty()) {
      sources.push_back(source);
      continue;
    }
    const auto [burst, is_new] = bursts.insert({{source.scene, *noise_index}, sources.size()});
    if (is_new) {
      sources.push_back(source);
    } else {
      std::vector<std::string>& frames = sources[burst->second].noisy;
      frames.insert(frames.end(), source.noisy.begin(), source.noisy.end());
    }
  }
  if (sources.empty()) throw input_error(path, "names no pictures");
  return sources;
}

// Fields of a line, which quotation marks may hold together.
std::vector<std::string> csv_fields(const std::string& line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '"' && quoted && i + 1 < line.size() && line[i + 1] == '"') {
      fields.back() += line[++i];
    } else if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      fields.emplace_back();
    } else if (c != '\r') {
      fields.back() += c;
    }
  }
  for (std::string& field : fields) {
    field.erase(0, field.find_first_not_of(" \t"));
    field.erase(field.find_last_not_of(" \t") + 1);
  }
  return fields;
}

std::vector<Entry> csv_entries(const std::string& path) {
  std::istringstream text(read_text_file(path));
  std::vector<std::string> columns;
  std::vector<Entry> entries;
  int number = 0;
  for (std::string line; std::getline(text, line);) {
    ++number;
    if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    if (line.find_first_not_of(" \t\r") == std::string::npos || line[0] == '#') continue;
    const std::vector<std::string> fields = csv_fields(line);
    const std::string where = "line " + std::to_string(number);
    if (columns.empty()) {
      columns = fields;
      for (const std::string& column : columns) {
        if (column == "scene" || column == "noise_index" || column == "noisy" ||
            column == "clean") {
          continue;
        }
        throw input_error(path, where + ": '" + column +
                                    "' is no column; they are scene, noise_index, noisy, clean");
      }
      continue;
    }
    if (fields.size() != columns.size()) {
      throw input_error(path, where + ": has " + std::to_string(fields.size()) + " fields, the " +
                                  "heading has " + std::to_string(columns.size()));
    }
    Entry entry;
    entry.where = where;
    for (size_t i = 0; i < fields.size(); ++i) {
      if (columns[i] == "scene") entry.scene = fields[i];
      if (columns[i] == "noise_index") entry.noise_index = fields[i];
      if (columns[i] == "clean") entry.clean = fields[i];
      if (columns[i] == "noisy" && !fields[i].empty()) entry.noisy.push_back(fields[i]);
    }
    entries.push_back(entry);
  }
  return entries;
}

std::string text_value(const std::string& path, const std::string& where, const char* key,
                       const json_t* value) {
  if (json_is_string(value)) return json_string_value(value);
  if (json_is_integer(value)) return std::to_string(json_integer_value(value));
  throw input_error(path, where + ": '" + key + "' must be a text");
}

Entry json_entry(const std::string& path, const std::string& where, json_t* object) {
  if (!json_is_object(object)) throw input_error(path, where + ": is no object");
  Entry entry;
  entry.where = where;
  const char* key = nullptr;
  json_t* value = nullptr;
  json_object_foreach(object, key, value) {
    const std::string name = key;
    if (name == "noisy" && json_is_array(value)) {
      for (size_t i = 0; i < json_array_size(value); ++i) {
        entry.noisy.push_back(text_value(path, where, key, json_array_get(value, i)));
      }
    } else if (name == "noisy") {
      entry.noisy.push_back(text_value(path, where, key, value));
    } else if (name == "scene") {
      entry.scene = text_value(path, where, key, value);
    } else if (name == "clean") {
      entry.clean = text_value(path, where, key, value);
    } else if (name == "noise_index") {
      entry.noise_index = text_value(path, where, key, value);
    } else {
      throw input_error(
          path, where + ": '" + name + "' is no key; they are scene, noise_index, noisy, clean");
    }
  }
  return entry;
}

std::vector<Entry> json_entries(const std::string& path) {
  const std::string text = read_text_file(path);
  json_error_t error;
  const Json root(json_loadb(text.data(), text.size(), JSON_REJECT_DUPLICATES, &error));
  if (!root) throw input_error(path, "line " + std::to_string(error.line) + ": " + error.text);
  if (!json_is_array(root.get())) throw input_error(path, "is no array of captures");
  std::vector<Entry> entries;
  for (size_t i = 0; i < json_array_size(root.get()); ++i) {
    entries.push_back(
        json_entry(path, "entry " + std::to_string(i + 1), json_array_get(root.get(), i)));
  }
  return entries;
}

// What a picture's name says.
struct NameParts {
  std::string scene;
  int noise_index = 0;  // 0 for a clean picture
};

std::optional<int> noise_index_of(const std::string& word) {
  for (const char* mark : {"iso", "ISO", "n"}) {
    if (word.starts_with(mark)) return parse_noise_index(word.substr(std::string(mark).size()));
  }
  return std::nullopt;
}

NameParts parse_name(const std::string& path) {
  std::istringstream stem(std::filesystem::path(path).stem().string());
  NameParts parts;
  bool marked = false;
  for (std::string word; std::getline(stem, word, '_');) {
    if (word == "clean" || word == "truth") {
      marked = true;
    } else if (const std::optional<int> noise_index = noise_index_of(word)) {
      marked = true;
      parts.noise_index = *noise_index;
    } else if (!marked && !parse_size(word)) {
      parts.scene += (parts.scene.empty() ? "" : "_") + word;
    }
  }
  if (!marked || parts.scene.empty()) {
    throw usage_error(path +
                      ": its name does not say what it is; names are <scene>_n<noise index> and "
                      "<scene>_clean (or use a manifest, --truth, --burst or --clean)");
  }
  return parts;
}

}  // namespace

bool is_manifest(const std::string& path) {
  return extension_of(path) == "csv" || extension_of(path) == "json";
}

std::vector<CaptureSource> read_manifest(const std::string& path) {
  return group(path, extension_of(path) == "csv" ? csv_entries(path) : json_entries(path));
}

std::vector<CaptureSource> sources_by_name(const std::vector<std::string>& pictures) {
  std::map<std::string, std::string> clean;
  std::map<std::pair<std::string, int>, std::vector<std::string>> noisy;
  for (const std::string& picture : pictures) {
    const NameParts parts = parse_name(picture);
    if (parts.noise_index > 0) {
      noisy[{parts.scene, parts.noise_index}].push_back(picture);
    } else if (!clean.insert({parts.scene, picture}).second) {
      throw usage_error(picture + ": the scene has a clean picture already: " + clean[parts.scene]);
    }
  }
  std::vector<CaptureSource> sources;
  for (const auto& [key, paths] : noisy) {
    const auto truth = clean.find(key.first);
    sources.push_back(
        {key.first, key.second, paths, truth != clean.end() ? truth->second : std::string()});
  }
  if (sources.empty()) throw usage_error("none of the pictures' names has a noise index");
  return sources;
}

std::vector<std::string> pictures_in(const std::string& folder) {
  std::vector<std::string> pictures;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (kind_of_name(entry.path().string())) pictures.push_back(entry.path().string());
  }
  if (error) throw input_error(folder, error.message());
  if (pictures.empty()) throw input_error(folder, "holds no pictures");
  std::sort(pictures.begin(), pictures.end());
  return pictures;
}

}  // namespace tool
