#include "Benchmarks/ZRMLibraryBenchmark.h"

#include <filesystem>

#include "Benchmarks/ZRMChildProcess.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

ZRMFigures zrm_measureLibrary() {
    const ZRMTestDirectory directory;
    const auto stripped = directory.below("library.so");
    ZRMChildProcess strip({ZRM_STRIP, "-o", stripped, ZRM_LIBRARY}, directory.below("strip.log"));
    strip.waitForSuccess();
    constexpr double kKilobyte = 1000;
    return {{"the shared library, stripped",
             static_cast<double>(std::filesystem::file_size(stripped)) / kKilobyte, "KB", 800,
             ZRMFigure::Must::BeAtMost}};
}
