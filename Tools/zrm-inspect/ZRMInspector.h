// The command line of zrm-inspect.
#pragma once

#include <ostream>

// Runs the inspection that is asked for and prints its report as one line of JSON. Returns the exit
// status: 0 when the input is good, and after --help; 1 when it is not; 2 after wrong usage.
int zrm_inspect(int argc, const char* const* argv, std::ostream& out, std::ostream& err);
