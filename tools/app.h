// The command line.
#ifndef VOREL_TOOLS_APP_H_
#define VOREL_TOOLS_APP_H_

namespace tool {

// Runs the command and returns its exit status; every failure ends as a line on standard error.
[[nodiscard]] int run_command(int argc, char** argv);

}  // namespace tool

#endif  // VOREL_TOOLS_APP_H_
