// Puts one fault after the other into every call of the library: each call of the system, and each
// allocation, fails once, and then that one and all later ones do.
//   harden_faults allocations|system_calls [ROUNDS]
#include <jansson.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include "harden/fault_scenes.h"

namespace {

using Kind = FaultScope::Kind;
using Span = FaultScope::Span;

constexpr unsigned kLongestCallSeconds = 10;

struct NamedKind {
  Kind kind;
  const char* name;
};

constexpr NamedKind kAllocations[] = {{Kind::kAllocation, "allocation"}};
constexpr NamedKind kSystemCalls[] = {
    {Kind::kThreadCreate, "pthread_create"},
    {Kind::kLockSetUp, "mutex or condition set-up"},
    {Kind::kAffinity, "sched_{s,g}etaffinity"},
    {Kind::kPriority, "setpriority"},
    {Kind::kThreadName, "prctl (name)"},
    {Kind::kClock, "clock"},
    {Kind::kMakeDirectory, "mkdir"},
    {Kind::kOpenStream, "fopen"},
    {Kind::kWriteStream, "fwrite"},
    {Kind::kCloseStream, "fclose"},
    {Kind::kOpenFile, "open"},
    {Kind::kFileStatus, "fstat"},
    {Kind::kReadFile, "read"},
};

constexpr int kShortTrials = 40;

bool is_short() {
  const char* form = std::getenv("HARDEN");
  return form != nullptr && std::strcmp(form, "short") == 0;
}

char g_now[160];

void hang(int) {
  const char said[] = "no end after 10 s: ";
  static_cast<void>(!write(STDERR_FILENO, said, sizeof(said) - 1));
  static_cast<void>(!write(STDERR_FILENO, g_now, std::strlen(g_now)));
  _exit(1);
}

struct Counts {
  int sites = 0;
  int once = 0;        // trials
  int from_there = 0;  // trials
  int wrong = 0;
};

int attempt(Stage& stage, const Scene& scene, const NamedKind& kind, int nth, Span span,
            Counts* counts) {
  std::snprintf(g_now, sizeof(g_now), "%s: %s %d%s\n", scene.name, kind.name, nth,
                span == Span::kFromThere ? " and all later ones" : "");
  alarm(kLongestCallSeconds);
  std::string wrong;
  const int calls = stage.run(scene, kind.kind, nth, span, &wrong);
  alarm(0);
  if (wrong.empty()) return calls;
  ++counts->wrong;
  std::printf("WRONG: %s  %s\n", g_now, wrong.c_str());
  return calls;
}

// k from 1 until nothing fails, in both spans; in the short form about kShortTrials of them.
void try_scene(Stage& stage, const Scene& scene, const NamedKind& kind, Counts* counts) {
  const int sites = attempt(stage, scene, kind, 0, Span::kOnce, counts);
  const int step = is_short() ? 1 + sites / kShortTrials : 1;
  counts->sites += sites;
  for (const Span span : {Span::kOnce, Span::kFromThere}) {
    for (int nth = 1;; nth += step) {
      if (attempt(stage, scene, kind, nth, span, counts) < nth) break;
      ++(span == Span::kOnce ? counts->once : counts->from_there);
    }
  }
  const bool listed = sites > 0 || kind.kind == Kind::kAllocation;
  if (listed) std::printf("%-28s %-26s %5d sites\n", scene.name, kind.name, sites);
}

template <size_t count>
int try_all(const NamedKind (&kinds)[count], int rounds) {
  Stage stage;
  Counts all;
  for (const NamedKind& kind : kinds) {
    Counts counts;
    for (int round = 0; round < rounds; ++round) {
      for (const Scene& scene : kScenes) try_scene(stage, scene, kind, &counts);
    }
    if (counts.sites == 0) std::printf("%-28s %-26s     0 sites\n", "all", kind.name);
    all.sites += counts.sites / rounds;
    all.once += counts.once;
    all.from_there += counts.from_there;
    all.wrong += counts.wrong;
  }
  std::printf(
      "result: %d sites in %zu calls; %d trials in which one failed, %d from one on; "
      "%d wrong\n",
      all.sites, kScenes.size(), all.once, all.from_there, all.wrong);
  return all.wrong == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string row = argc > 1 ? argv[1] : "";
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 1;
  std::signal(SIGALRM, hang);
  // jansson's memory is the program's own, so that it fails and is counted like the library's.
  json_set_alloc_funcs(std::malloc, std::free);
  if (rounds > 0 && row == "allocations") return try_all(kAllocations, rounds);
  if (rounds > 0 && row == "system_calls") return try_all(kSystemCalls, rounds);
  std::fprintf(stderr, "harden_faults allocations|system_calls [ROUNDS]\n");
  return 2;
}
