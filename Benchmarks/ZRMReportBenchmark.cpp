#include "Benchmarks/ZRMReportBenchmark.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Benchmarks/ZRMHostRuns.h"
#include "Benchmarks/ZRMLoopbackServer.h"
#include "Benchmarks/ZRMQuantiles.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

constexpr auto kAtMost = ZRMFigure::Must::BeAtMost;
constexpr auto kAtLeast = ZRMFigure::Must::BeAtLeast;
constexpr double kKibibytes = 1024;

double medianOf(const std::vector<ZRMDictionary>& runs, const char* key) {
    std::vector<double> values;
    for (const auto& run : runs) {
        values.push_back(zrm_number(run, key));
    }
    return zrm_median(std::move(values));
}

// Against a port that refuses, each run in a home of its own.
std::vector<ZRMDictionary> runReports(int runs, std::size_t count, std::size_t everyMicroseconds) {
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    ZRMHostRuns host({refusing.port(), refusing.port(), {}});
    std::vector<ZRMDictionary> measured;
    for (int run = 0; run < runs; ++run) {
        measured.push_back(host.run(
            host.makeHome(),
            {{"scenario", "report"}, {"count", count}, {"everyMicroseconds", everyMicroseconds}}));
        zrm_mustHold(zrm_number(measured.back(), "pending") >= static_cast<double>(count),
                     "every event is stored");
        // Otherwise the count of the caller's says nothing.
        zrm_mustHold(zrm_number(measured.back(), "processSyncs") > 0, "the store syncs");
    }
    return measured;
}

double mostCallerSyncs(const std::vector<ZRMDictionary>& runs) {
    double most = 0;
    for (const auto& run : runs) {
        most = std::max(most, zrm_number(run, "callerSyncs"));
    }
    return most;
}

struct Sample {
    std::string payload;         // JSON
    std::string encodedPayload;  // the same in base64url
    std::size_t requestBytes = 0;
};

Sample sampleOf(const std::string& body, std::size_t requestBytes) {
    const auto document = zrm_jsonFromData(zrm_ungzipData(zrm_dataFromText(body)));
    zrm_mustHold(document && document.value().is_object(), "the upload is a JSON document");
    Sample sample;
    sample.encodedPayload = document.value().get_object().at("payload").as_string();
    const auto payload =
        zrm_dataFromBase64String(zrm_base64FromBase64UrlString(sample.encodedPayload));
    zrm_mustHold(payload.has_value(), "the payload is base64url");
    sample.payload = zrm_textFromData(*payload);
    sample.requestBytes = requestBytes;
    return sample;
}

// A login as it arrives.
Sample takeSample() {
    const ZRMLoopbackServer server(ZRMLoopbackServer::Manner::Answers);
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    ZRMHostRuns host({server.port(), refusing.port(), {}});
    const auto home = host.makeHomeWithEvents(1);
    static_cast<void>(host.run(home, {{"scenario", "drain"}}));
    const auto seen = server.seen();
    for (std::size_t index = 0; index < seen.bodies.size(); ++index) {
        auto sample = sampleOf(seen.bodies[index], seen.requestBytes[index]);
        if (sample.payload.find("UserLoginEvent") != std::string::npos) {
            return sample;
        }
    }
    throw std::runtime_error("no login arrived");
}

}  // namespace

ZRMFigures zrm_measureReportsFlatOut() {
    constexpr int kRuns = 5;
    const auto runs = runReports(kRuns, 10000, 0);
    const std::string login = "login, 10,000 flat out, network refusing: ";
    return {
        {login + "p50", medianOf(runs, "p50"), "us", 50, kAtMost},
        {login + "p99", medianOf(runs, "p99"), "us", 150, kAtMost},
        {login + "longest", medianOf(runs, "max") / 1000, "ms", 5, kAtMost},
        {login + "disk syncs on the caller, most of a run", mostCallerSyncs(runs), "syncs", 0,
         kAtMost},
        {"events a second until all 10,000 are stored, synced", medianOf(runs, "storedPerSecond"),
         "1/s", 15000, kAtLeast},
        {"resident memory after activation", medianOf(runs, "activatedKiB") / kKibibytes, "MiB", 16,
         kAtMost},
        {"resident memory after 10,000 events flat out", medianOf(runs, "reportedKiB") / kKibibytes,
         "MiB", 24, kAtMost},
    };
}

ZRMFigures zrm_measureReportsAtIntervals() {
    constexpr int kRuns = 3;
    const auto runs = runReports(kRuns, 1000, 5000);
    const std::string login = "login, one every 5 ms, network refusing: ";
    return {
        {login + "p50", medianOf(runs, "p50"), "us", 60, kAtMost},
        {login + "p99", medianOf(runs, "p99"), "us", 200, kAtMost},
        {login + "disk syncs on the caller, most of a run", mostCallerSyncs(runs), "syncs", 0,
         kAtMost},
    };
}

ZRMFigures zrm_measureReportsOverBareCost() {
    constexpr int kRuns = 5;
    const auto sample = takeSample();
    const ZRMLoopbackSocket refusing(ZRMLoopbackSocket::Kind::Refuses);
    ZRMHostRuns host({refusing.port(), refusing.port(), {}});
    std::vector<double> ratios;
    for (int run = 0; run < kRuns; ++run) {
        const auto measured =
            host.run(host.makeHome(), {{"scenario", "compare"},
                                       {"count", 3000},
                                       {"payload", sample.payload},
                                       {"encodedPayload", sample.encodedPayload}});
        ratios.push_back(zrm_number(measured, "login") / zrm_number(measured, "bare"));
    }
    return {
        {"login over zlib and the JSON library making the same bytes, p50", zrm_median(ratios),
         "ratio", 2.5, kAtMost},
        {"request bytes of a login of " + std::to_string(sample.payload.size()) + " bytes of JSON",
         static_cast<double>(sample.requestBytes), "bytes", 1400, kAtMost},
    };
}
