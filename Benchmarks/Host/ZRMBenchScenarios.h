// What zrm-bench-host can be asked to do.
#pragma once

#include <boost/json/object.hpp>

// Does what "scenario" in `options` names and writes what it measured to standard output, one line
// of JSON. Failures throw std::exception.
void zrm_runBenchScenario(const boost::json::object& options);
