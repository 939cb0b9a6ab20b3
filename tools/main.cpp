#include "tools/app.h"

int main(int argc, char** argv) { return tool::run_command(argc, argv); }
