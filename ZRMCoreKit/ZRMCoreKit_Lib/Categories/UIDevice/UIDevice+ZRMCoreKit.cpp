#include <array>
#include <cstdio>
#include <memory>
#include <new>
#include <span>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/UIDevice/UIDevice+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Keychain/ZRMKeychain.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

namespace {

constexpr const char* kDeviceTagAccount = "ZRMDeviceTag";
constexpr std::size_t kAddressLength = 6;
// A record holds one short name; no kernel needs more for it.
constexpr std::size_t kMaximumRecordLength = std::size_t{64} * 1024;

std::nullopt_t failure(const void* linkLayer, const std::string& message) {
    zrm_logError(linkLayer, "Error: " + message);
    return std::nullopt;
}

std::unique_ptr<std::uint8_t[]> allocate(std::size_t length) {
    if (length > kMaximumRecordLength) {
        return nullptr;
    }
    return std::unique_ptr<std::uint8_t[]>(new (std::nothrow) std::uint8_t[length]());
}

std::string addressText(std::span<const std::uint8_t> address) {
    std::array<char, 3 * kAddressLength> text{};
    std::snprintf(text.data(), text.size(), "%02X:%02X:%02X:%02X:%02X:%02X", address[0], address[1],
                  address[2], address[3], address[4], address[5]);
    return text.data();
}

}  // namespace

std::optional<std::string> zrm_deviceMacAddress(const ZRMLinkLayer& linkLayer) {
    const auto index = linkLayer.interfaceIndex("en0");
    if (index == 0) {
        return failure(&linkLayer, "if_nametoindex failure");
    }
    const auto length = linkLayer.recordLength(index);
    if (!length) {
        return failure(&linkLayer, "sysctl mgmtInfoBase failure");
    }
    const auto buffer = allocate(*length);
    if (!buffer) {
        return failure(&linkLayer, "buffer allocation failure");
    }
    const std::span record(buffer.get(), *length);
    if (!linkLayer.readRecord(index, record)) {
        return failure(&linkLayer, "sysctl msgBuffer failure");
    }
    // One byte of name length, the name, the address.
    const auto nameEnd = record.empty() ? 0 : std::size_t{1} + record[0];
    if (record.size() < nameEnd + kAddressLength) {
        return failure(&linkLayer, "sysctl msgBuffer failure");
    }
    return addressText(record.subspan(nameEnd, kAddressLength));
}

std::optional<std::string> zrm_deviceTag(const ZRMKeychainItems& items) {
    std::optional<std::string> tag;
    ZRMKeychain::readGenericPassword(items, &tag, kDeviceTagAccount);
    return tag;
}

bool zrm_setDeviceTag(ZRMKeychainItems& items, const std::string& tag) {
    return ZRMKeychain::writeGenericPassword(items, tag, kDeviceTagAccount);
}
