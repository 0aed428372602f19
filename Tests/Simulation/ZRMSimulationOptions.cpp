#include "Tests/Simulation/ZRMSimulationOptions.h"

#include <CLI/CLI.hpp>

std::optional<ZRMSimulationOptions> zrm_simulationOptions(int count, const char* const* arguments,
                                                          int& exitCode) {
    constexpr int kWrongUsage = 2;
    ZRMSimulationOptions options;
    CLI::App app(
        "Drives the whole library on a simulated device by a random schedule, and checks "
        "what it promises. A failing seed replays exactly.");
    app.add_option("--seed", options.seed, "Of the first run");
    app.add_option("--seeds", options.seeds, "Runs, each with the next seed")
        ->check(CLI::PositiveNumber);
    app.add_option("--steps", options.steps, "Of each run")->check(CLI::PositiveNumber);
    app.add_option("--seconds", options.seconds, "Go on with further seeds for so long");
    app.add_flag("--flood", options.flood, "Fill the queue over its limit within each run");
    app.add_flag("--twice", options.twice, "Run each seed twice and compare the runs");
    app.add_flag("--history", options.history, "Show all that happened before a failure");
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? 0 : kWrongUsage;
        return std::nullopt;
    }
    return options;
}
