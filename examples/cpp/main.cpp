// The C++ interface behind the frame call: a plane is cut into tiles of rows and the column box
// filter runs on them as jobs of a thread pool. At the plane's top and bottom the filter mirrors
// about its tile, so tiles of other heights give other bytes there and the same elsewhere.
#include <vorel/filters.h>
#include <vorel/thread_pool.h>
#include <vorel/tiles.h>
#include <vorel/tuning.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr int kTiles = 4;

std::vector<uint8_t> make_striped_plane() {
  std::vector<uint8_t> plane(kWidth * kHeight);
  for (int row = 0; row < kHeight; ++row) {
    for (int col = 0; col < kWidth; ++col) {
      plane[row * kWidth + col] = static_cast<uint8_t>(100 + row / 16 + (row % 2) * 20);
    }
  }
  return plane;
}

// Largest difference between neighbouring rows; all columns are alike.
int roughness(const std::vector<uint8_t>& plane) {
  int largest = 0;
  for (int row = 1; row < kHeight; ++row) {
    const int difference = plane[row * kWidth] - plane[(row - 1) * kWidth];
    if (difference > largest) largest = difference;
    if (-difference > largest) largest = -difference;
  }
  return largest;
}

}  // namespace

int main() {
  const std::vector<uint8_t> src = make_striped_plane();
  std::vector<uint8_t> low(src.size());
  std::vector<uint8_t> high(src.size());

  boxfiltering_tuning tuning{};
  tuning.tab_bit = 4;  // 16 taps

  std::array<TilePosVert, kTiles> tiles{};
  calcTilePosVert(tiles.data(), kTiles, 0, kHeight);

  std::array<box_filter_job, kTiles> jobs{};
  for (int i = 0; i < kTiles; ++i) {
    box_filter_job& job = jobs[i];
    job.width = kWidth;
    job.stride = kWidth;
    job.aligned_height = kHeight;
    job.row_limit = kHeight;
    job.row_first = tiles[i].begin;
    job.row_end = tiles[i].end;
    job.src = src.data();
    job.low = low.data();
    job.high = high.data();
    job.tuning = &tuning;
  }

  ThreadPool pool;
  if (pool.init(/*numThreads=*/2, /*affinityMask=*/0xFF, /*nameTag=*/0) != 0) {
    std::fputs("the thread pool did not start; the log tells why\n", stderr);
    return 1;
  }
  for (box_filter_job& job : jobs) {
    if (pool.addWork(box_filter_col, &job) != 0) box_filter_col(&job);  // memory is short
  }
  pool.wait();
  pool.deinit();

  std::printf("largest step between rows: %d -> %d\n", roughness(src), roughness(low));
  return roughness(low) < roughness(src) ? 0 : 1;
}
