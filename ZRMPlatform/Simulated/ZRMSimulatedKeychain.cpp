#include "ZRMPlatform/Simulated/ZRMSimulatedKeychain.h"

#include <algorithm>
#include <utility>

namespace {

bool matches(const ZRMKeychainQuery& query, const ZRMKeychainQuery& item) {
    return query.itemClass == item.itemClass && query.accessibility == item.accessibility &&
           query.account == item.account &&
           (!query.accessGroup || query.accessGroup == item.accessGroup);
}

}  // namespace

void ZRMSimulatedKeychain::setStatus(Operation operation, std::optional<std::int32_t> status) {
    if (status) {
        statuses_[operation] = *status;
    } else {
        statuses_.erase(operation);
    }
}

std::optional<std::int32_t> ZRMSimulatedKeychain::overrideOf(Operation operation) const {
    const auto found = statuses_.find(operation);
    return found != statuses_.end() ? std::optional(found->second) : std::nullopt;
}

std::int32_t ZRMSimulatedKeychain::note(Operation operation, const ZRMKeychainQuery& query,
                                        std::int32_t status) {
    calls_.push_back({operation, query, status});
    return status;
}

std::optional<std::string> ZRMSimulatedKeychain::textOf(const std::string& account) const {
    const auto found = std::ranges::find_if(
        items_, [&](const Item& item) { return item.query.account == account; });
    return found != items_.end() ? std::optional(zrm_textFromData(found->value)) : std::nullopt;
}

std::int32_t ZRMSimulatedKeychain::copyMatching(const ZRMKeychainQuery& query, ZRMData& value) {
    if (const auto status = overrideOf(Operation::CopyMatching)) {
        return note(Operation::CopyMatching, query, *status);
    }
    const auto found =
        std::ranges::find_if(items_, [&](const Item& item) { return matches(query, item.query); });
    if (found == items_.end()) {
        return note(Operation::CopyMatching, query, ZRMKeychainItemNotFound);
    }
    value = found->value;
    return note(Operation::CopyMatching, query, ZRMKeychainSuccess);
}

std::int32_t ZRMSimulatedKeychain::add(const ZRMKeychainQuery& item, const ZRMData& value) {
    if (const auto status = overrideOf(Operation::Add)) {
        return note(Operation::Add, item, *status);
    }
    if (std::ranges::any_of(items_, [&](const Item& other) { return other.query == item; })) {
        return note(Operation::Add, item, ZRMKeychainDuplicateItem);
    }
    items_.push_back({item, value});
    return note(Operation::Add, item, ZRMKeychainSuccess);
}

std::int32_t ZRMSimulatedKeychain::update(const ZRMKeychainQuery& query, const ZRMData& value) {
    if (const auto status = overrideOf(Operation::Update)) {
        return note(Operation::Update, query, *status);
    }
    bool found = false;
    for (auto& item : items_) {
        if (matches(query, item.query)) {
            item.value = value;
            found = true;
        }
    }
    return note(Operation::Update, query, found ? ZRMKeychainSuccess : ZRMKeychainItemNotFound);
}

std::int32_t ZRMSimulatedKeychain::remove(const ZRMKeychainQuery& query) {
    if (const auto status = overrideOf(Operation::Remove)) {
        return note(Operation::Remove, query, *status);
    }
    const auto removed =
        std::erase_if(items_, [&](const Item& item) { return matches(query, item.query); });
    return note(Operation::Remove, query,
                removed > 0 ? ZRMKeychainSuccess : ZRMKeychainItemNotFound);
}

ZRMSimulatedKeychainItems::ZRMSimulatedKeychainItems(std::shared_ptr<ZRMSimulatedKeychain> keychain,
                                                     std::shared_ptr<ZRMSimulatedProcess> process)
    : keychain_(std::move(keychain)), process_(std::move(process)) {}

std::int32_t ZRMSimulatedKeychainItems::copyMatching(const ZRMKeychainQuery& query,
                                                     ZRMData& value) const {
    return process_->isAlive() ? keychain_->copyMatching(query, value) : ZRMKeychainNotAvailable;
}

std::int32_t ZRMSimulatedKeychainItems::add(const ZRMKeychainQuery& item, const ZRMData& value) {
    return process_->isAlive() ? keychain_->add(item, value) : ZRMKeychainNotAvailable;
}

std::int32_t ZRMSimulatedKeychainItems::update(const ZRMKeychainQuery& query,
                                               const ZRMData& value) {
    return process_->isAlive() ? keychain_->update(query, value) : ZRMKeychainNotAvailable;
}

std::int32_t ZRMSimulatedKeychainItems::remove(const ZRMKeychainQuery& query) {
    return process_->isAlive() ? keychain_->remove(query) : ZRMKeychainNotAvailable;
}
