#include "tools/verbs/dump.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "tools/files/atomic_file.h"
#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/files/input_file.h"
#include "tools/files/printable.h"
#include "tools/library/dump_names.h"
#include "tools/library/dump_picture.h"
#include "tools/library/dump_trace.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/y4m_file.h"
#include "tools/verbs/dump_montage.h"
#include "tools/verbs/dump_report.h"

namespace tool {
namespace {

// The folders below that hold dumps, for who names the folder above.
std::string folders_with_dumps(const std::string& directory) {
  std::error_code error;
  std::string list;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
    if (entry.is_directory(error) && !list_dumps(entry.path().string()).empty()) {
      list += (list.empty() ? "" : ", ") + entry.path().filename().string();
    }
  }
  return list;
}

void print_list(const std::string& directory, const std::vector<DumpFile>& files) {
  size_t name_width = 0;
  size_t size_width = 0;
  for (const DumpFile& file : files) {
    name_width = std::max(name_width, file.name.size());
    size_width = std::max(size_width, size_text(file.size).size());
  }
  std::printf("%s: %zu dumps, in processing order\n", directory.c_str(), files.size());
  for (const DumpFile& file : files) {
    std::printf("  %-*s  %*s  %-10s  %s\n", static_cast<int>(name_width), file.name.c_str(),
                static_cast<int>(size_width), size_text(file.size).c_str(), layout_text(file),
                file.explanation.c_str());
  }
  std::printf("  (first of each pair: V in NV21 frames; second: U)\n");
}

std::string stem(const std::string& name) { return name.substr(0, name.rfind('.')); }

class Converter {
 public:
  Converter(const DumpOptions& options, std::string target)
      : options_(options), target_(std::move(target)) {
    std::error_code error;
    std::filesystem::create_directories(target_, error);
    if (error) throw output_error(target_, "cannot be made: " + error.message());
    if (is_same_file(target_, options_.directory)) {
      throw usage_error("-o must name another directory than the dumps' own");
    }
  }

  void convert(const DumpFile& file) {
    if (options_.png) save(stem(file.name) + ".png", dump_png(file));
    if (options_.y4m && file.content == DumpContent::kFrame) {
      Y4mWriter writer(place(stem(file.name) + ".y4m"));
      writer.write(read_dump_frame(file), {});
      writer.finish();
      ++written_;
    }
    if (options_.rename) save(file.viewer_name, read_file(file.path, kMaxFrameBytes));
  }

  [[nodiscard]] int written() const { return written_; }

 private:
  std::string place(const std::string& name) const { return target_ + "/" + name; }
  void save(const std::string& name, const std::vector<uint8_t>& bytes) {
    write_file(place(name), bytes);
    ++written_;
  }

  const DumpOptions& options_;
  std::string target_;
  int written_ = 0;
};

void convert(const DumpOptions& options, const std::vector<DumpFile>& files) {
  Converter converter(options, *options.output);
  for (const DumpFile& file : files) {
    if (file.layout == DumpLayout::kDamaged) {
      warn(file.path + ": left out, " + std::to_string(file.bytes) +
           " bytes do not fit the size in its name");
      continue;
    }
    converter.convert(file);
  }
  if (!options.json) {
    std::printf("%d files written to %s\n", converter.written(), options.output->c_str());
  }
}

std::vector<std::string> paths_of(const std::vector<DumpFile>& files) {
  std::vector<std::string> paths;
  for (const DumpFile& file : files) paths.push_back(file.path);
  return paths;
}

}  // namespace

void run_dump(const DumpOptions& options) {
  const bool converts = options.png || options.y4m || options.rename;
  if (converts != options.output.has_value()) {
    throw usage_error(converts ? "--png, --y4m and --rename need -o DIRECTORY for their results"
                               : "-o needs --png, --y4m or --rename");
  }
  const std::vector<DumpFile> files = list_dumps(options.directory);
  if (files.empty()) {
    const std::string folders = folders_with_dumps(options.directory);
    throw input_error(options.directory, folders.empty()
                                             ? "holds no dumps of the library"
                                             : "holds no dumps itself; its folders do: " + folders);
  }
  if (options.montage == kStandardStream) {
    throw usage_error("the list goes to standard output; give the picture a file");
  }
  if (options.montage) check_outputs({*options.montage}, paths_of(files), false);
  const std::optional<DumpTrace> trace =
      options.trace ? std::optional(trace_pixel(options.directory, files, *options.trace))
                    : std::nullopt;
  if (options.json) {
    std::fputs(trace ? trace_json(*trace).c_str() : list_json(options.directory, files).c_str(),
               stdout);
  } else if (trace) {
    std::fputs(trace_table(*trace).c_str(), stdout);
  } else {
    print_list(options.directory, files);
  }
  if (options.montage) {
    write_montage(*options.montage, options.directory, files);
    if (!options.json) std::printf("all planes in %s\n", printable(*options.montage).c_str());
  }
  if (converts) convert(options, files);
}

}  // namespace tool
