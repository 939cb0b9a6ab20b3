// Calls in any order: two handles made either way, with tuning files and debug levels, frames
// through either call, refused ones and packed ones among them, buffers released, handles closed
// and made again; a thread pool and a recorder of events beside them. After a packed frame a
// handle's slot stays taken, so only calls that never wait follow.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string>

#include "fuzz/debug_level.h"
#include "fuzz/frame_input.h"
#include "fuzz/scratch_folder.h"
#include "tuning/sensors.h"
#include "vorel/thread_pool.h"
#include "vorel/tiles.h"
#include "vorel/trace.h"
#include "vorel/vorel.h"

namespace {

constexpr int kLargestWidth = 64;
constexpr int kLargestHeight = 70;
constexpr int kMostCalls = 6;

const ScratchFolder& firmware() {
  static const ScratchFolder folder;
  return folder;
}

const ScratchFolder& dumps() {
  static const ScratchFolder folder;
  return folder;
}

struct Slot {
  vorel* handle = nullptr;
  bool taken = false;  // for good
};

class Calls {
 public:
  Calls(FuzzedDataProvider& input, bool wavelet_too) : input_(input), wavelet_too_(wavelet_too) {}
  ~Calls() {
    for (Slot& slot : slots_) close(slot);
    pool_.deinit();
    vorel_set_trace_sink(nullptr, nullptr);
    if (slices_ != 0) std::abort();
    if (dumping_) dumps().clear();
  }
  Calls(const Calls&) = delete;
  Calls& operator=(const Calls&) = delete;

  void make_one() {
    Slot& slot = slots_[input_.ConsumeBool() ? 1 : 0];
    switch (input_.ConsumeIntegralInRange(0, 11)) {
      case 0:
        return init(slot);
      case 1:
        return open(slot);
      case 2:
      case 3:
        return run(slot);
      case 4:
      case 5:
        return denoise(slot);
      case 6:
        if (!slot.taken) vorel_release_frame_buffers(slot.handle);
        return;
      case 7:
        return ask(slot);
      case 8:
        return close(slot);
      case 9:
        return use_pool();
      case 10:
        return record_events();
      default:
        return refuse(slot);
    }
  }

 private:
  int any_width() { return input_.ConsumeIntegralInRange(-1, kLargestWidth); }
  int any_height() { return input_.ConsumeIntegralInRange(-1, kLargestHeight); }

  void close(Slot& slot) {
    const int expected = slot.handle != nullptr ? 0 : -1;
    if (vorel_deinit(slot.handle) != expected) std::abort();
    slot = {};
  }

  // What handles read when they are made: debug level, folder of dumps, their sensor's file.
  uint32_t prepare() {
    const int level = any_debug_level(input_);
    dumping_ = dumping_ || level >= kDebugDumpInput;
    setenv("PERSIST_VENDOR_LIBVOREL_DEBUG", std::to_string(level).c_str(), 1);
    // Neither of the others takes a folder.
    const char* folders[] = {dumps().path(), dumps().path(), "/dev/null/no", "/proc/self"};
    setenv("VOREL_DUMP_DIR", input_.PickValueInArray(folders), 1);
    if (input_.ConsumeIntegralInRange(0, 7) != 0) return input_.ConsumeIntegralInRange(0, 140);
    const auto sensors = known_sensors();
    const sensor& known = sensors[input_.ConsumeIntegralInRange<size_t>(0, sensors.size() - 1)];
    const std::string text = input_.ConsumeRandomLengthString(80);
    firmware().write(std::string("vorel_") + known.model + ".json", text.data(), text.size());
    const bool long_name = input_.ConsumeIntegralInRange(0, 7) == 0;
    setenv("VOREL_FIRMWARE_DIR", long_name ? std::string(600, 'a').c_str() : firmware().path(), 1);
    return static_cast<uint32_t>(known.id);
  }

  void init(Slot& slot) {
    close(slot);
    const uint32_t sensor_id = prepare();
    const int width = input_.ConsumeBool() ? 16 * input_.ConsumeIntegralInRange(1, 4) : any_width();
    slot.handle = vorel_init(width, any_height(), input_.ConsumeBool() ? 1 : 0, sensor_id);
    if (slot.handle != nullptr && !wavelet_too_) slot.handle->tuning.mfd_uv_tuning.enable = 0;
  }

  void open(Slot& slot) {
    close(slot);
    const std::string text = input_.ConsumeRandomLengthString(80);
    const std::string name = input_.ConsumeRandomLengthString(10);
    vorel_options options = vorel_default_options(any_width(), any_height());
    options.sensor_id = prepare();
    options.nice = any_int(input_, 0, 19);
    options.workers = any_int(input_, 1, 3);
    options.disable_wavelet = input_.ConsumeBool() || !wavelet_too_;
    if (input_.ConsumeBool()) {
      options.tuning_text = text.data();
      options.tuning_text_bytes = text.size();
    }
    if (input_.ConsumeIntegralInRange(0, 7) == 0) {
      if (input_.ConsumeBool()) options.size = input_.ConsumeIntegral<uint8_t>();
      options.scenario = any_int(input_, 0, 1);
      options.cpu_mask = input_.ConsumeIntegral<uint32_t>();
      options.thread_name = input_.ConsumeBool() ? name.c_str() : nullptr;
      options.tuning_path = input_.ConsumeBool() ? "/dev/null" : nullptr;
      options.disable_spatial = input_.ConsumeBool();
    }
    vorel_status status = VOREL_DONE;
    slot.handle = vorel_open(&options, &status);
    if ((status == VOREL_DONE) != (slot.handle != nullptr)) std::abort();
  }

  // Without a tuning of their own handles leave frames below 40960 alone.
  int any_noise_index() { return any_int(input_, 0, 50000); }

  FuzzFrame frame(int gap, bool twice = false) {
    const int width =
        input_.ConsumeBool() ? 16 * input_.ConsumeIntegralInRange(1, 4) : std::abs(any_width());
    const int height = std::abs(any_height());
    const int pairs = (width + 1) / 2 * 2;
    return FuzzFrame(input_, width, twice ? 2 * height : height, width + gap, pairs + gap,
                     (height + 1) / 2, input_.ConsumeIntegralInRange<int32_t>(0, 1));
  }

  // Packed frames hold two bytes a pixel, which dumps read.
  void run(Slot& slot) {
    if (slot.taken) return;
    constexpr int kFormats[] = {VOREL_FMT_NV21,
                                VOREL_FMT_NM21,
                                VOREL_FMT_NV21,
                                VOREL_FMT_NM21,
                                VOREL_FMT_YUYV,
                                VOREL_FMT_YUY2,
                                0};
    const int format = input_.PickValueInArray(kFormats);
    const bool packed = format == VOREL_FMT_YUYV || format == VOREL_FMT_YUY2;
    FuzzFrame plain = frame(0, packed);
    const vorel_frame record = plain.record(any_noise_index());
    const frame_planes left = slot.handle != nullptr ? *slot.handle : frame_planes{};
    const int height = packed ? record.height / 2 : record.height;
    void* result = vorel_run(slot.handle, record.luma, record.chroma, record.width, height, format,
                             record.noise_index);
    // The planes of an earlier frame that this one has forgotten, as it always does.
    if (slot.handle != nullptr && slot.handle->mfd_u != left.mfd_u) {
      std::free(left.mfd_u);
      std::free(left.mfd_v);
    }
    const bool known = format == VOREL_FMT_NV21 || format == VOREL_FMT_NM21;
    slot.taken = !known && result != slot.handle;
  }

  void denoise(Slot& slot) {
    FuzzFrame given = frame(input_.ConsumeIntegralInRange(-1, 9));
    const vorel_frame record = given.record(any_noise_index());
    vorel_frame_info info{};
    info.size = sizeof(info);
    const vorel_status status = vorel_denoise_frame(slot.handle, &record, &info);
    if (info.status != status || (slot.handle == nullptr) != (status == VOREL_BAD_HANDLE)) {
      std::abort();
    }
  }

  // Records that no frame can be made of.
  void refuse(Slot& slot) {
    vorel_frame record{sizeof(vorel_frame), nullptr, nullptr, 16, 16, 16, 2, 0, 10000};
    if (input_.ConsumeBool()) record.size = input_.ConsumeIntegral<uint8_t>();
    const vorel_frame* given = input_.ConsumeBool() ? &record : nullptr;
    if (vorel_denoise_frame(slot.handle, given, nullptr) >= 0) std::abort();
    if (!slot.taken &&
        vorel_run(slot.handle, nullptr, nullptr, 16, 2, VOREL_FMT_NV21, 50000) != slot.handle) {
      std::abort();
    }
    vorel_frame_info info{};
    if (vorel_denoise_frame(slot.handle, &record, &info) >= 0 || info.status != 0) std::abort();
    // Scenarios are 0 and 1; what comes back for others is memory and no handle.
    std::free(vorel_init(16, 16, input_.ConsumeIntegralInRange(2, 9), 0));
    // More samples than 31 bits count.
    if (vorel_init(65536, 32768, 0, 0) != nullptr) std::abort();
  }

  void ask(Slot& slot) {
    vorel_handle_info info{};
    info.size = input_.ConsumeBool() ? sizeof(info) : 1;
    const vorel_status status = vorel_get_handle_info(slot.handle, &info);
    if (status == VOREL_DONE && (info.level_count < 0 || info.level_count > 12)) std::abort();
    for (int any = -13; any < 5; ++any) {
      if (vorel_status_text(static_cast<vorel_status>(any)) == nullptr) std::abort();
    }
    TilePosHorz tiles[8];
    calcTilePosHorz(tiles, input_.ConsumeIntegralInRange(-1, 8), input_.ConsumeIntegral<int>(),
                    input_.ConsumeIntegral<int>());
    TilePosVert strips[8];
    calcTilePosVert(strips, input_.ConsumeIntegralInRange(-1, 8), input_.ConsumeIntegral<int>(),
                    input_.ConsumeIntegral<int>());
  }

  // Slices are closed on the thread that opened them: at the end none is open.
  static void record(void* open_slices, int32_t kind, const char* name, int64_t) {
    auto* slices = static_cast<std::atomic<int>*>(open_slices);
    if (kind == VOREL_TRACE_BEGIN) slices->fetch_add(1);
    if (kind == VOREL_TRACE_END) slices->fetch_sub(1);
    if ((kind == VOREL_TRACE_END) != (name == nullptr)) std::abort();
  }

  void record_events() {
    pool_.deinit();  // whose last job may not have closed its slice
    workers_ = -1;
    expected_ = ran_;
    vorel_set_trace_sink(input_.ConsumeBool() ? record : nullptr, &slices_);
  }

  static void* count(void* counter) {
    static_cast<std::atomic<int>*>(counter)->fetch_add(1);
    return nullptr;
  }

  // Jobs that were queued have run when `wait` returns; without workers it would not return.
  void use_pool() {
    int asked = 0;
    switch (input_.ConsumeIntegralInRange(0, 4)) {
      case 0:
        asked = input_.ConsumeIntegralInRange(-1, 3);
        workers_ = std::max(asked, 0);
        if (pool_.init(asked, input_.ConsumeBool() ? 0xFF : input_.ConsumeIntegral<int>(), 1) !=
            0) {
          std::abort();
        }
        expected_ = ran_;
        return;
      case 1:
        if (pool_.addWork(count, &ran_) == 0) ++expected_;
        if (workers_ == -1 && pool_.thread_init(nullptr, 0, &pool_, 1, 1) != -1) std::abort();
        return;
      case 2:
        if (workers_ == 0) return;
        if (pool_.wait() == 0 && ran_ != expected_) std::abort();
        return;
      case 3:
        static_cast<void>(pool_.num_threads_working());
        return;
      default:
        pool_.deinit();
        workers_ = -1;
        expected_ = ran_;
    }
  }

  FuzzedDataProvider& input_;
  bool wavelet_too_;
  Slot slots_[2];
  ThreadPool pool_;
  int workers_ = -1;  // none was asked for
  std::atomic<int> ran_{0};
  std::atomic<int> slices_{0};
  bool dumping_ = false;
  int expected_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  prepare_frames();
  setenv("VOREL_FIRMWARE_DIR", firmware().path(), 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  Calls calls(input, may_take_wavelet(data, size));
  for (int i = 0; i < kMostCalls && input.remaining_bytes() > 0; ++i) calls.make_one();
  return 0;
}
