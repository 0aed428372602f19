#include "ZRMPlatform/Linux/ZRMLinuxLinkLayer.h"

#include <algorithm>

namespace {

constexpr std::size_t kAddressBytes = 6;

std::size_t lengthOf(const ZRMLinuxInterface& interface) {
    return 1 + interface.name.size() + kAddressBytes;
}

}  // namespace

ZRMLinuxLinkLayer::ZRMLinuxLinkLayer(ZRMLinuxInterfaces interfaces)
    : interfaces_(std::move(interfaces)) {}

std::uint32_t ZRMLinuxLinkLayer::interfaceIndex(const std::string& name) const {
    const auto interface = interfaces_.withLibraryName(name);
    return interface ? interface->index : 0;
}

std::optional<std::size_t> ZRMLinuxLinkLayer::recordLength(std::uint32_t index) const {
    const auto interface = addressed(index);
    return interface ? std::optional(lengthOf(*interface)) : std::nullopt;
}

bool ZRMLinuxLinkLayer::readRecord(std::uint32_t index, std::span<std::uint8_t> record) const {
    const auto interface = addressed(index);
    if (!interface || record.size() < lengthOf(*interface)) {
        return false;
    }
    record[0] = static_cast<std::uint8_t>(interface->name.size());
    std::ranges::copy(interface->name, record.begin() + 1);
    std::ranges::copy(interface->hardwareAddress,
                      record.begin() + 1 + static_cast<std::ptrdiff_t>(interface->name.size()));
    return true;
}

std::optional<ZRMLinuxInterface> ZRMLinuxLinkLayer::addressed(std::uint32_t index) const {
    auto interface = interfaces_.withIndex(index);
    if (interface && interface->hardwareAddress.size() != kAddressBytes) {
        interface.reset();
    }
    return interface;
}
