#include <ostream>

#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKitInfo.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"

namespace {

using Factory = ZRMMobileKitErrorFactory;

struct MessageCase {
    int code;
    const char* message;
};

void PrintTo(const MessageCase& row, std::ostream* out) {
    *out << "code " << row.code;
}

class ZRMMobileKitErrorMessage : public testing::TestWithParam<MessageCase> {};

}  // namespace

TEST_P(ZRMMobileKitErrorMessage, IsTheToldOne) {
    const auto error = Factory::errorForCode(static_cast<ZRMMobileKitErrorCode>(GetParam().code));
    EXPECT_EQ(error.domain(), "com.velorin.zrm.mobilekit");
    EXPECT_EQ(error.code(), GetParam().code);
    EXPECT_EQ(error.localizedDescription(), GetParam().message);
    EXPECT_EQ(
        error.userInfo(),
        (std::map<std::string, std::string>{{kZRMLocalizedDescriptionKey, GetParam().message}}));
}

INSTANTIATE_TEST_SUITE_P(
    All, ZRMMobileKitErrorMessage,
    testing::Values(
        MessageCase{0, "Unknown error."}, MessageCase{1, "Data has invalid format."},
        MessageCase{2, "Can't start internal service."},
        MessageCase{3,
                    "Service is not ready for use. Probably, you call some methods before "
                    "callback received from -activateWithCompletionHandler: method."},
        MessageCase{4, "Untrusted certificate found."},
        MessageCase{5, "Certificate is invalid. Cannot verify certificate."},
        MessageCase{6, "Settings signature not found."},
        MessageCase{7, "Settings signature has invalid format. Cannot verify settings."},
        MessageCase{8, "URL has invalid format."}, MessageCase{9, "Login has invalid format."},
        MessageCase{10, "UI navigation event has invalid format."},
        MessageCase{11, "Session id has invalid format."}, MessageCase{12, "Event is disabled"}),
    [](const auto& instance) { return "Code" + std::to_string(instance.param.code); });

TEST(ZRMMobileKitErrorFactory, CodeOutsideTheTableIsAnAssertion) {
    for (const std::int64_t code : {13L, -1L, 1000000L}) {
        try {
            static_cast<void>(Factory::errorForCode(static_cast<ZRMMobileKitErrorCode>(code)));
            ADD_FAILURE() << code;
        } catch (const ZRMAssertionFailure& failure) {
            EXPECT_STREQ(failure.what(), "Unsupported error code");
        }
    }
}

TEST(ZRMMobileKitErrorFactory, KeepsAGivenDictionaryAsItStands) {
    const auto error = Factory::errorForCode(ZRMMobileKitErrorInvalidUrl, {{"a", "b"}});
    EXPECT_EQ(error.domain(), kZRMMobileKitErrorDomain);
    EXPECT_EQ(error.code(), 8);
    EXPECT_EQ(error.userInfo(), (std::map<std::string, std::string>{{"a", "b"}}));
}

TEST(ZRMMobileKitErrorFactory, EmptyDictionaryMeansNoDescriptionEntry) {
    const auto error = Factory::errorForCode(ZRMMobileKitErrorUnknown, {});
    EXPECT_TRUE(error.userInfo().empty());
}

TEST(ZRMMobileKitErrorFactory, SettingsFieldErrorNamesFieldValueAndType) {
    const ZRMJsonValue five = 5;
    const auto error = Factory::settingsInvalidFormatErrorForField("vpn", &five);
    EXPECT_EQ(error.domain(), kZRMMobileKitErrorDomain);
    EXPECT_EQ(error.code(), 1);
    EXPECT_EQ(error.localizedDescription(),
              "Settings data has invalid format for field vpn: '5' (number)");
}

TEST(ZRMMobileKitErrorFactory, SignatureFieldErrorNamesFieldValueAndType) {
    const ZRMJsonValue text = "abc";
    const auto error = Factory::settingsSignatureInvalidFormatErrorForField("alg", &text);
    EXPECT_EQ(error.code(), 7);
    EXPECT_EQ(error.localizedDescription(),
              "Settings signature has invalid format for field alg: 'abc' (string)");
}

TEST(ZRMMobileKitErrorFactory, AbsentValueHasTheTypeNil) {
    EXPECT_EQ(Factory::settingsInvalidFormatErrorForField("config", nullptr).localizedDescription(),
              "Settings data has invalid format for field config: '(null)' (nil)");
    EXPECT_EQ(
        Factory::settingsSignatureInvalidFormatErrorForField("alg", nullptr).localizedDescription(),
        "Settings signature has invalid format for field alg: '(null)' (nil)");
}

TEST(ZRMMobileKitErrorFactory, EveryTypeOfValueHasItsName) {
    const auto typeOf = [](const ZRMJsonValue& value) {
        const auto text =
            Factory::settingsInvalidFormatErrorForField("f", &value).localizedDescription();
        return text.substr(text.find_last_of('('));
    };
    EXPECT_EQ(typeOf(nullptr), "(null)");
    EXPECT_EQ(typeOf(true), "(boolean)");
    EXPECT_EQ(typeOf(1.5), "(number)");
    EXPECT_EQ(typeOf(ZRMJsonArray{1}), "(array)");
    EXPECT_EQ(typeOf(ZRMDictionary{{"a", 1}}), "(object)");
}
