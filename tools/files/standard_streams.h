// Standard input, output and error.
#ifndef VOREL_TOOLS_FILES_STANDARD_STREAMS_H_
#define VOREL_TOOLS_FILES_STANDARD_STREAMS_H_

namespace tool {

// Fills the place of a standard stream that the caller has closed: the next file that is opened
// would get its number, and what is printed would go into that file. Reading from such an input and
// writing to such an output fail; messages are lost. Call once, before anything is opened.
void hold_standard_streams();

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_STANDARD_STREAMS_H_
