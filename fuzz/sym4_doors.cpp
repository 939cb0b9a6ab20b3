#include <array>

#include "fuzz/doors.h"
#include "tests/wavelet/sym4_plain.h"
#include "vorel/wavelet/sym4_transform.h"

namespace {

PlainPlane any_plane(FuzzedDataProvider& input, int width, int height) {
  PlainPlane plane(width, height);
  plane.samples = any_halves(input, plane.samples.size());
  return plane;
}

std::array<buffer, kPlainSubbands> records_of(PlainSubbands& bands) {
  std::array<buffer, kPlainSubbands> records;
  for (size_t i = 0; i < records.size(); ++i) records[i] = record_of(bands.planes[i]);
  return records;
}

// Samples that no pass writes, which are no numbers in `expected`, may hold anything.
void require_numbers(const char* what, const PlainPlane& actual, const PlainPlane& expected) {
  for (size_t i = 0; i < expected.samples.size(); ++i) {
    if (expected.samples[i] != expected.samples[i]) continue;
    require_same(what, &actual.samples[i], &expected.samples[i], 1);
  }
}

void analyse(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(1, 40);
  const int height = input.ConsumeIntegralInRange(1, 20);
  const bool columns = input.ConsumeBool();
  PlainPlane src = any_plane(input, width, height);
  const int out_width = columns ? width : width / 2;
  const int out_height = columns ? height / 2 : height;
  PlainPlane low(out_width, out_height, 7), high = low, plain_low = low, plain_high = low;
  plain_analyse(src, columns, &plain_low, &plain_high);
  Sym4Transform transform;
  const int cut = input.ConsumeIntegralInRange(0, out_height);
  sym4_band_job jobs[2];
  for (int i = 0; i < 2; ++i) {
    jobs[i] = {&transform, src.samples.data(), low.samples.data(),        high.samples.data(),
               width,      i == 0 ? cut : 0,   i == 0 ? out_height : cut, height};
  }
  switch (input.ConsumeIntegralInRange(0, 2)) {
    case 0:
      for (sym4_band_job& job : jobs) columns ? fwtVertFunc(&job) : fwtFunc(&job);
      break;
    case 1:
      for (const sym4_band_job& job : jobs) {
        if (columns) {
          transform.fwtVert(job.src, job.lo, job.hi, width, height, job.rowFirst, job.rowEnd);
        } else {
          transform.fwt(job.src, job.lo, job.hi, width, job.rowFirst, job.rowEnd);
        }
      }
      break;
    default:
      if (columns) {
        transform.fwtVert(src.samples.data(), low.samples.data(), high.samples.data(), width,
                          height);
      } else {
        transform.fwt(src.samples.data(), low.samples.data(), high.samples.data(), width, height);
      }
  }
  require_same("low band", low.samples, plain_low.samples);
  require_same("high band", high.samples, plain_high.samples);
}

void analyse_bytes(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(1, 40);
  const int height = input.ConsumeIntegralInRange(1, 12);
  PlainPlane src(width, height);
  std::vector<uint8_t> bytes = any_bytes(input, src.samples.size());
  std::copy(bytes.begin(), bytes.end(), src.samples.begin());
  PlainPlane low(width / 2, height, 7), high = low, plain_low = low, plain_high = low;
  plain_analyse(src, false, &plain_low, &plain_high);
  Sym4Transform().fwtFirstStep(bytes.data(), low.samples.data(), high.samples.data(), width,
                               height);
  require_same("low band of bytes", low.samples, plain_low.samples);
  require_same("high band of bytes", high.samples, plain_high.samples);
}

void synthesise(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(1, 30);
  const int height = input.ConsumeIntegralInRange(1, 14);
  const int form = input.ConsumeIntegralInRange(0, 2);
  const int difference = form == 2 ? input.ConsumeIntegralInRange(0, 4) : 0;
  PlainPlane low = any_plane(input, width + difference, height);
  PlainPlane high = any_plane(input, width, height);
  PlainPlane out(form == 0 ? 2 * width : width, form == 0 ? height : 2 * height, 7), plain = out;
  plain_synthesise(low, high, form == 0 ? height : width, form == 0 ? width : height, form != 0,
                   &plain);
  Sym4Transform transform;
  const auto call = form == 0 ? &Sym4Transform::iwt : &Sym4Transform::iwtVert;
  if (form == 2) {
    transform.iwtVertPitch(low.samples.data(), high.samples.data(), out.samples.data(), width,
                           height, difference);
  } else {
    (transform.*call)(low.samples.data(), high.samples.data(), out.samples.data(), width, height);
  }
  require_same("synthesis", out.samples, plain.samples);
}

// Working planes from the heap or lent, for the plane's size or, now and then, for another one: the
// run is then refused or needs no more than they have.
class Run {
 public:
  Run(FuzzedDataProvider& input, int width, int height)
      : two(input.ConsumeBool()),
        level(input.ConsumeIntegralInRange(0, 9) == 0 ? 3u : input.ConsumeIntegralInRange(1u, 2u)),
        fits(input.ConsumeIntegralInRange(0, 7) != 0) {
    const int setup_width = fits ? width : input.ConsumeIntegralInRange(2, 60);
    const int setup_height = fits ? height : input.ConsumeIntegralInRange(2, 60);
    const int debug = input.ConsumeIntegralInRange(0, 7) == 0 ? 1 : 0;
    const size_t bytes = input.ConsumeIntegralInRange<size_t>(0, 40000);
    for (int i = 0; i < 2; ++i) {
      memory_[i].assign(bytes / 2, kNotANumber);
      scratch_[i].data = memory_[i].data();
      scratch_[i].height = 1;
      scratch_[i].width = static_cast<uint32_t>(bytes / 2 * 2);
    }
    if (!transform.setup(setup_width, setup_height, setup_width / 2, setup_height / 2, debug,
                         nullptr, nullptr, bytes != 0 ? scratch_ : nullptr)) {
      std::abort();
    }
    if (!two) transform.setWtCfg(4, 2, 2);
  }
  ~Run() { transform.deallocate(); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  Sym4Transform transform;
  const bool two;
  const unsigned level;
  const bool fits;

 private:
  std::vector<_Float16> memory_[2];
  buffer scratch_[2] = {};
};

void decompose(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(2, 60);
  const int height = input.ConsumeIntegralInRange(2, 50);
  Run run(input, width, height);
  PlainPlane src = any_plane(input, width, height);
  buffer record = record_of(src);
  PlainSubbands bands(width, height, 7), expected(width, height, kNotANumber);
  std::array<buffer, kPlainSubbands> records = records_of(bands);
  const auto cols = static_cast<unsigned>(width), rows = static_cast<unsigned>(height);
  run.transform.forwardWtRun(&record, records.data(), cols, rows, run.level, nullptr);
  // A second level of an odd number of columns has one more than its samples.
  if (!run.fits || run.level > 2 || (run.two && width / 2 % 2 != 0)) return;
  plain_forward(src, run.two, &expected);
  for (size_t i = 0; i < records.size(); ++i) {
    require_numbers("a subband", bands.planes[i], expected.planes[i]);
  }
}

void rebuild(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(2, 60);
  const int height = input.ConsumeIntegralInRange(2, 50);
  Run run(input, width, height);
  PlainSubbands bands(width, height, 0);
  for (PlainPlane& band : bands.planes) band.samples = any_halves(input, band.samples.size());
  PlainPlane band0 = bands.planes[run.two ? 0 : 7];
  std::array<buffer, kPlainSubbands> records = records_of(bands);
  buffer low = record_of(band0);
  PlainPlane out(width / 2 * 2, height, 7), expected(width / 2 * 2, height, kNotANumber);
  buffer record = record_of(out);
  run.transform.inverseWtDifferentSband0Run(&low, records.data(), &record,
                                            static_cast<unsigned>(width),
                                            static_cast<unsigned>(height), run.level);
  if (!run.fits || run.level > 2) return;
  plain_inverse(band0, bands, run.two, &expected);
  require_numbers("the plane", out, expected);
}

}  // namespace

void try_sym4_doors(FuzzedDataProvider& input) {
  constexpr decltype(&analyse) kDoors[] = {analyse, analyse_bytes, synthesise, decompose, rebuild};
  input.PickValueInArray(kDoors)(input);
}
