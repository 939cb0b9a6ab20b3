// The calls of the system that FaultScope makes fail; the linker sends the objects' calls here
// (--wrap).
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

#include "tests/support/faults.h"

namespace {

using Kind = FaultScope::Kind;

// Whether the call has to fail, with `error` as its reason.
bool fails(Kind kind, int error) {
  if (!FaultScope::is_due(kind)) return false;
  errno = error;
  return true;
}

}  // namespace

extern "C" {
int __real_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes);
int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
  if (FaultScope::is_due(Kind::kLockSetUp)) return ENOMEM;
  return __real_pthread_mutex_init(mutex, attributes);
}

int __real_pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes);
int __wrap_pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes) {
  if (FaultScope::is_due(Kind::kLockSetUp)) return ENOMEM;
  return __real_pthread_cond_init(condition, attributes);
}

// Taken as functions of a fixed number of words, which the callers' registers hold alike.
long __real_syscall(long number, long a, long b, long c, long d, long e, long f);
long __wrap_syscall(long number, long a, long b, long c, long d, long e, long f) {
  if (number == SYS_sched_setaffinity && fails(Kind::kAffinity, EINVAL)) return -1;
  return __real_syscall(number, a, b, c, d, e, f);
}

int __real_prctl(int option, unsigned long a, unsigned long b, unsigned long c, unsigned long d);
int __wrap_prctl(int option, unsigned long a, unsigned long b, unsigned long c, unsigned long d) {
  return fails(Kind::kThreadName, EFAULT) ? -1 : __real_prctl(option, a, b, c, d);
}

int __real_open(const char* path, int flags, mode_t mode);
int __wrap_open(const char* path, int flags, mode_t mode) {
  return fails(Kind::kOpenFile, EMFILE) ? -1 : __real_open(path, flags, mode);
}

int __real_sched_getaffinity(pid_t thread, size_t bytes, cpu_set_t* set);
int __wrap_sched_getaffinity(pid_t thread, size_t bytes, cpu_set_t* set) {
  return fails(Kind::kAffinity, EINVAL) ? -1 : __real_sched_getaffinity(thread, bytes, set);
}

int __real_setpriority(int which, id_t who, int value);
int __wrap_setpriority(int which, id_t who, int value) {
  return fails(Kind::kPriority, EACCES) ? -1 : __real_setpriority(which, who, value);
}

int __real_clock_gettime(clockid_t clock, timespec* time);
int __wrap_clock_gettime(clockid_t clock, timespec* time) {
  return fails(Kind::kClock, EINVAL) ? -1 : __real_clock_gettime(clock, time);
}

time_t __real_time(time_t* now);
time_t __wrap_time(time_t* now) { return fails(Kind::kClock, EFAULT) ? -1 : __real_time(now); }

int __real_mkdir(const char* path, mode_t mode);
int __wrap_mkdir(const char* path, mode_t mode) {
  return fails(Kind::kMakeDirectory, ENOSPC) ? -1 : __real_mkdir(path, mode);
}

FILE* __real_fopen(const char* path, const char* mode);
FILE* __wrap_fopen(const char* path, const char* mode) {
  return fails(Kind::kOpenStream, EMFILE) ? nullptr : __real_fopen(path, mode);
}

size_t __real_fwrite(const void* data, size_t bytes, size_t count, FILE* file);
size_t __wrap_fwrite(const void* data, size_t bytes, size_t count, FILE* file) {
  return fails(Kind::kWriteStream, ENOSPC) ? 0 : __real_fwrite(data, bytes, count, file);
}

int __real_fclose(FILE* file);
int __wrap_fclose(FILE* file) {
  const bool fail = FaultScope::is_due(Kind::kCloseStream);
  const int result = __real_fclose(file);
  if (!fail) return result;
  errno = EIO;
  return EOF;
}

int __real_fstat(int file, struct stat* found);
int __wrap_fstat(int file, struct stat* found) {
  return fails(Kind::kFileStatus, EIO) ? -1 : __real_fstat(file, found);
}

ssize_t __real_read(int file, void* data, size_t bytes);
ssize_t __wrap_read(int file, void* data, size_t bytes) {
  return fails(Kind::kReadFile, EIO) ? -1 : __real_read(file, data, bytes);
}
}
