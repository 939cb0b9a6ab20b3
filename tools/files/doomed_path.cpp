#include "tools/files/doomed_path.h"

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "tools/files/failure.h"

namespace tool {
namespace {

// A fixed table: a signal handler can neither allocate nor lock.
constexpr int kSlots = 256;
enum SlotState { kFree, kReserved, kCreating, kArmed };

struct Slot {
  std::atomic<int> state{kFree};
  char path[PATH_MAX];
};

Slot g_slots[kSlots];
std::atomic<bool> g_ending{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

// A thread that creates a file has blocked the signals, so it is another one and gets on.
void wait_until_created(const Slot& slot) {
  constexpr timespec kMoment{0, 100'000};
  while (slot.state.load() == kCreating) nanosleep(&kMoment, nullptr);
}

void remove_doomed(int signal_number) {
  g_ending = true;
  for (Slot& slot : g_slots) {
    wait_until_created(slot);
    if (slot.state.load() == kArmed) unlink(slot.path);
  }
  // The program ends as its caller expects. Until here a second signal, which may reach another
  // thread, does the same.
  signal(signal_number, SIG_DFL);
  raise(signal_number);
}

class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before_);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

void install_signal_handlers() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
    struct sigaction old{};
    if (sigaction(number, nullptr, &old) == 0 && old.sa_handler == SIG_IGN) continue;
    struct sigaction action{};
    action.sa_handler = remove_doomed;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
  }
  signal(SIGXFSZ, SIG_IGN);
}

void wait_while_ending() {
  while (g_ending) pause();
}

DoomedPath::DoomedPath(const std::string& path) : slot_(-1) {
  if (path.size() >= PATH_MAX) throw output_error(path, errno_text(ENAMETOOLONG));
  for (int i = 0; i < kSlots; ++i) {
    int expected = kFree;
    if (!g_slots[i].state.compare_exchange_strong(expected, kReserved)) continue;
    std::memcpy(g_slots[i].path, path.c_str(), path.size() + 1);
    slot_ = i;
    return;
  }
  throw output_error(path, "too many files are being written at once");
}

int DoomedPath::create(mode_t mode) {
  Slot& slot = g_slots[slot_];
  int descriptor = -1;
  int error = 0;
  {
    const BlockedSignals blocked;
    slot.state = kCreating;
    if (g_ending) {
      slot.state = kReserved;
    } else {
      descriptor = open(slot.path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
      error = errno;
      slot.state = descriptor >= 0 ? kArmed : kReserved;
    }
  }
  wait_while_ending();
  errno = error;
  return descriptor;
}

DoomedPath::~DoomedPath() { g_slots[slot_].state = kFree; }

}  // namespace tool
