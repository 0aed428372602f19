#include "ZRMPlatform/Linux/ZRMLinuxKeychainItems.h"

ZRMLinuxKeychainItems::ZRMLinuxKeychainItems(
    std::function<std::shared_ptr<ZRMKeychainItems>()> connect,
    std::shared_ptr<ZRMKeychainItems> fallback)
    : connect_(std::move(connect)), fallback_(std::move(fallback)) {}

std::int32_t ZRMLinuxKeychainItems::copyMatching(const ZRMKeychainQuery& query,
                                                 ZRMData& value) const {
    return chosen().copyMatching(query, value);
}

std::int32_t ZRMLinuxKeychainItems::add(const ZRMKeychainQuery& item, const ZRMData& value) {
    return chosen().add(item, value);
}

std::int32_t ZRMLinuxKeychainItems::update(const ZRMKeychainQuery& query, const ZRMData& value) {
    return chosen().update(query, value);
}

std::int32_t ZRMLinuxKeychainItems::remove(const ZRMKeychainQuery& query) {
    return chosen().remove(query);
}

ZRMKeychainItems& ZRMLinuxKeychainItems::chosen() const {
    std::call_once(once_, [this] {
        chosen_ = connect_();
        if (!chosen_) {
            chosen_ = fallback_;
        }
    });
    return *chosen_;
}
