// Makes allocations and thread creation fail on demand.
#ifndef VOREL_TESTS_SUPPORT_FAULTS_H_
#define VOREL_TESTS_SUPPORT_FAULTS_H_

// While an object lives, the `nth` (1-based) of the calls that the program's own objects make
// fails, on whatever thread it is made; 0 only counts. Test programs that use it link
// `test_faults`.
class FaultScope {
 public:
  enum class Kind {
    kAllocation,    // malloc, calloc, new (std::nothrow)
    kThreadCreate,  // pthread_create fails with EAGAIN
  };
  // Of threads only those that run `thread_function`, when it is not null.
  FaultScope(Kind kind, int nth, void* (*thread_function)(void*) = nullptr);
  ~FaultScope();
  FaultScope(const FaultScope&) = delete;
  FaultScope& operator=(const FaultScope&) = delete;

  // Calls seen so far, the failed one included.
  int calls() const;
  bool fired() const;

 private:
  int nth_;
};

// Calls `body` with a scope in which the first call of that kind fails, then the second and so on,
// until `body` does not make that many; it then has had a run without a fault too. Returns the
// number of calls that failed.
template <typename Body>
int for_each_fault(FaultScope::Kind kind, Body body) {
  for (int nth = 1;; ++nth) {
    const FaultScope fault(kind, nth);
    body(nth);
    if (!fault.fired()) return nth - 1;
  }
}

#endif  // VOREL_TESTS_SUPPORT_FAULTS_H_
