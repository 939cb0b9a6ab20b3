// Name, processors and priority of the calling thread.
#ifndef VOREL_PLATFORM_THREAD_ATTRIBUTES_H_
#define VOREL_PLATFORM_THREAD_ATTRIBUTES_H_

#include <cstdint>

// Sets the name that debuggers and /proc show; cut to 15 characters.
void set_thread_name(const char* name);

// Binds the thread to the CPUs of a 32-bit mask. Returns the system call's result.
int set_thread_affinity(uint32_t mask);

// First 64 bits of the thread's CPU set; 0 when it cannot be read.
uint64_t thread_affinity();

// Sets the nice value. Needs a privilege for values below 0; failing is no error.
void set_thread_nice(int nice_value);

#endif  // VOREL_PLATFORM_THREAD_ATTRIBUTES_H_
