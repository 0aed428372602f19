// What ZRMKeychainItems.h promises.
#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMKeychainContract : public ZRMContract {
  protected:
    [[nodiscard]] ZRMKeychainItems& items() { return *platform()->keychainItems; }
    static ZRMKeychainQuery query(const std::string& account,
                                  std::optional<std::string> group = std::nullopt) {
        ZRMKeychainQuery query;
        query.account = account;
        query.accessGroup = std::move(group);
        return query;
    }
    static ZRMData data(std::string_view text) { return zrm_dataFromText(text); }
    // The value found, or the status as text.
    [[nodiscard]] std::string find(const ZRMKeychainQuery& query) {
        ZRMData value = data("untouched");
        const auto status = items().copyMatching(query, value);
        if (status != ZRMKeychainSuccess) {
            EXPECT_EQ(value, data("untouched"));
            return std::to_string(status);
        }
        return zrm_textFromData(value);
    }
    const std::string kNotFound = std::to_string(ZRMKeychainItemNotFound);
};

}  // namespace

TEST_P(ZRMKeychainContract, AMissingItemIsNotFoundAndLeavesTheValueAlone) {
    EXPECT_EQ(find(query("account")), kNotFound);
    EXPECT_EQ(items().update(query("account"), data("x")), ZRMKeychainItemNotFound);
    EXPECT_EQ(items().remove(query("account")), ZRMKeychainItemNotFound);
    EXPECT_EQ(find(query("account")), kNotFound) << "the update added it";
}

TEST_P(ZRMKeychainContract, FindsWhatWasAdded) {
    const ZRMData bytes{0, 1, 255, 0};
    EXPECT_EQ(items().add(query("account"), bytes), ZRMKeychainSuccess);
    ZRMData value;
    EXPECT_EQ(items().copyMatching(query("account"), value), ZRMKeychainSuccess);
    EXPECT_EQ(value, bytes);
}

TEST_P(ZRMKeychainContract, AnEmptyValueIsAValue) {
    EXPECT_EQ(items().add(query("account"), {}), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account")), "");
}

TEST_P(ZRMKeychainContract, AddingAnItemTwiceIsADuplicateAndKeepsTheFirst) {
    EXPECT_EQ(items().add(query("account"), data("first")), ZRMKeychainSuccess);
    EXPECT_EQ(items().add(query("account"), data("second")), ZRMKeychainDuplicateItem);
    EXPECT_EQ(find(query("account")), "first");
}

TEST_P(ZRMKeychainContract, AccountsAreApart) {
    EXPECT_EQ(items().add(query("one"), data("1")), ZRMKeychainSuccess);
    EXPECT_EQ(items().add(query("two"), data("2")), ZRMKeychainSuccess);
    EXPECT_EQ(items().remove(query("one")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("two")), "2");
}

TEST_P(ZRMKeychainContract, UpdatesTheItem) {
    EXPECT_EQ(items().add(query("account"), data("old")), ZRMKeychainSuccess);
    EXPECT_EQ(items().update(query("account"), data("new")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account")), "new");
}

TEST_P(ZRMKeychainContract, RemovesTheItem) {
    EXPECT_EQ(items().add(query("account"), data("old")), ZRMKeychainSuccess);
    EXPECT_EQ(items().remove(query("account")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account")), kNotFound);
    EXPECT_EQ(items().add(query("account"), data("new")), ZRMKeychainSuccess);
}

TEST_P(ZRMKeychainContract, AnItemIsFoundOnlyByItsAccessibility) {
    auto whenUnlocked = query("account");
    whenUnlocked.accessibility = ZRMKeychainAccessibility::WhenUnlocked;
    EXPECT_EQ(items().add(query("account"), data("always")), ZRMKeychainSuccess);
    EXPECT_EQ(find(whenUnlocked), kNotFound);
    EXPECT_EQ(items().update(whenUnlocked, data("x")), ZRMKeychainItemNotFound);
    EXPECT_EQ(items().remove(whenUnlocked), ZRMKeychainItemNotFound);
    EXPECT_EQ(find(query("account")), "always");
}

TEST_P(ZRMKeychainContract, AQueryWithoutAGroupMatchesItemsOfEveryGroup) {
    EXPECT_EQ(items().add(query("account", "group"), data("value")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account")), "value");
    EXPECT_EQ(items().update(query("account"), data("new")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account", "group")), "new");
    EXPECT_EQ(items().remove(query("account")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account", "group")), kNotFound);
}

TEST_P(ZRMKeychainContract, AnItemAddedWithoutAGroupHasNone) {
    EXPECT_EQ(items().add(query("account"), data("value")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account", "group")), kNotFound);
}

TEST_P(ZRMKeychainContract, GroupsAreApart) {
    EXPECT_EQ(items().add(query("account", "one"), data("1")), ZRMKeychainSuccess);
    EXPECT_EQ(items().add(query("account", "two"), data("2")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account", "two")), "2");
    EXPECT_EQ(items().remove(query("account", "two")), ZRMKeychainSuccess);
    EXPECT_EQ(find(query("account", "one")), "1");
}

TEST_P(ZRMKeychainContract, ItemsSurviveTheProcess) {
    EXPECT_EQ(items().add(query("account", "group"), data("kept")), ZRMKeychainSuccess);
    body_->restart();
    EXPECT_EQ(find(query("account", "group")), "kept");
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMKeychainContract, zrm_contractBodies(), zrm_contractBodyName);
