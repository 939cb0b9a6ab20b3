/* What the library calls of libcutils, for linking only. */
#include <stdatomic.h>
#include <stdint.h>

atomic_bool atrace_is_ready;
uint64_t atrace_enabled_tags;

void atrace_setup(void) {}
/* Inline or in the library, as the platform's version has it. */
void atrace_init(void) {}
uint64_t atrace_get_enabled_tags(void) { return atrace_enabled_tags; }
void atrace_begin_body(const char* name) { (void)name; }
void atrace_end_body(void) {}
void atrace_int64_body(const char* name, int64_t value) {
  (void)name;
  (void)value;
}

int property_get(const char* key, char* value, const char* default_value) {
  (void)key;
  (void)value;
  (void)default_value;
  return 0;
}
