#include "Benchmarks/ZRMKillBenchmark.h"

#include <string>

#include "Benchmarks/ZRMChildProcess.h"
#include "Benchmarks/ZRMHostRuns.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

ZRMFigures zrm_measureKills(int kills) {
    const ZRMTestDirectory directory;
    ZRMChildProcess test({ZRM_PYTHON, ZRM_CRASH_TEST, "--reporter", ZRM_REPORTER, "--trials",
                          std::to_string(kills), "--json"},
                         directory.below("crash.log"));
    const auto paced = zrm_measuredFromLine(test.readLine());
    const auto flatOut = zrm_measuredFromLine(test.readLine());
    test.waitForSuccess();
    const std::string name = std::to_string(kills) + " kills -9 ";
    return {
        {name + "at 100 events a second: most lost but the last report",
         zrm_number(paced, "mostLostButLast"), "events", 0, ZRMFigure::Must::BeAtMost},
        {name + "flat out: oldest lost report before the kill",
         zrm_number(flatOut, "oldestLostSeconds") * 1000, "ms", 50, ZRMFigure::Must::BeAtMost},
    };
}
