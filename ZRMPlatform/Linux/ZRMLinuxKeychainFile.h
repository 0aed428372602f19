// Keychain items in a file that only its owner may read.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyListFile.h"
#include "ZRMPlatform/Ports/ZRMKeychainItems.h"

// Several processes may use the file at once. When it cannot be read or written, the status is
// ZRMKeychainNotAvailable. Items are told apart by all attributes of their query.
class ZRMLinuxKeychainFile : public ZRMKeychainItems {
  public:
    ZRMLinuxKeychainFile(std::string path, std::shared_ptr<ZRMConsoleLog> console);

    std::int32_t copyMatching(const ZRMKeychainQuery& query, ZRMData& value) const override;
    std::int32_t add(const ZRMKeychainQuery& item, const ZRMData& value) override;
    std::int32_t update(const ZRMKeychainQuery& query, const ZRMData& value) override;
    std::int32_t remove(const ZRMKeychainQuery& query) override;

  private:
    mutable ZRMLinuxPropertyListFile file_;
};
