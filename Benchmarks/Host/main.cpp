// usage: zrm-bench-host OPTIONS, a JSON object that zrm-bench makes.
#include <exception>
#include <iostream>

#include <boost/json/parse.hpp>

#include "Benchmarks/Host/ZRMBenchScenarios.h"

int main(int argc, char** argv) {
    try {
        zrm_runBenchScenario(boost::json::parse(argc == 2 ? argv[1] : "").as_object());
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "zrm-bench-host: " << failure.what() << std::endl;
        return 1;
    }
}
