#include "Tools/zrm-risk-server/ZRMFault.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr std::array<std::string_view, 6> kEndpoints{"stat", "config", "tag", "ocsp", "crl", "x5u"};
constexpr std::string_view kDelayPrefix = "delay=";
constexpr unsigned long kLongestDelayMilliseconds = 24UL * 60 * 60 * 1000;

std::optional<unsigned long> number(std::string_view text) {
    unsigned long value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::chrono::milliseconds> duration(std::string_view text) {
    unsigned long factor = 0;
    if (text.ends_with("ms")) {
        factor = 1;
        text.remove_suffix(2);
    } else if (text.ends_with("s")) {
        factor = 1000;
        text.remove_suffix(1);
    } else {
        return std::nullopt;
    }
    const auto value = number(text);
    if (!value || *value > kLongestDelayMilliseconds / factor) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(*value * factor);
}

bool readKind(std::string_view text, ZRMFault& fault) {
    if (text == "reset") {
        fault.kind = ZRMFault::Kind::Reset;
    } else if (text == "close") {
        fault.kind = ZRMFault::Kind::Close;
    } else if (text == "garbage") {
        fault.kind = ZRMFault::Kind::Garbage;
    } else if (text.starts_with(kDelayPrefix)) {
        const auto delay = duration(text.substr(kDelayPrefix.size()));
        if (!delay) {
            return false;
        }
        fault.kind = ZRMFault::Kind::Delay;
        fault.delay = *delay;
    } else {
        const auto status = number(text);
        if (!status || *status < 200 || *status > 599) {
            return false;
        }
        fault.kind = ZRMFault::Kind::Status;
        fault.status = static_cast<int>(*status);
    }
    return true;
}

}  // namespace

std::optional<ZRMFault> ZRMFault::parse(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    ZRMFault fault;
    fault.endpoint = text.substr(0, colon);
    if (std::find(kEndpoints.begin(), kEndpoints.end(), fault.endpoint) == kEndpoints.end()) {
        return std::nullopt;
    }
    auto kind = text.substr(colon + 1);
    if (const auto star = kind.find('*'); star != std::string_view::npos) {
        const auto count = number(kind.substr(star + 1));
        if (!count || *count == 0) {
            return std::nullopt;
        }
        fault.count = *count;
        kind = kind.substr(0, star);
    }
    if (!readKind(kind, fault)) {
        return std::nullopt;
    }
    return fault;
}

std::optional<ZRMFault> ZRMFaultPlan::take(std::string_view endpoint) {
    const std::lock_guard lock(mutex_);
    for (auto& fault : faults_) {
        if (fault.endpoint == endpoint && fault.count > 0) {
            --fault.count;
            return fault;
        }
    }
    return std::nullopt;
}
