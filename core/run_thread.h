// The driver thread of one frame.
#ifndef VOREL_CORE_RUN_THREAD_H_
#define VOREL_CORE_RUN_THREAD_H_

// Entry; `run` is the frame's vorel_thread record. Waits for the workers to be up, runs the stages
// and stops the workers. Returns its argument.
void* vorel_run_thread(void* run);

#endif  // VOREL_CORE_RUN_THREAD_H_
