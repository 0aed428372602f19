#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Keychain/ZRMKeychain.h"

namespace {

using testing::_;
using testing::DoAll;
using testing::Return;
using testing::SetArgReferee;
using testing::StrictMock;

class MockKeychainItems : public ZRMKeychainItems {
  public:
    MOCK_METHOD(std::int32_t, copyMatching, (const ZRMKeychainQuery&, ZRMData&), (const, override));
    MOCK_METHOD(std::int32_t, add, (const ZRMKeychainQuery&, const ZRMData&), (override));
    MOCK_METHOD(std::int32_t, update, (const ZRMKeychainQuery&, const ZRMData&), (override));
    MOCK_METHOD(std::int32_t, remove, (const ZRMKeychainQuery&), (override));

    void holds(const ZRMData& value) {
        EXPECT_CALL(*this, copyMatching(_, _))
            .WillOnce(DoAll(SetArgReferee<1>(value), Return(ZRMKeychainSuccess)));
    }
    void answersRead(std::int32_t status) {
        EXPECT_CALL(*this, copyMatching(_, _)).WillOnce(Return(status));
    }
};

class ZRMKeychainTest : public testing::Test {
  protected:
    const ZRMKeychainQuery plainQuery_ = {ZRMKeychainItemClass::GenericPassword,
                                          ZRMKeychainAccessibility::AlwaysThisDeviceOnly, "account",
                                          std::nullopt};
    const ZRMKeychainQuery groupQuery_ = {ZRMKeychainItemClass::GenericPassword,
                                          ZRMKeychainAccessibility::AlwaysThisDeviceOnly, "account",
                                          "group"};
    const ZRMData secret_ = zrm_dataFromText("secret");
    StrictMock<MockKeychainItems> items_;
    std::optional<std::string> password_ = "untouched";
};

constexpr std::int32_t kOtherFailures[] = {ZRMKeychainParameterError, ZRMKeychainNotAvailable,
                                           ZRMKeychainDuplicateItem,
                                           ZRMKeychainInteractionNotAllowed, 1};

TEST_F(ZRMKeychainTest, AddressesItemsByClassAccessibilityAndAccount) {
    EXPECT_EQ(ZRMKeychain::createGenericPasswordQueryForAccount("account", ""), plainQuery_);
}

TEST_F(ZRMKeychainTest, AddressesItemsByGroupOnlyWhenThereIsOne) {
    EXPECT_EQ(ZRMKeychain::createGenericPasswordQueryForAccount("account", "group"), groupQuery_);
}

TEST_F(ZRMKeychainTest, ReadsTheStoredText) {
    EXPECT_CALL(items_, copyMatching(plainQuery_, _))
        .WillOnce(DoAll(SetArgReferee<1>(secret_), Return(ZRMKeychainSuccess)));
    EXPECT_TRUE(ZRMKeychain::readGenericPassword(items_, &password_, "account"));
    EXPECT_EQ(password_, "secret");
}

TEST_F(ZRMKeychainTest, ReadsFromTheGivenGroup) {
    EXPECT_CALL(items_, copyMatching(groupQuery_, _))
        .WillOnce(DoAll(SetArgReferee<1>(secret_), Return(ZRMKeychainSuccess)));
    EXPECT_TRUE(ZRMKeychain::readGenericPassword(items_, &password_, "account", "group"));
    EXPECT_EQ(password_, "secret");
}

TEST_F(ZRMKeychainTest, ReadsAnEmptyText) {
    items_.holds({});
    EXPECT_TRUE(ZRMKeychain::readGenericPassword(items_, &password_, "account"));
    EXPECT_EQ(password_, "");
}

TEST_F(ZRMKeychainTest, ReadsWithoutAPlaceForTheText) {
    items_.holds(secret_);
    EXPECT_TRUE(ZRMKeychain::readGenericPassword(items_, nullptr, "account"));
}

TEST_F(ZRMKeychainTest, BytesThatAreNoTextReadAsAbsent) {
    items_.holds({0xC3, 0x28});
    EXPECT_TRUE(ZRMKeychain::readGenericPassword(items_, &password_, "account"));
    EXPECT_EQ(password_, std::nullopt);
}

TEST_F(ZRMKeychainTest, AFailedReadLeavesThePlaceUntouched) {
    for (const auto status : {ZRMKeychainItemNotFound, ZRMKeychainParameterError,
                              ZRMKeychainNotAvailable, ZRMKeychainInteractionNotAllowed}) {
        items_.answersRead(status);
        EXPECT_FALSE(ZRMKeychain::readGenericPassword(items_, &password_, "account")) << status;
        EXPECT_EQ(password_, "untouched") << status;
    }
}

TEST_F(ZRMKeychainTest, WritesAMissingItemByAddingIt) {
    EXPECT_CALL(items_, copyMatching(plainQuery_, _)).WillOnce(Return(ZRMKeychainItemNotFound));
    EXPECT_CALL(items_, add(plainQuery_, secret_)).WillOnce(Return(ZRMKeychainSuccess));
    EXPECT_TRUE(ZRMKeychain::writeGenericPassword(items_, "secret", "account"));
}

TEST_F(ZRMKeychainTest, WritesToTheGivenGroup) {
    EXPECT_CALL(items_, copyMatching(groupQuery_, _)).WillOnce(Return(ZRMKeychainItemNotFound));
    EXPECT_CALL(items_, add(groupQuery_, secret_)).WillOnce(Return(ZRMKeychainSuccess));
    EXPECT_TRUE(ZRMKeychain::writeGenericPassword(items_, "secret", "account", "group"));
}

TEST_F(ZRMKeychainTest, AFailedAddFailsTheWrite) {
    for (const auto status : kOtherFailures) {
        items_.answersRead(ZRMKeychainItemNotFound);
        EXPECT_CALL(items_, add(_, _)).WillOnce(Return(status));
        EXPECT_FALSE(ZRMKeychain::writeGenericPassword(items_, "secret", "account")) << status;
    }
}

TEST_F(ZRMKeychainTest, WritesAnotherTextByUpdatingTheItem) {
    items_.holds(zrm_dataFromText("old"));
    EXPECT_CALL(items_, update(plainQuery_, secret_)).WillOnce(Return(ZRMKeychainSuccess));
    EXPECT_TRUE(ZRMKeychain::writeGenericPassword(items_, "secret", "account"));
}

TEST_F(ZRMKeychainTest, AFailedUpdateCountsAsSuccessAllTheSame) {
    items_.holds(zrm_dataFromText("old"));
    EXPECT_CALL(items_, update(_, _)).WillOnce(Return(ZRMKeychainInteractionNotAllowed));
    EXPECT_TRUE(ZRMKeychain::writeGenericPassword(items_, "secret", "account"));
}

TEST_F(ZRMKeychainTest, WritingTheSameTextAgainWritesNothing) {
    items_.holds(secret_);
    EXPECT_TRUE(ZRMKeychain::writeGenericPassword(items_, "secret", "account"));
}

TEST_F(ZRMKeychainTest, AnyOtherLookUpStatusFailsTheWriteWithoutWriting) {
    for (const auto status : kOtherFailures) {
        items_.answersRead(status);
        EXPECT_FALSE(ZRMKeychain::writeGenericPassword(items_, "secret", "account")) << status;
    }
}

TEST_F(ZRMKeychainTest, Deletes) {
    EXPECT_CALL(items_, remove(plainQuery_)).WillOnce(Return(ZRMKeychainSuccess));
    EXPECT_TRUE(ZRMKeychain::deleteGenericPasswordForAccount(items_, "account"));
    EXPECT_CALL(items_, remove(groupQuery_)).WillOnce(Return(ZRMKeychainSuccess));
    EXPECT_TRUE(ZRMKeychain::deleteGenericPasswordForAccount(items_, "account", "group"));
}

TEST_F(ZRMKeychainTest, DeletingAMissingItemSucceeds) {
    EXPECT_CALL(items_, remove(_)).WillOnce(Return(ZRMKeychainItemNotFound));
    EXPECT_TRUE(ZRMKeychain::deleteGenericPasswordForAccount(items_, "account"));
}

TEST_F(ZRMKeychainTest, AnyOtherStatusFailsTheDelete) {
    for (const auto status : kOtherFailures) {
        EXPECT_CALL(items_, remove(_)).WillOnce(Return(status));
        EXPECT_FALSE(ZRMKeychain::deleteGenericPasswordForAccount(items_, "account")) << status;
    }
}

}  // namespace
