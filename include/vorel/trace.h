/* libvorel: what it does while it runs, as slices and counters, for tools that draw time lines.
 *
 * On Android the system's tracing gets all of it under the category "camera", without a call of
 * this header: perfetto or atrace, then look at the threads of the camera process. Elsewhere, and
 * for recorders of one's own, a sink receives it. This header compiles as C99 and as C++. */
#ifndef VOREL_TRACE_H_
#define VOREL_TRACE_H_

#include <stdint.h>

#include "vorel/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Kinds of events. Slices of one thread are nested: an end belongs to the thread's latest begin. */
#define VOREL_TRACE_BEGIN 0
#define VOREL_TRACE_END 1
#define VOREL_TRACE_COUNTER 2

/* `name` is a literal of the library, null at the end of a slice. `value` is a counter's. */
typedef void (*vorel_trace_sink)(void* user, int32_t kind, const char* name, int64_t value);

/* Calls `sink(user, ...)` for every event from now on, on the thread that the event happens on, so
 * on several at once. Null ends it. Set it while no frame is processed; without one, and where the
 * system's tracing is off, an event costs one load. */
VOREL_EXPORT void vorel_set_trace_sink(vorel_trace_sink sink, void* user);

#ifdef __cplusplus
}
#endif

#endif /* VOREL_TRACE_H_ */
