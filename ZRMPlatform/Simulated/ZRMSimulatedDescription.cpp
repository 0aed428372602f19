#include "ZRMPlatform/Simulated/ZRMSimulatedDescription.h"

#include <algorithm>

std::uint32_t ZRMSimulatedLinkLayer::interfaceIndex(const std::string& name) const {
    return name == kName && failing_ != Step::Index ? kIndex : 0;
}

std::optional<std::size_t> ZRMSimulatedLinkLayer::recordLength(std::uint32_t index) const {
    if (index != kIndex || failing_ == Step::Length) {
        return std::nullopt;
    }
    return 1 + kName.size() + address_.size();
}

bool ZRMSimulatedLinkLayer::readRecord(std::uint32_t index, std::span<std::uint8_t> record) const {
    if (index != kIndex || failing_ == Step::Record ||
        record.size() < 1 + kName.size() + address_.size()) {
        return false;
    }
    record[0] = static_cast<std::uint8_t>(kName.size());
    std::ranges::copy(kName, record.begin() + 1);
    std::ranges::copy(address_, record.begin() + 1 + kName.size());
    return true;
}

std::optional<std::string> ZRMSimulatedProcessEnvironment::variable(const std::string& name) const {
    const auto found = variables_.find(name);
    return found != variables_.end() ? std::optional(found->second) : std::nullopt;
}

void ZRMSimulatedProcessEnvironment::setVariable(const std::string& name,
                                                 std::optional<std::string> value) {
    if (value) {
        variables_[name] = std::move(*value);
    } else {
        variables_.erase(name);
    }
}
