// The store of secrets that suits the machine.
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "ZRMPlatform/Ports/ZRMKeychainItems.h"

// Chooses between two stores at the first operation, and keeps to the choice.
class ZRMLinuxKeychainItems : public ZRMKeychainItems {
  public:
    // `connect` is asked once, then not again; where it gives nothing, `fallback` serves.
    ZRMLinuxKeychainItems(std::function<std::shared_ptr<ZRMKeychainItems>()> connect,
                          std::shared_ptr<ZRMKeychainItems> fallback);

    std::int32_t copyMatching(const ZRMKeychainQuery& query, ZRMData& value) const override;
    std::int32_t add(const ZRMKeychainQuery& item, const ZRMData& value) override;
    std::int32_t update(const ZRMKeychainQuery& query, const ZRMData& value) override;
    std::int32_t remove(const ZRMKeychainQuery& query) override;

  private:
    ZRMKeychainItems& chosen() const;

    const std::function<std::shared_ptr<ZRMKeychainItems>()> connect_;
    const std::shared_ptr<ZRMKeychainItems> fallback_;
    mutable std::once_flag once_;
    mutable std::shared_ptr<ZRMKeychainItems> chosen_;
};
