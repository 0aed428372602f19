#include "Benchmarks/Host/ZRMBenchHost.h"

#include <chrono>
#include <fstream>
#include <functional>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>

#include <boost/json/array.hpp>

#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLimit{60};
constexpr std::chrono::microseconds kPause{200};

std::string textIn(const boost::json::object& options, const char* key) {
    const auto* value = options.if_contains(key);
    return value == nullptr ? std::string() : std::string(value->as_string());
}

void await(const char* what, const std::function<bool()>& isSo) {
    const auto end = Clock::now() + kLimit;
    while (!isSo()) {
        if (Clock::now() > end) {
            throw std::runtime_error(std::string("waited in vain until ") + what);
        }
        std::this_thread::sleep_for(kPause);
    }
}

}  // namespace

ZRMBenchHost::ZRMBenchHost(const boost::json::object& options) {
    ZRMLinuxPlatformOptions platform;
    platform.homeDirectory = textIn(options, "home");
    platform.bundleDirectory = textIn(options, "bundle");
    platform.resourcesDirectory = textIn(options, "resources");
    platform.certificateAuthorityFile = textIn(options, "ca");
    for (const auto& text : options.at("resolve").as_array()) {
        platform.resolveOverrides.emplace_back(text.as_string());
    }
    if (options.contains("timesMainQueue")) {
        mainQueue_ = std::make_shared<ZRMTimedMainQueue>();
        platform.mainQueue = mainQueue_;
    }
    ZRMPlatform::install(zrm_makeLinuxPlatform(platform));
    auto configuration = ZRMMobileServiceConfiguration::configuration();
    configuration.setStatisticsUrl(textIn(options, "url"));
    service_ = ZRMMobileService::createServiceWithConfiguration(configuration);
}

double ZRMBenchHost::activate() {
    struct Outcome {
        Clock::time_point at;
        std::optional<ZRMError> error;
    };
    std::promise<Outcome> outcome;
    auto answered = outcome.get_future();
    const auto begin = Clock::now();
    service_->activateWithCompletionHandler([&outcome](const std::optional<ZRMError>& error) {
        outcome.set_value({Clock::now(), error});
    });
    const auto [at, error] = answered.get();
    if (error) {
        throw std::runtime_error("activation: " + error->localizedDescription());
    }
    return std::chrono::duration<double>(at - begin).count();
}

void ZRMBenchHost::awaitStored() {
    await("all is stored", [this] { return service_->unstoredEventCount() == 0; });
}

void ZRMBenchHost::awaitAnswered() {
    await("all is answered", [this] { return service_->pendingEventCount() == 0; });
}

void ZRMBenchHost::login(std::size_t number) {
    service_->sendLogin("user-" + std::to_string(number), ZRMLoginResult::Success,
                        std::string("Alice Example"));
}

double zrm_memoryKiB(const std::string& line) {
    std::ifstream status("/proc/self/status");
    for (std::string name; status >> name;) {
        double value = 0;
        if (name == line + ":" && status >> value) {
            return value;
        }
        std::getline(status, name);
    }
    throw std::runtime_error("/proc/self/status has no line " + line);
}
