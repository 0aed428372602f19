#include <exception>
#include <iostream>

#include "Tools/zrm-inspect/ZRMInspector.h"

int main(int argc, char** argv) {
    try {
        return zrm_inspect(argc, argv, std::cout, std::cerr);
    } catch (const std::exception& failure) {
        std::cerr << "zrm-inspect: " << failure.what() << std::endl;
        return 1;
    }
}
