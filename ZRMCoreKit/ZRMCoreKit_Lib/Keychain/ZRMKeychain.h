// Short secrets of the library as generic-password items, bound to this device.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/ZRMKeychainItems.h"

// Items are told apart by account and access group alone; an empty group means none. May be called
// from any thread. Each operation answers whether it succeeded.
class ZRMKeychain {
  public:
    // On success `password`, unless it is null, receives the stored text, absent when the stored
    // bytes are no UTF-8; on failure it is left as it was.
    static bool readGenericPassword(const ZRMKeychainItems& items,
                                    std::optional<std::string>* password,
                                    const std::string& account,
                                    const std::string& accessGroup = "");

    // Adds the item or changes the one there is; an equal one is left alone. Whether a change was
    // taken by the store is not asked.
    static bool writeGenericPassword(ZRMKeychainItems& items, const std::string& password,
                                     const std::string& account,
                                     const std::string& accessGroup = "");

    // An item that is not there counts as deleted.
    static bool deleteGenericPasswordForAccount(ZRMKeychainItems& items, const std::string& account,
                                                const std::string& accessGroup = "");

    static ZRMKeychainQuery createGenericPasswordQueryForAccount(const std::string& account,
                                                                 const std::string& accessGroup);
};
