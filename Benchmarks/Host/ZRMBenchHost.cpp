#include "Benchmarks/Host/ZRMBenchHost.h"

#include <chrono>
#include <cstdint>
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
constexpr std::chrono::milliseconds kPause{1};

std::string textIn(const boost::json::object& options, const char* key) {
    const auto* value = options.if_contains(key);
    return value == nullptr ? std::string() : std::string(value->as_string());
}

// `times` the same `count` of the 64 letters from `first` on, the same in each run.
std::string repeatedText(int times, std::size_t count, char32_t first) {
    std::string part;
    std::uint64_t state = first;
    for (std::size_t index = 0; index < count; ++index) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        const auto letter = static_cast<std::uint32_t>(first + (state >> 58U));
        if (letter < 0x80) {
            part += static_cast<char>(letter);
        } else {
            part += static_cast<char>(0xC0U | letter >> 6U);
            part += static_cast<char>(0x80U | (letter & 0x3FU));
        }
    }
    std::string text;
    for (int time = 0; time < times; ++time) {
        text += part;
    }
    return text;
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

// An identifier and a name that make the event about 1.2 KB of JSON, of which 10,000 fit the store.
ZRMBenchHost::ZRMBenchHost(const boost::json::object& options)
    : userId_(repeatedText(4, 60, U'>')), userName_(repeatedText(5, 30, U'\u0410')) {
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
    service_->sendLogin(userId_ + std::to_string(number), ZRMLoginResult::Success, userName_);
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
