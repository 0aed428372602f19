#include "Benchmarks/ZRMActivationBenchmark.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Benchmarks/ZRMHostRuns.h"
#include "Benchmarks/ZRMLoopbackServer.h"
#include "Benchmarks/ZRMQuantiles.h"
#include "Benchmarks/ZRMRiskServerRun.h"

namespace {

constexpr auto kAtMost = ZRMFigure::Must::BeAtMost;
constexpr int kRuns = 15;

double activation(const ZRMHostRuns& host, const std::string& home, double pending) {
    const auto measured = host.run(home, {{"scenario", "activate"}});
    zrm_mustHold(zrm_number(measured, "pending") >= pending, "no event is lost");
    return zrm_number(measured, "milliseconds");
}

// The resource bundles with the server's root in them.
std::string makeResources(const ZRMTestDirectory& directory, const std::string& rootCertificate) {
    namespace files = std::filesystem;
    const auto path = directory.below("resources");
    files::create_directories(path + "/ZRMMobileKitResources.bundle");
    files::copy_file(rootCertificate, path + "/ZRMMobileKitResources.bundle/VelorinRootCA.crt");
    files::copy(ZRM_STATISTICS_RESOURCES, path + "/ZRMStatisticsResources.bundle",
                files::copy_options::recursive);
    return path;
}

bool holdsSettings(const std::string& home) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
        if (entry.path().filename() == "zrm.settings" && entry.is_regular_file()) {
            return true;
        }
    }
    return false;
}

// Lets the host fetch its settings.
void storeSettings(const ZRMHostRuns& host, const std::string& home) {
    auto run = host.start(home, {{"scenario", "activate"}, {"hold", true}});
    run.readLine();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!holdsSettings(home)) {
        zrm_mustHold(std::chrono::steady_clock::now() < end, "the settings are stored");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    run.writeLine("");
    run.waitForSuccess();
}

}  // namespace

ZRMFigures zrm_measureActivation() {
    constexpr int kEvents = 10000;
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    ZRMHostRuns host({refusing.port(), refusing.port(), {}});
    const auto full = host.makeHomeWithEvents(kEvents);
    const auto empty = host.makeHome();
    activation(host, empty, 0);
    std::vector<double> first;
    std::vector<double> withNone;
    std::vector<double> withEvents;
    for (int run = 0; run < kRuns; ++run) {
        first.push_back(activation(host, host.makeHome(), 0));
        withNone.push_back(activation(host, empty, 0));
        withEvents.push_back(activation(host, full, kEvents));
    }
    return {
        {"activation, the first on a device", zrm_median(first), "ms", 25, kAtMost},
        {"activation, empty store", zrm_median(withNone), "ms", 5, kAtMost},
        {"activation, 10,000 stored events, none lost", zrm_median(withEvents), "ms", 8, kAtMost},
    };
}

ZRMFigures zrm_measureStoredSettings() {
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    ZRMHostRuns host({refusing.port(), refusing.port(), {}});
    const auto& directory = host.directory();
    const auto settings =
        directory.writeFile("settings.json", R"({"configUpdateInterval": "P1D"})");
    const auto pki = directory.below("pki");
    const auto with = host.makeHome();
    const auto without = host.makeHome();
    {
        const ZRMRiskServerRun server({"--pki", pki, "--settings", settings},
                                      directory.below("server.log"));
        host.setResources(makeResources(directory, pki + "/VelorinRootCA.crt"));
        host.setFarEnd({refusing.port(), server.port(), pki + "/tls-ca.pem"});
        storeSettings(host, with);
    }
    host.setFarEnd({refusing.port(), refusing.port(), {}});
    activation(host, without, 0);
    std::vector<double> added;
    for (int run = 0; run < kRuns; ++run) {
        const auto plain = activation(host, without, 0);
        added.push_back(activation(host, with, 0) - plain);
    }
    return {{"activation: what reading stored, signed settings adds", zrm_median(added), "ms", 2,
             kAtMost}};
}

ZRMFigures zrm_measureAnalysis() {
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    ZRMHostRuns host({refusing.port(), refusing.port(), {}});
    std::vector<double> caller;
    std::vector<double> longestTask;
    for (int run = 0; run < 5; ++run) {
        const auto measured =
            host.run(host.makeHome(), {{"scenario", "analyze"}, {"timesMainQueue", true}});
        caller.push_back(zrm_number(measured, "callerMilliseconds"));
        longestTask.push_back(zrm_number(measured, "longestTaskMilliseconds"));
    }
    return {
        {"analysis of the environment: time of the caller", zrm_median(caller), "ms", 1, kAtMost},
        {"analysis of the environment: longest task on the main queue", zrm_median(longestTask),
         "ms", 1, kAtMost},
    };
}
