// Runs the benchmarks and prints their figures as a table, and as JSON where asked.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>

#include <CLI/CLI.hpp>

#include "Benchmarks/ZRMBenchmark.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

constexpr int kAllMet = 0;
constexpr int kSomeNotMet = 1;

bool write(const std::string& path, const ZRMJsonArray& figures) {
    const auto text = zrm_compactJsonText(figures);
    std::ofstream file(path);
    file << (text ? text.value() : "[]") << '\n';
    return file.good();
}

// What could not be measured is said and counts as not met.
ZRMFigures measured(const ZRMBenchmark& benchmark, bool& isWhole) {
    try {
        return benchmark.measure();
    } catch (const std::exception& failure) {
        std::cerr << "zrm-bench: " << benchmark.name << ": " << failure.what() << std::endl;
        isWhole = false;
        return {};
    }
}

int run(const std::string& only, const std::string& jsonPath, int kills) {
    ZRMJsonArray all;
    bool areAllMet = true;
    for (const auto& benchmark : zrm_benchmarks(kills)) {
        if (!only.empty() && only != benchmark.name) {
            continue;
        }
        for (const auto& figure : measured(benchmark, areAllMet)) {
            std::fputs(zrm_tableLine(figure).c_str(), stdout);
            std::fflush(stdout);
            all.push_back(zrm_jsonFromFigure(figure));
            areAllMet = areAllMet && figure.isMet();
        }
    }
    if (!jsonPath.empty() && !write(jsonPath, all)) {
        std::cerr << "zrm-bench: cannot write " << jsonPath << '\n';
        return kSomeNotMet;
    }
    return areAllMet ? kAllMet : kSomeNotMet;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Measures ZRMMobileKit.", "zrm-bench"};
    std::string only;
    std::string jsonPath;
    app.add_option("--only", only, "The name of one benchmark");
    app.add_option("--json", jsonPath, "Writes the figures to this file as well");
    int kills = 20;
    app.add_option("--kills", kills, "How often a reporting host is killed at each speed")
        ->check(CLI::PositiveNumber);
    CLI11_PARSE(app, argc, argv);
    return run(only, jsonPath, kills);
}
