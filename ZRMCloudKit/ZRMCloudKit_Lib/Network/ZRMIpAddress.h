// An IPv4 or IPv6 address in binary form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

enum class ZRMIpAddressType : std::uint64_t {
    Unknown = 0,
    IPv4 = 1,
    IPv6 = 2,
};

// Immutable.
class ZRMIpAddress {
  public:
    // From text such as "192.168.0.1" or "fe80::1"; anything else yields nothing and an error line
    // in the log.
    static std::optional<ZRMIpAddress> ipAddressWithString(const std::string& text);

    [[nodiscard]] ZRMIpAddressType type() const { return typeOfIpAddressData(data_); }
    // In network order: 4 bytes or 16.
    [[nodiscard]] ZRMData dataValue() const { return data_; }

    // By the look of it alone: a text with a colon is IPv6, so that an IPv4 address written the
    // IPv6 way is one too; otherwise a text with a dot is IPv4.
    static ZRMIpAddressType typeOfIpAddressString(const std::string& text);
    static ZRMIpAddressType typeOfIpAddressData(const ZRMData& data);

    // The bytes of a text of that kind; absent when it is not such an address.
    static std::optional<ZRMData> dataFromIpAddressString(const std::string& text);
    static std::optional<ZRMData> dataFromIpV4String(const std::string& text);
    static std::optional<ZRMData> dataFromIpV6String(const std::string& text);

    friend bool operator==(const ZRMIpAddress&, const ZRMIpAddress&) = default;

  private:
    explicit ZRMIpAddress(ZRMData data) : data_(std::move(data)) {}

    ZRMData data_;
};
