#include "vorel/wavelet/chroma_post_process.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <new>

#include "platform/log.h"
#include "platform/plane_dump.h"
#include "platform/stage_timer.h"
#include "threading/run_jobs.h"
#include "vorel/wavelet/border_handler.h"
#include "wavelet/plane_storage.h"
#include "wavelet/stage_layout.h"

namespace {

constexpr _Float16 kThresholdScale = std::bit_cast<_Float16>(uint16_t{0x508D});  // 36.40625

// Planes that the Haar step works on per chroma plane: seven bands and four working planes.
constexpr uint32_t kHaarPlanes = 11;

// Half of `padded`, then half of that, rounded up.
uint32_t quarter_of(uint32_t padded) { return padded / 4 + padded / 2 % 2; }

_Float16 radial_slope(_Float16 mode) {
  if (mode == 0) return 0;
  const float r = static_cast<float>(mode);
  return static_cast<_Float16>(1.0f + (r > 0 ? r : -0.25f * r));
}

_Float16 radial_cap(_Float16 mode) {
  const _Float16 base = mode > 0 ? mode : static_cast<_Float16>(_Float16{-1} - mode);
  return base + _Float16{3};
}

void fill_thresholds(const _Float16* thr, _Float16* table) {
  // Which of the five thresholds a subband takes.
  constexpr int kSource[] = {0, 1, 1, 2, 3, 3, 4};
  std::fill(table, table + ChromaPostProcess::kThresholds, kThresholdScale);
  for (int i = 0; i < ChromaPostProcess::kSubbands; ++i) {
    table[i] = thr[kSource[i]] * kThresholdScale;
  }
}

void describe_padded(buffer* plane, uint32_t kind, wavelet_size inner) {
  plane->kind = kind;
  plane->padX = kPlaneBorder;
  plane->padY = kPlaneBorder;
  plane->innerWidth = inner.width;
  plane->innerHeight = inner.height;
}

// Bytes that a plane takes of a lent area.
size_t plane_bytes(wavelet_size size) {
  return (size_t{size.width} * size.height * sizeof(_Float16) + 7) & ~size_t{7};
}

bool holds_plane(const plane_scratch& scratch, wavelet_size size) {
  return scratch.remaining_bytes >= plane_bytes(size);
}

// Cuts `bytes` (a multiple of 8) off an area to lend them on; nothing when there are fewer.
buffer lend_part(plane_scratch* scratch, size_t bytes) {
  plane_scratch part{scratch->cursor, bytes};
  if (scratch->remaining_bytes < bytes) return rest_of({nullptr, 0});
  scratch->cursor += bytes;
  scratch->remaining_bytes -= bytes;
  return rest_of(part);
}

plane_view view_of(const buffer& plane) {
  return {plane.data, static_cast<int32_t>(plane.width), static_cast<int32_t>(plane.height),
          sizeof(_Float16)};
}

// Writes a half-precision plane, whole and without `margin` samples on each side.
void dump_whole_and_cropped(const stage_record& stage, const char* prefix, const buffer& plane,
                            int32_t margin) {
  const plane_view view = view_of(plane);
  dump_plane(stage, prefix, view);
  dump_plane(stage, prefix, view,
             {margin, margin, view.width - 2 * margin, view.height - 2 * margin});
}

}  // namespace

ChromaPostProcess::ChromaPostProcess()
    : width_(0),
      height_(0),
      uvSize_{},
      uvSizeB_{},
      uvL1SizeB_{},
      uvL2SizeB_{},
      sym4_(nullptr),
      denoise_(nullptr),
      config_{},
      thresholds_{},
      radialA_(0),
      radialB_(0),
      CSatParam1_(0),
      CSatParam2_(0),
      CSatThr1_(0),
      CSatThr2_(0),
      padded_{},
      staging_{},
      subbands_{},
      haarScratch_{},
      sym4Scratch_{},
      debugLevel_(0),
      dumpPath_(nullptr),
      pools_{} {}

void ChromaPostProcess::setSizes(int width, int height) {
  width_ = width;
  height_ = height;
  uvSize_ = {static_cast<uint32_t>(width) / 2, static_cast<uint32_t>(height) / 2};
  uvSizeB_ = {padded_size(uvSize_.width), padded_size(uvSize_.height)};
  uvL1SizeB_ = {uvSizeB_.width / 2, uvSizeB_.height / 2};
  uvL2SizeB_ = {quarter_of(uvSizeB_.width), quarter_of(uvSizeB_.height)};
  VOREL_LOGI(
      "ChromaPostProcess::setup, UVSize %d, %d, UVSizeb %d, %d, UVL1Sizeb %d, %d, UVL2Sizeb %d, %d",
      static_cast<int>(uvSize_.width), static_cast<int>(uvSize_.height),
      static_cast<int>(uvSizeB_.width), static_cast<int>(uvSizeB_.height),
      static_cast<int>(uvL1SizeB_.width), static_cast<int>(uvL1SizeB_.height),
      static_cast<int>(uvL2SizeB_.width), static_cast<int>(uvL2SizeB_.height));
}

bool ChromaPostProcess::reserveStorage(const buffer* borrow) {
  plane_scratch lent[4];
  for (int i = 0; i < 4; ++i) lent[i] = scratch_of(borrow != nullptr ? &borrow[i] : nullptr);
  bool reserved = take_plane(&staging_, &lent[2], uvSize_.height, uvSize_.width);
  for (int i = 0; i < 2; ++i) {
    reserved = take_plane(&padded_[i], &lent[i], uvSizeB_.height, uvSizeB_.width) && reserved;
    describe_padded(&padded_[i], i == 0 ? VOREL_PLANE_FIRST : VOREL_PLANE_SECOND, uvSize_);
  }
  for (buffer(&planes)[kSubbands] : subbands_) {
    for (int i = 0; i < kSubbands; ++i) {
      const wavelet_size size = i < 4 ? uvL2SizeB_ : uvL1SizeB_;
      plane_scratch* from = holds_plane(lent[2], size) ? &lent[2] : &lent[3];
      reserved = take_plane(&planes[i], from, size.height, size.width) && reserved;
    }
  }
  // The Haar steps come before the saturation, so the first plane's may use the staging area; the
  // second plane's gets its own part of what is left, and the transform the rest.
  haarScratch_[0] = staging_;
  haarScratch_[0].height *= sizeof(_Float16);  // lent areas are counted in bytes
  haarScratch_[1] = lend_part(&lent[3], kHaarPlanes * plane_bytes(uvL2SizeB_));
  sym4Scratch_[0] = rest_of(lent[2]);
  sym4Scratch_[1] = rest_of(lent[3]);
  return reserved;
}

bool ChromaPostProcess::setup(int width, int height, _Float16* thr, _Float16 radialMode,
                              _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                              _Float16 CSatThr2, int debugLevel, char* dumpPath, ThreadPool* pool1,
                              ThreadPool* pool2, ThreadPool* pool3, buffer* borrow) {
  const StageTimer timer(debugLevel);
  debugLevel_ = debugLevel;
  dumpPath_ = dumpPath;
  pools_[0] = pool1;
  pools_[1] = pool2;
  pools_[2] = pool3;
  setWtCfg(2, 4, 4);
  setSizes(width, height);
  bool ready = reserveStorage(borrow);
  radialA_ = radial_slope(radialMode);
  radialB_ = radial_cap(radialMode);
  for (_Float16(&table)[kThresholds] : thresholds_) fill_thresholds(thr, table);
  CSatParam1_ = CSatParam1;
  CSatParam2_ = CSatParam2;
  CSatThr1_ = CSatThr1;
  CSatThr2_ = CSatThr2;
  sym4_ = new (std::nothrow) Sym4Transform();
  denoise_ = new (std::nothrow) Denoise();
  ready = ready && sym4_ != nullptr && denoise_ != nullptr;
  if (!ready) VOREL_LOGE("ChromaPostProcess::setup, alloc is fail");
  timer.log("ChromaPostProcess::setup");
  return ready;
}

void ChromaPostProcess::fillPadded(buffer* in, buffer* planes) {
  StageTimer timer(debugLevel_);
  if (in->kind != VOREL_PLANE_PAIRS) {
    planes[0].data = in[0].data;
    planes[1].data = in[1].data;
    BorderHandler::getInstance()->runPad(&planes[0], &planes[1], 0, uvSizeB_.height);
    timer.log("BorderHandler::runPad");
    return;
  }
  const uint32_t band = uvSizeB_.height / kCopyAndPadJobs;
  copy_and_pad_job jobs[kCopyAndPadJobs];
  for (uint32_t i = 0; i < kCopyAndPadJobs; ++i) {
    const uint32_t end = i + 1 < kCopyAndPadJobs ? (i + 1) * band : uvSizeB_.height;
    jobs[i] = {in, &planes[0], &planes[1], i * band, end};
  }
  run_jobs(pools_[0], runCopyAndPadFunc, jobs, kCopyAndPadJobs);
  timer.log("BorderHandler::runCopyAndPad");
}

void ChromaPostProcess::dumpPadded(const char* name, const buffer* planes, bool cropped) {
  const stage_record stage{debugLevel_, dumpPath_};
  for (int i = 0; i < 2; ++i) {
    char prefix[16];
    std::snprintf(prefix, sizeof(prefix), "%s%s", name, i == 0 ? "U_" : "V_");
    if (cropped) {
      dump_plane(stage, prefix, view_of(planes[i]),
                 {kPlaneBorder, kPlaneBorder, static_cast<int32_t>(uvSize_.width),
                  static_cast<int32_t>(uvSize_.height)});
    } else {
      dump_plane(stage, prefix, view_of(planes[i]));
    }
  }
}

int ChromaPostProcess::chromaPostProcess(buffer* in, buffer* out) {
  const StageTimer timer(debugLevel_);
  // Without memory of its own the transform cannot run; the frame then keeps its chroma.
  if (!sym4_->setup(static_cast<int>(uvSizeB_.width), static_cast<int>(uvSizeB_.height),
                    static_cast<int>(uvL1SizeB_.width), static_cast<int>(uvL1SizeB_.height),
                    debugLevel_, dumpPath_, pools_[0], sym4Scratch_)) {
    VOREL_LOGE("ChromaPostProcess::chromaPostProcess, alloc is fail");
    return -1;
  }
  denoise_->setup(static_cast<int>(uvSize_.width), static_cast<int>(uvSize_.height),
                  static_cast<int>(uvSizeB_.width), static_cast<int>(uvSizeB_.height), debugLevel_,
                  dumpPath_, pools_[0]);
  buffer planes[2] = {padded_[0], padded_[1]};
  fillPadded(in, planes);
  dumpPadded("p_", planes, false);

  // One plane each on two workers; a plane's own steps stay on its worker.
  denoise_spatial_job jobs[2] = {{this, 1, &planes[0], nullptr}, {this, 2, &planes[1], nullptr}};
  run_jobs(pools_[0], denoiseSpatialFunc, jobs, 2);
  dumpPadded("dS_", planes, false);
  dumpPadded("dS_", planes, true);

  const int result = denoise_->applySaturation(&planes[0], &planes[1], out, &staging_, CSatParam1_,
                                               CSatParam2_, CSatThr1_, CSatThr2_);
  timer.log("ChromaPostProcess::chromaPostProcess");
  return result;
}

void ChromaPostProcess::denoiseSpatial(unsigned plane, buffer* io, ThreadPool* pool) {
  const StageTimer timer(debugLevel_);
  const unsigned index = plane - 1;
  const char* letter = plane == 1 ? "U_" : "V_";
  buffer* subbands = subbands_[index];
  // Plane and working planes of the transform go together, so that both planes may run at once.
  sym4_->forwardWtRun(io, subbands, uvSizeB_.width, uvSizeB_.height, plane, pool);
  const stage_record stage{debugLevel_, dumpPath_};
  for (int i = 0; i < kSubbands; ++i) {
    char prefix[16];
    std::snprintf(prefix, sizeof(prefix), "fW_%d_%s", i, letter);
    dump_whole_and_cropped(stage, prefix, subbands[i], i < 4 ? 8 : 16);
  }
  denoise_->denoiseChroma1And2HaarRun(subbands, &haarScratch_[index], thresholds_[index], radialA_,
                                      radialB_, pool);
  dump_whole_and_cropped(stage, plane == 1 ? "dH_U_" : "dH_V_", subbands[0], 8);
  sym4_->inverseWtDifferentSband0Run(&subbands[0], subbands, io, uvSizeB_.width, uvSizeB_.height,
                                     plane);
  timer.log("ChromaPostProcess::denoiseSpatial");
}

void ChromaPostProcess::deallocate() {
  const StageTimer timer(debugLevel_);
  release_plane(&staging_);
  for (buffer& plane : padded_) release_plane(&plane);
  for (buffer(&planes)[kSubbands] : subbands_) {
    for (buffer& plane : planes) release_plane(&plane);
  }
  if (sym4_ != nullptr) sym4_->deallocate();
  if (denoise_ != nullptr) denoise_->deallocate();
  delete sym4_;
  delete denoise_;
  sym4_ = nullptr;
  denoise_ = nullptr;
  timer.log("ChromaPostProcess::deallocate");
}

void ChromaPostProcess::setWtCfg(int c0, int c1, int c2) {
  fill_wavelet_config(&config_, c0, c1, c2);
}

uint32_t ChromaPostProcess::getWtRange(unsigned int level, wtSubbandRange which) {
  return config_.range[level][which];
}

void* runCopyAndPadFunc(void* argument) {
  const auto* job = static_cast<copy_and_pad_job*>(argument);
  BorderHandler::getInstance()->runCopyAndPad(job->in, job->first, job->second, job->rowBegin,
                                              job->rowEnd);
  return nullptr;
}

void* denoiseSpatialFunc(void* argument) {
  const auto* job = static_cast<denoise_spatial_job*>(argument);
  job->process->denoiseSpatial(job->plane, job->io, job->pool);
  return nullptr;
}
