#include <chrono>
#include <iostream>

#include "Tests/Simulation/ZRMSimulation.h"
#include "Tests/Simulation/ZRMSimulationOptions.h"

namespace {

struct Outcome {
    bool isGood = false;
    std::uint64_t digest = 0;
};

Outcome runOnce(const ZRMSimulationOptions& options, std::uint64_t seed) {
    ZRMSimulation simulation(seed);
    if (options.history) {
        simulation.keepWholeHistory();
    }
    while (!simulation.failure() && simulation.steps() < options.steps) {
        if (options.flood && simulation.steps() == options.steps / 2) {
            simulation.flood();
        }
        simulation.step();
    }
    if (!simulation.failure()) {
        simulation.finish();
    }
    if (simulation.failure()) {
        for (const auto& event : simulation.history()) {
            std::cout << "  " << event << '\n';
        }
        std::cout << "FAILED at step " << simulation.steps() << ": " << *simulation.failure()
                  << "\nreplay: zrm-simulation --seed " << seed << " --steps " << options.steps
                  << (options.flood ? " --flood" : "") << std::endl;
    }
    std::cout << simulation.summary() << std::endl;
    return {!simulation.failure(), simulation.digest()};
}

bool run(const ZRMSimulationOptions& options, std::uint64_t seed) {
    const auto outcome = runOnce(options, seed);
    if (!outcome.isGood || !options.twice) {
        return outcome.isGood;
    }
    const auto again = runOnce(options, seed);
    if (again.digest != outcome.digest) {
        std::cout << "FAILED: two runs of seed " << seed << " differ" << std::endl;
    }
    return again.isGood && again.digest == outcome.digest;
}

}  // namespace

int main(int count, char** arguments) {
    int exitCode = 0;
    const auto options = zrm_simulationOptions(count, arguments, exitCode);
    if (!options) {
        return exitCode;
    }
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(options->seconds);
    std::uint64_t done = 0;
    while (done < options->seeds || Clock::now() < end) {
        if (!run(*options, options->seed + done)) {
            return 1;
        }
        ++done;
    }
    std::cout << done << " runs of " << options->steps << " steps are good" << std::endl;
    return 0;
}
