#include "tools/files/doomed_path.h"

#include <limits.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

#include "tools/files/failure.h"

namespace tool {
namespace {

// A fixed table: a signal handler can neither allocate nor lock.
constexpr int kSlots = 256;
enum SlotState { kFree, kReserved, kArmed };

struct Slot {
  std::atomic<int> state{kFree};
  char path[PATH_MAX];
};

Slot g_slots[kSlots];
static_assert(std::atomic<int>::is_always_lock_free);

void remove_doomed(int signal_number) {
  for (Slot& slot : g_slots) {
    if (slot.state.load() == kArmed) unlink(slot.path);
  }
  // The default action is back (SA_RESETHAND): the program ends as its caller expects.
  raise(signal_number);
}

}  // namespace

void install_signal_handlers() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
    struct sigaction old{};
    if (sigaction(number, nullptr, &old) == 0 && old.sa_handler == SIG_IGN) continue;
    struct sigaction action{};
    action.sa_handler = remove_doomed;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
  }
  signal(SIGXFSZ, SIG_IGN);
}

DoomedPath::DoomedPath(const std::string& path) : slot_(-1) {
  if (path.size() >= PATH_MAX) throw output_error(path, errno_text(ENAMETOOLONG));
  for (int i = 0; i < kSlots; ++i) {
    int expected = kFree;
    if (!g_slots[i].state.compare_exchange_strong(expected, kReserved)) continue;
    std::memcpy(g_slots[i].path, path.c_str(), path.size() + 1);
    g_slots[i].state = kArmed;
    slot_ = i;
    return;
  }
  throw output_error(path, "too many files are being written at once");
}

DoomedPath::~DoomedPath() { g_slots[slot_].state = kFree; }

}  // namespace tool
