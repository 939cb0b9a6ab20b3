// Calls of the library that a fault is put into, with what must hold after it.
#ifndef VOREL_HARDEN_FAULT_SCENES_H_
#define VOREL_HARDEN_FAULT_SCENES_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/support/faults.h"
#include "vorel/frame.h"

// One handle's life, with one call that a fault is put into.
struct Trial {
  static constexpr int kWidth = 64;
  static constexpr int kHeight = 48;
  static constexpr int kPitch = 70;  // of strided frames, which lack a column and a row

  explicit Trial(bool is_strided);
  void fill();  // with the bytes that every frame has before it is denoised
  vorel_frame frame();

  vorel* handle = nullptr;
  vorel_status status = VOREL_DONE;  // of calls that tell one
  vorel_frame_info info{};
  bool strided;
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;
};

struct Scene {
  const char* name;
  int debug_level;
  bool strided;
  void (*before)(Trial&);
  void (*call)(Trial&);
  int lost_blocks;  // documented: half-precision planes of a frame that was not released
};

extern const std::vector<Scene> kScenes;

// Where scenes run; one object in a program.
class Stage {
 public:
  Stage();
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  // Runs a scene with the `nth` call of `kind` failing (0: none), tells what did not hold, and
  // returns the number of calls of that kind.
  int run(const Scene& scene, FaultScope::Kind kind, int nth, FaultScope::Span span,
          std::string* wrong);

 private:
  using Bytes = std::vector<uint8_t>;
  struct Dumps {
    std::map<std::string, uintmax_t> files;  // and their sizes
    int written;
  };

  std::string judge_handle(const Scene& scene, const Trial& trial) const;
  std::string judge_frame(const Trial& trial) const;
  std::string judge_dumps(const Scene& scene, const Trial& trial);
  Bytes denoised(bool strided, bool tuned) const;

  std::string folder_;
  std::string tuning_text_;
  Bytes expected_[2][2];                // of a frame, by strided and tuned
  std::map<std::string, Dumps> dumps_;  // that scenes leave without a fault
};

#endif  // VOREL_HARDEN_FAULT_SCENES_H_
