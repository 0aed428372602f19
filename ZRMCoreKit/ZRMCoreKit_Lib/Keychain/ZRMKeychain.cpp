#include "ZRMCoreKit/ZRMCoreKit_Lib/Keychain/ZRMKeychain.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

ZRMKeychainQuery ZRMKeychain::createGenericPasswordQueryForAccount(const std::string& account,
                                                                   const std::string& accessGroup) {
    ZRMKeychainQuery query;
    query.itemClass = ZRMKeychainItemClass::GenericPassword;
    query.accessibility = ZRMKeychainAccessibility::AlwaysThisDeviceOnly;
    query.account = account;
    if (!accessGroup.empty()) {
        query.accessGroup = accessGroup;
    }
    return query;
}

bool ZRMKeychain::readGenericPassword(const ZRMKeychainItems& items,
                                      std::optional<std::string>* password,
                                      const std::string& account, const std::string& accessGroup) {
    ZRMData value;
    const auto query = createGenericPasswordQueryForAccount(account, accessGroup);
    if (items.copyMatching(query, value) != ZRMKeychainSuccess) {
        return false;
    }
    if (password != nullptr) {
        auto text = zrm_textFromData(value);
        *password = zrm_isValidUtf8(text) ? std::optional(std::move(text)) : std::nullopt;
    }
    return true;
}

bool ZRMKeychain::writeGenericPassword(ZRMKeychainItems& items, const std::string& password,
                                       const std::string& account, const std::string& accessGroup) {
    const auto data = zrm_dataFromText(password);
    const auto query = createGenericPasswordQueryForAccount(account, accessGroup);
    ZRMData stored;
    switch (items.copyMatching(query, stored)) {
        case ZRMKeychainSuccess:
            if (stored != data) {
                items.update(query, data);
            }
            return true;
        case ZRMKeychainItemNotFound:
            return items.add(query, data) == ZRMKeychainSuccess;
        default:
            return false;
    }
}

bool ZRMKeychain::deleteGenericPasswordForAccount(ZRMKeychainItems& items,
                                                  const std::string& account,
                                                  const std::string& accessGroup) {
    const auto status = items.remove(createGenericPasswordQueryForAccount(account, accessGroup));
    return status == ZRMKeychainSuccess || status == ZRMKeychainItemNotFound;
}
