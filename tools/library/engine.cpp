#include "tools/library/engine.h"

#include <android/log.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <vector>

#include "tools/files/failure.h"

namespace tool {
namespace {

// Error lines about dumps: the frame itself is fine.
constexpr std::string_view kDumpTroubles[] = {"Failed to open dump file", "Failed to write dump",
                                              "Failed to dump", "Image dumper"};

std::optional<std::string> frame_trouble(std::vector<LogRecord> lines) {
  std::erase_if(lines, [](const LogRecord& line) {
    return std::any_of(std::begin(kDumpTroubles), std::end(kDumpTroubles),
                       [&](std::string_view start) { return line.text.starts_with(start); });
  });
  return first_error(lines);
}

// Reads "noiseIndex(100) < enableNoiseIndex(400)".
void read_skip_line(const std::vector<LogRecord>& lines, FrameReport& report) {
  const std::optional<std::string> numbers = text_after(lines, "vorel_run, skip process, ");
  int index = 0;
  if (numbers && std::sscanf(numbers->c_str(), "noiseIndex(%d) < enableNoiseIndex(%d)", &index,
                             &report.enable_noise_index) == 2) {
    report.skipped = true;
  }
}

}  // namespace

Engine::Engine(Size size, unsigned sensor, LibraryLog& log, const LibraryCalls& calls)
    : log_(log), calls_(calls) {
  static_cast<void>(log_.take());
  handle_ = calls_.init(size.width, size.height, VOREL_SCENARIO_CAPTURE, sensor);
  const std::vector<LogRecord> lines = log_.take();
  if (handle_ == nullptr) {
    throw Failure(kFailed,
                  "the library did not start: " + first_error(lines).value_or("no reason logged"));
  }
  log_.show_errors(lines);
  tuning_date_ = text_after(lines, "TUNING_VERSION: ").value_or("");
  tuning_loaded_ = std::any_of(lines.begin(), lines.end(), [](const LogRecord& line) {
    return line.text.starts_with("LoadJson(") && line.text.ends_with(") success");
  });
  dump_directory_ = text_after(lines, "vorel_init, dump_path ").value_or("");
}

Engine::~Engine() { calls_.deinit(handle_); }

FrameReport Engine::process(Nv21Frame& frame, bool separate_planes, int noise_index) {
  // Two exact buffers, so that nothing can rely on the planes being neighbours.
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;
  if (separate_planes) {
    luma.assign(frame.y(), frame.y() + frame.luma_bytes());
    chroma.assign(frame.vu(), frame.vu() + frame.chroma_bytes());
  }
  static_cast<void>(log_.take());
  FrameReport report;
  const auto start = std::chrono::steady_clock::now();
  calls_.run(handle_, separate_planes ? luma.data() : frame.y(),
             separate_planes ? chroma.data() : frame.vu(), frame.width, frame.height,
             separate_planes ? VOREL_FMT_NM21 : VOREL_FMT_NV21, noise_index);
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - start;
  report.milliseconds = elapsed.count();
  calls_.release_frame_buffers(handle_);
  const std::vector<LogRecord> lines = log_.take();
  if (const std::optional<std::string> trouble = frame_trouble(lines)) {
    throw Failure(kFailed, "the library did not process the frame: " + *trouble);
  }
  log_.show_errors(lines);
  read_skip_line(lines, report);
  if (separate_planes) {
    std::copy(luma.begin(), luma.end(), frame.y());
    std::copy(chroma.begin(), chroma.end(), frame.vu());
  }
  return report;
}

}  // namespace tool
