// The keychain of a simulated device.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMKeychainItems.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// The items themselves; they survive the process. One thread.
class ZRMSimulatedKeychain {
  public:
    enum class Operation { CopyMatching, Add, Update, Remove };

    struct Item {
        ZRMKeychainQuery query;
        ZRMData value;
    };
    struct Call {
        Operation operation;
        ZRMKeychainQuery query;
        std::int32_t status;
    };

    // While set, the operation answers with the status and does nothing; absent ends that.
    void setStatus(Operation operation, std::optional<std::int32_t> status);

    [[nodiscard]] std::vector<Item>& items() { return items_; }
    // The value of the first item of that account, as text.
    [[nodiscard]] std::optional<std::string> textOf(const std::string& account) const;
    // Every call so far with what it answered.
    [[nodiscard]] const std::vector<Call>& calls() const { return calls_; }

    // For the port body. Add answers ZRMKeychainDuplicateItem where an item with that class,
    // accessibility, account and group is there; update and remove serve every match.
    std::int32_t copyMatching(const ZRMKeychainQuery& query, ZRMData& value);
    std::int32_t add(const ZRMKeychainQuery& item, const ZRMData& value);
    std::int32_t update(const ZRMKeychainQuery& query, const ZRMData& value);
    std::int32_t remove(const ZRMKeychainQuery& query);

  private:
    [[nodiscard]] std::optional<std::int32_t> overrideOf(Operation operation) const;
    std::int32_t note(Operation operation, const ZRMKeychainQuery& query, std::int32_t status);

    std::vector<Item> items_;
    std::vector<Call> calls_;
    std::map<Operation, std::int32_t> statuses_;
};

// The keychain port of one process; once it is dead every call answers ZRMKeychainNotAvailable.
class ZRMSimulatedKeychainItems final : public ZRMKeychainItems {
  public:
    ZRMSimulatedKeychainItems(std::shared_ptr<ZRMSimulatedKeychain> keychain,
                              std::shared_ptr<ZRMSimulatedProcess> process);

    std::int32_t copyMatching(const ZRMKeychainQuery& query, ZRMData& value) const override;
    std::int32_t add(const ZRMKeychainQuery& item, const ZRMData& value) override;
    std::int32_t update(const ZRMKeychainQuery& query, const ZRMData& value) override;
    std::int32_t remove(const ZRMKeychainQuery& query) override;

  private:
    std::shared_ptr<ZRMSimulatedKeychain> keychain_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
};
