// The library's own memory, made so that an access too far ends the program.
#ifndef VOREL_HARDEN_GUARDED_ALLOCATIONS_H_
#define VOREL_HARDEN_GUARDED_ALLOCATIONS_H_

#include "tests/support/guarded_plane.h"

// While an object lives, what the program's objects get from malloc and calloc ends, or begins, at
// an unreadable page. One at a time; blocks may be freed later.
class GuardedAllocations {
 public:
  explicit GuardedAllocations(GuardedBytes::Guard guard);
  ~GuardedAllocations();
  GuardedAllocations(const GuardedAllocations&) = delete;
  GuardedAllocations& operator=(const GuardedAllocations&) = delete;
};

#endif  // VOREL_HARDEN_GUARDED_ALLOCATIONS_H_
