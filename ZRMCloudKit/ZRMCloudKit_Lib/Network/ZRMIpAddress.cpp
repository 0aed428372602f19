#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddress.h"

#include <cstddef>

#include <arpa/inet.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

namespace {

constexpr std::size_t kIpV4Length = 4;
constexpr std::size_t kIpV6Length = 16;

std::optional<ZRMData> dataFromText(const std::string& text, int family, std::size_t length) {
    ZRMData data(length);
    // The conversion would stop at a zero byte and take what stands before it.
    if (text.find('\0') != std::string::npos ||
        ::inet_pton(family, text.c_str(), data.data()) != 1) {
        return std::nullopt;
    }
    return data;
}

}  // namespace

std::optional<ZRMIpAddress> ZRMIpAddress::ipAddressWithString(const std::string& text) {
    auto data = dataFromIpAddressString(text);
    if (!data) {
        zrm_logError(nullptr,
                     "Incorrect address string " + text + ". For example \"192.168.0.1\".");
        return std::nullopt;
    }
    return ZRMIpAddress(*std::move(data));
}

ZRMIpAddressType ZRMIpAddress::typeOfIpAddressString(const std::string& text) {
    if (text.find(':') != std::string::npos) {
        return ZRMIpAddressType::IPv6;
    }
    return text.find('.') != std::string::npos ? ZRMIpAddressType::IPv4 : ZRMIpAddressType::Unknown;
}

ZRMIpAddressType ZRMIpAddress::typeOfIpAddressData(const ZRMData& data) {
    if (data.size() == kIpV4Length) {
        return ZRMIpAddressType::IPv4;
    }
    return data.size() == kIpV6Length ? ZRMIpAddressType::IPv6 : ZRMIpAddressType::Unknown;
}

std::optional<ZRMData> ZRMIpAddress::dataFromIpAddressString(const std::string& text) {
    switch (typeOfIpAddressString(text)) {
        case ZRMIpAddressType::IPv4:
            return dataFromIpV4String(text);
        case ZRMIpAddressType::IPv6:
            return dataFromIpV6String(text);
        case ZRMIpAddressType::Unknown:
            break;
    }
    return std::nullopt;
}

std::optional<ZRMData> ZRMIpAddress::dataFromIpV4String(const std::string& text) {
    return dataFromText(text, AF_INET, kIpV4Length);
}

std::optional<ZRMData> ZRMIpAddress::dataFromIpV6String(const std::string& text) {
    return dataFromText(text, AF_INET6, kIpV6Length);
}
