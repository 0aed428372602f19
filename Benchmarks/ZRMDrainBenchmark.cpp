#include "Benchmarks/ZRMDrainBenchmark.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Benchmarks/ZRMHostRuns.h"
#include "Benchmarks/ZRMLoopbackServer.h"
#include "Benchmarks/ZRMQuantiles.h"
#include "Benchmarks/ZRMRiskServerRun.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr auto kAtMost = ZRMFigure::Must::BeAtMost;
constexpr auto kAtLeast = ZRMFigure::Must::BeAtLeast;
constexpr auto kKnown = ZRMFigure::Must::BeKnown;
constexpr int kRuns = 5;
constexpr int kEvents = 2000;

// Each login arrived, and once; they are told apart by the moment and the user that they carry.
void checkArrived(const std::string& eventsPath) {
    std::ifstream file(eventsPath);
    std::set<std::string> events;
    int uploads = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.find(R"("eventType":"UserLoginEvent")") != std::string::npos) {
            events.insert(line.substr(std::min(line.find("\"event\":"), line.size())));
            ++uploads;
        }
    }
    zrm_mustHold(uploads == kEvents && std::ssize(events) == kEvents,
                 "each login arrived once: " + std::to_string(uploads) + " uploads of " +
                     std::to_string(events.size()) + ", not " + std::to_string(kEvents));
}

double drainedPerSecond(const ZRMHostRuns& host, const std::string& home) {
    const auto measured = host.run(home, {{"scenario", "drain"}});
    return kEvents / zrm_number(measured, "seconds");
}

// The reference risk server, which reads every upload and writes it to a file before it answers.
double medianDrain(ZRMHostRuns& host, const std::vector<std::string>& homes, bool isSecure) {
    const auto& directory = host.directory();
    const auto pki = directory.below("pki");
    std::vector<double> rates;
    for (const auto& home : homes) {
        const auto events = home + ".jsonl";
        std::vector<std::string> options{"--pki", pki, "--events", events};
        if (!isSecure) {
            options.emplace_back("--plain");
        }
        const ZRMRiskServerRun server(options, directory.below("server.log"));
        host.setFarEnd(
            {server.port(), server.port(), isSecure ? pki + "/tls-ca.pem" : std::string()});
        rates.push_back(drainedPerSecond(host, home));
        checkArrived(events);
    }
    return zrm_median(std::move(rates));
}

ZRMLoopbackServer::Seen drainIntoCounter(ZRMHostRuns& host, const std::string& home) {
    const ZRMLoopbackServer server(ZRMLoopbackServer::Manner::Answers);
    host.setFarEnd({server.port(), ZRMLoopbackSocket(ZRMLoopbackSocket::Kind::Refuses).port(), {}});
    drainedPerSecond(host, home);
    return server.seen();
}

struct Attempts {
    double uploads;
    double all;  // settings and tag requests as well
};

// What the library asks for in 20 seconds with 100 reports in each of them.
Attempts attemptsOn(ZRMSimulatedDevice& device) {
    constexpr const char* kModel = "ZRMStatisticsModel.json";
    device.resourceBundles().put(
        "ZRMStatisticsResources.bundle", kModel,
        zrm_dataFromText(zrm_testFileText(std::string(ZRM_STATISTICS_RESOURCES) + "/" + kModel)));
    const ZRMScopedPlatform installed(device);
    auto configuration = ZRMMobileServiceConfiguration::configuration();
    configuration.setStatisticsUrl("https://risk.example.com/stat?cid=bench");
    const auto service = ZRMMobileService::createServiceWithConfiguration(configuration);
    service->activateWithCompletionHandler({});
    device.runUntilIdle();
    constexpr int kReports = 2000;
    for (int report = 0; report < kReports; ++report) {
        service->sendLogin("user-" + std::to_string(report), ZRMLoginResult::Success);
        device.advanceBy(0.01);
    }
    zrm_mustHold(service->pendingEventCount() >= kReports, "every event is stored");
    auto& network = device.network();
    return {static_cast<double>(network.requestsTo("/stat").size()),
            static_cast<double>(network.requests().size())};
}

}  // namespace

ZRMFigures zrm_measureDrain() {
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    ZRMHostRuns host({refusing.port(), refusing.port(), {}});
    const auto filled = host.makeHomeWithEvents(kEvents);
    std::vector<std::string> homes;
    for (int index = 0; index < 2 * kRuns + 1; ++index) {
        homes.push_back(host.makeHome());
        std::filesystem::copy(filled, homes.back(), std::filesystem::copy_options::recursive);
    }
    const std::vector<std::string> half(homes.begin(), homes.begin() + kRuns);
    const std::vector<std::string> otherHalf(homes.begin() + kRuns, homes.begin() + 2 * kRuns);
    const auto plain = medianDrain(host, half, false);
    const auto secure = medianDrain(host, otherHalf, true);
    const auto seen = drainIntoCounter(host, homes.back());
    zrm_mustHold(seen.requestBytes.size() >= kEvents, "every event is uploaded");
    return {
        {"drain of 2,000 stored events, plain HTTP", plain, "1/s", 4500, kAtLeast},
        {"drain of 2,000 stored events, TLS", secure, "1/s", 1500, kAtLeast},
        {"drain: most uploads at once", static_cast<double>(seen.mostAtOnce), "requests", 4,
         kAtMost},
        {"drain: uploads of an event beyond its first", static_cast<double>(seen.repeatedBodies),
         "requests", 0, kAtMost},
    };
}

ZRMFigures zrm_measureExit() {
    constexpr int kReports = 100;
    constexpr int kUploads = 4;
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    std::vector<double> seconds;
    for (int run = 0; run < kRuns; ++run) {
        const ZRMLoopbackServer silent(ZRMLoopbackServer::Manner::KeepsSilent);
        ZRMHostRuns host({silent.port(), refusing.port(), {}});
        const auto home = host.makeHome();
        auto leaving = host.start(home, {{"scenario", "leave"}, {"count", kReports}});
        leaving.readLine();
        silent.awaitRequests(kUploads);
        leaving.writeLine("go");
        const auto left = zrm_number(zrm_measuredFromLine(leaving.readLine()), "nanoseconds");
        leaving.waitForSuccess();
        const std::chrono::duration<double, std::nano> now =
            std::chrono::steady_clock::now().time_since_epoch();
        seconds.push_back((now.count() - left) / 1e9);
        const auto found = host.run(home, {{"scenario", "activate"}});
        zrm_mustHold(zrm_number(found, "pending") >= kReports, "nothing stored is lost");
    }
    return {{"exit with uploads under way that nobody answers, nothing stored lost",
             zrm_median(seconds), "s", 0.2, kAtMost}};
}

ZRMFigures zrm_measureAttemptsWithoutNetwork() {
    ZRMSimulatedDevice offline;
    offline.setConnected(false);
    ZRMSimulatedDevice refused;
    refused.network().handleEverything([](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotConnectToHost);
    });
    const auto unconnected = attemptsOn(offline);
    const auto refusals = attemptsOn(refused);
    const std::string name = "attempts in 20 s at 100 events a second, ";
    return {
        {name + "no network: all requests", unconnected.all, "attempts", 16, kAtMost},
        {name + "network refusing: uploads", refusals.uploads, "attempts", 16, kAtMost},
        {name + "network refusing: all requests", refusals.all, "attempts", 0, kKnown},
    };
}
