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
  FaultScope(Kind kind, int nth);
  ~FaultScope();
  FaultScope(const FaultScope&) = delete;
  FaultScope& operator=(const FaultScope&) = delete;

  // Calls seen so far, the failed one included.
  int calls() const;
  bool fired() const;

 private:
  int nth_;
};

#endif  // VOREL_TESTS_SUPPORT_FAULTS_H_
