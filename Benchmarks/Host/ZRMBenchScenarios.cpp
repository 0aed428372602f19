#include "Benchmarks/Host/ZRMBenchScenarios.h"

#include <array>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <boost/json/serialize.hpp>

#include "Benchmarks/Host/ZRMBareEvent.h"
#include "Benchmarks/Host/ZRMBenchHost.h"
#include "Benchmarks/Host/ZRMSyncCounter.h"
#include "Benchmarks/ZRMQuantiles.h"

namespace {

using boost::json::object;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

template <class Work>
double microsecondsOf(const Work& work) {
    const auto begin = Clock::now();
    work();
    return secondsSince(begin) * 1e6;
}

void say(const object& measured) {
    std::cout << boost::json::serialize(measured) << std::endl;
}

void awaitLine() {
    std::string line;
    std::getline(std::cin, line);
}

std::size_t countIn(const object& options, const char* key) {
    return options.at(key).to_number<std::size_t>();
}

// With "hold" the process stays until it is told to go.
void activate(const object& options) {
    ZRMBenchHost host(options);
    const auto seconds = host.activate();
    say({{"milliseconds", seconds * 1000},
         {"pending", host.service().pendingEventCount()},
         {"residentKiB", zrm_memoryKiB("VmRSS")}});
    if (options.contains("hold")) {
        awaitLine();
    }
}

// "count" logins, one every "everyMicroseconds" or, with 0, one after the other.
void report(const object& options) {
    ZRMBenchHost host(options);
    host.activate();
    const auto count = countIn(options, "count");
    const std::chrono::microseconds period(countIn(options, "everyMicroseconds"));
    const auto residentKiB = zrm_memoryKiB("VmRSS");
    std::vector<double> microseconds;
    microseconds.reserve(count);
    const auto callerSyncs = zrm_syncsOfThisThread();
    const auto processSyncs = zrm_syncsOfTheProcess();
    const auto begin = Clock::now();
    for (std::size_t number = 0; number < count; ++number) {
        if (period.count() > 0) {
            std::this_thread::sleep_until(begin + number * period);
        }
        microseconds.push_back(microsecondsOf([&] { host.login(number); }));
    }
    const auto callerSyncsMade = zrm_syncsOfThisThread() - callerSyncs;
    host.awaitStored();
    const auto seconds = secondsSince(begin);
    say({{"p50", zrm_quantile(microseconds, 0.5)},
         {"p99", zrm_quantile(microseconds, 0.99)},
         {"max", zrm_quantile(microseconds, 1)},
         {"storedPerSecond", static_cast<double>(count) / seconds},
         {"callerSyncs", callerSyncsMade},
         {"processSyncs", zrm_syncsOfTheProcess() - processSyncs},
         {"pending", host.service().pendingEventCount()},
         {"activatedKiB", residentKiB},
         {"reportedKiB", zrm_memoryKiB("VmRSS")}});
}

// Logins and bare events in turn, so that both meet the same machine.
void compare(const object& options) {
    const ZRMBareEvent bare(options.at("payload").as_string(),
                            std::string(options.at("encodedPayload").as_string()));
    ZRMBenchHost host(options);
    host.activate();
    std::vector<double> ours;
    std::vector<double> theirs;
    const auto count = countIn(options, "count");
    for (std::size_t number = 0; number < count; ++number) {
        ours.push_back(microsecondsOf([&] { host.login(number); }));
        theirs.push_back(microsecondsOf([&] {
            if (bare.make() == 0) {
                throw std::runtime_error("the bare event is empty");
            }
        }));
    }
    host.awaitStored();
    say({{"login", zrm_median(ours)}, {"bare", zrm_median(theirs)}});
}

// From the start until what an earlier run left was answered.
void drain(const object& options) {
    ZRMBenchHost host(options);
    const auto begin = Clock::now();
    host.activate();
    const auto count = host.service().pendingEventCount();
    host.awaitAnswered();
    say({{"seconds", secondsSince(begin)}, {"pending", count}});
}

// Ends itself, when it is told to, with uploads under way; says when.
void leave(const object& options) {
    ZRMBenchHost host(options);
    host.activate();
    const auto count = countIn(options, "count");
    for (std::size_t number = 0; number < count; ++number) {
        host.login(number);
    }
    host.awaitStored();
    say({{"pending", host.service().pendingEventCount()}});
    awaitLine();
    say({{"nanoseconds", Clock::now().time_since_epoch().count()}});
}

void analyze(const object& options) {
    constexpr std::chrono::milliseconds kSettling{300};
    ZRMBenchHost host(options);
    host.activate();
    std::this_thread::sleep_for(kSettling);
    host.mainQueue()->takeLongestTask();
    const auto microseconds = microsecondsOf([&] { host.service().analyzeEnvironment(); });
    std::this_thread::sleep_for(3 * kSettling);
    say({{"callerMilliseconds", microseconds / 1000},
         {"longestTaskMilliseconds", host.mainQueue()->takeLongestTask() * 1000},
         {"pending", host.service().pendingEventCount()}});
}

constexpr std::array<std::pair<std::string_view, void (*)(const object&)>, 6> kScenarios = {{
    {"activate", activate},
    {"report", report},
    {"compare", compare},
    {"drain", drain},
    {"leave", leave},
    {"analyze", analyze},
}};

}  // namespace

void zrm_runBenchScenario(const object& options) {
    const std::string_view wanted = options.at("scenario").as_string();
    for (const auto& [name, run] : kScenarios) {
        if (name == wanted) {
            run(options);
            return;
        }
    }
    throw std::invalid_argument("there is no scenario " + std::string(wanted));
}
