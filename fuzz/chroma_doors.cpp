#include "fuzz/doors.h"
#include "vorel/wavelet/border_handler.h"
#include "vorel/wavelet/chroma_post_process.h"

namespace {

constexpr uint32_t kBorder = 32;

// What a setup is told, so that two objects can be set up alike.
struct Settings {
  explicit Settings(FuzzedDataProvider& input)
      : width(16 * input.ConsumeIntegralInRange(1, 4)),
        height(input.ConsumeIntegralInRange(2, 40)) {
    for (_Float16& threshold : thresholds) threshold = any_half(input);
    for (_Float16& value : others) value = any_half(input);
  }

  bool apply(ChromaPostProcess& process, int debug, buffer* borrow) {
    return process.setup(width, height, thresholds, others[0], others[1], others[2], others[3],
                         others[4], debug, nullptr, nullptr, nullptr, nullptr, borrow);
  }

  int width;
  int height;
  _Float16 thresholds[5];
  _Float16 others[5];
};

struct Chroma {
  Chroma(const Settings& settings, std::vector<uint8_t> samples) : bytes(std::move(samples)) {
    record.data = bytes.data();
    record.width = static_cast<uint32_t>(settings.width);
    record.height = record.innerHeight = static_cast<uint32_t>(settings.height / 2);
    record.innerWidth = record.width / 2;
    record.kind = VOREL_PLANE_PAIRS;
  }
  std::vector<uint8_t> bytes;
  buffer record{};
};

// The chroma as two planes whose borders hold no numbers.
struct Bordered {
  explicit Bordered(Chroma& chroma) {
    const buffer& pairs = chroma.record;
    for (int i = 0; i < 2; ++i) {
      buffer& plane = records[i];
      plane.kind = i == 0 ? VOREL_PLANE_FIRST : VOREL_PLANE_SECOND;
      plane.padX = plane.padY = kBorder;
      plane.innerWidth = pairs.innerWidth;
      plane.innerHeight = pairs.innerHeight;
      plane.width = (plane.innerWidth + 2 * kBorder + 1) & ~1u;
      plane.height = (plane.innerHeight + 2 * kBorder + 1) & ~1u;
      samples[i].assign(size_t{plane.width} * plane.height, kNotANumber);
      plane.data = samples[i].data();
      for (uint32_t k = 0; k < pairs.innerWidth * pairs.innerHeight; ++k) {
        const uint32_t row = kBorder + k / pairs.innerWidth;
        const uint32_t col = kBorder + k % pairs.innerWidth;
        samples[i][size_t{row} * plane.width + col] =
            chroma.bytes[2 * k + static_cast<uint32_t>(i)];
      }
    }
  }
  std::vector<_Float16> samples[2];
  buffer records[2] = {};
};

// Planes to borrow, each of any size.
struct Lent {
  explicit Lent(FuzzedDataProvider& input) {
    for (int i = 0; i < 4; ++i) {
      memory[i].assign(input.ConsumeIntegralInRange<size_t>(0, 12000), kNotANumber);
      records[i].data = memory[i].empty() ? nullptr : memory[i].data();
      records[i].height = 2;
      records[i].width = static_cast<uint32_t>(memory[i].size());
    }
  }
  std::vector<_Float16> memory[4];
  buffer records[4] = {};
};

// In bands, and as whole planes (which is for dumps, here into no folder), from pairs and from
// planes with borders: one result.
void denoise_frames(FuzzedDataProvider& input) {
  Settings settings(input);
  const int debug = input.ConsumeIntegralInRange(0, 1);
  const bool lends = input.ConsumeBool();
  Lent lent(input);
  const size_t count =
      static_cast<size_t>(settings.width) * static_cast<size_t>(settings.height / 2);
  Chroma chroma(settings, any_bytes(input, count)), whole(settings, chroma.bytes);
  Bordered planes(whole);
  buffer* in = input.ConsumeBool() ? &whole.record : planes.records;

  ChromaPostProcess in_bands, in_planes;
  if (!settings.apply(in_bands, debug, lends ? lent.records : nullptr)) std::abort();
  if (in_bands.chromaPostProcess(&chroma.record, &chroma.record) != 0) std::abort();
  in_bands.deallocate();
  if (!settings.apply(in_planes, 5, nullptr)) std::abort();
  if (in_planes.chromaPostProcess(in, &whole.record) != 0) std::abort();
  in_planes.deallocate();
  require_same("chroma of bands and of planes", chroma.bytes, whole.bytes);
}

// One plane by itself, through its job and through its method.
void denoise_planes(FuzzedDataProvider& input) {
  Settings settings(input);
  const size_t count =
      static_cast<size_t>(settings.width) * static_cast<size_t>(settings.height / 2);
  Chroma chroma(settings, any_bytes(input, count));
  Bordered planes(chroma);
  copy_and_pad_job pad = {&chroma.record, &planes.records[0], &planes.records[1], 0,
                          planes.records[0].height};
  runCopyAndPadFunc(&pad);
  const uint32_t plane = input.ConsumeIntegralInRange(1u, 2u);
  Bordered copy(chroma);
  BorderHandler::getInstance()->runPad(&copy.records[0], &copy.records[1], 0,
                                       copy.records[0].height);
  ChromaPostProcess process;
  if (!settings.apply(process, 0, nullptr)) std::abort();
  // Without the planes that `chromaPostProcess` takes there is nothing to work in.
  denoise_spatial_job job = {&process, plane, &planes.records[plane - 1], nullptr};
  denoiseSpatialFunc(&job);
  process.denoiseSpatial(plane, &copy.records[plane - 1], nullptr);
  require_same("a plane", planes.samples[plane - 1], copy.samples[plane - 1]);
  const int level = input.ConsumeIntegralInRange(0, 4);
  process.setWtCfg(level, 4, 4);
  if (process.getWtRange(0, WT_SUBBAND_LAST) != (level == 2 ? 8u : 7u)) std::abort();
  process.deallocate();
}

}  // namespace

void try_chroma_doors(FuzzedDataProvider& input) {
  input.ConsumeIntegralInRange(0, 3) == 0 ? denoise_planes(input) : denoise_frames(input);
}
