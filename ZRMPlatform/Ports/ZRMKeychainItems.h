// The device's store of secrets: generic-password items, addressed by attributes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

enum ZRMKeychainStatus : std::int32_t {
    ZRMKeychainSuccess = 0,
    ZRMKeychainParameterError = -50,
    ZRMKeychainNotAvailable = -25291,
    ZRMKeychainDuplicateItem = -25299,
    ZRMKeychainItemNotFound = -25300,
    ZRMKeychainInteractionNotAllowed = -25308,
};

enum class ZRMKeychainItemClass { GenericPassword };

// When an item may be read. An item is found only by a query of the accessibility it was added
// with.
enum class ZRMKeychainAccessibility { AlwaysThisDeviceOnly, WhenUnlocked };

struct ZRMKeychainQuery {
    ZRMKeychainItemClass itemClass = ZRMKeychainItemClass::GenericPassword;
    ZRMKeychainAccessibility accessibility = ZRMKeychainAccessibility::AlwaysThisDeviceOnly;
    std::string account;
    // A query without a group matches items of every group; an item added without one has none.
    std::optional<std::string> accessGroup = {};

    friend bool operator==(const ZRMKeychainQuery&, const ZRMKeychainQuery&) = default;
};

// Any status other than success leaves the store and the out value as they were. May be called from
// any thread; items survive the process and, on a phone, the application's removal.
class ZRMKeychainItems {
  public:
    virtual ~ZRMKeychainItems() = default;
    // The value of the first match.
    virtual std::int32_t copyMatching(const ZRMKeychainQuery& query, ZRMData& value) const = 0;
    virtual std::int32_t add(const ZRMKeychainQuery& item, const ZRMData& value) = 0;
    virtual std::int32_t update(const ZRMKeychainQuery& query, const ZRMData& value) = 0;
    virtual std::int32_t remove(const ZRMKeychainQuery& query) = 0;
};
