#include <cstdio>
#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Tools/zrm-inspect/ZRMSettingsInspection.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMFakeJwsVerification.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"

namespace {

class ZRMSettingsInspection : public testing::Test {
  protected:
    ~ZRMSettingsInspection() override {
        std::remove(path_.c_str());
        std::remove(root_.c_str());
    }

    ZRMInspection inspect(const std::string& content, bool hasRoot = false) {
        std::ofstream(path_, std::ios::binary) << content;
        std::ofstream(root_) << "no certificate";
        return zrm_inspectSettings(path_, hasRoot ? root_ : "");
    }
    static ZRMDictionary settingsWith(const char* key, const char* value) {
        auto settings =
            ZRMMobileServiceSettings::jsonFromSettings(ZRMMobileServiceSettings::defaultSettings());
        settings[key] = value;
        return settings;
    }
    static std::string message(const ZRMInspection& inspection) {
        return std::string(inspection.report.at("error").as_object().at("message").as_string());
    }

    const std::string path_ = testing::TempDir() + "zrm-settings-" + std::to_string(::getpid());
    const std::string root_ = path_ + ".pem";
};

TEST_F(ZRMSettingsInspection, TellsTheEffectiveSettingsOfASignedDocument) {
    const auto found =
        inspect(zrm_jwsTextWithPayload(R"({"config":{"uiNavigationEventDisabled":"False"}})"));
    EXPECT_TRUE(found.isGood);
    EXPECT_EQ(found.report.at("settings"), settingsWith("uiNavigationEventDisabled", "false"));
    EXPECT_EQ(found.report.at("rejected"), ZRMJsonArray());
    EXPECT_TRUE(found.report.at("error").is_null());
}

TEST_F(ZRMSettingsInspection, TakesAPayloadOrFlatSettingsWithoutASignature) {
    for (const auto* content :
         {R"({"config":{"vpnEventDisabled":"true"}})", R"({"vpnEventDisabled":"true"})"}) {
        const auto found = inspect(content);
        EXPECT_TRUE(found.isGood);
        EXPECT_EQ(found.report.at("settings"), settingsWith("vpnEventDisabled", "true"));
    }
}

TEST_F(ZRMSettingsInspection, NamesRejectedKeysBesideTheSettingsThatStayInForce) {
    const auto found = inspect(R"({"vpnEventDisabled":"","execSessionTimeout":"later",
                                   "configEventDisabled":"false","other":""})");
    EXPECT_FALSE(found.isGood);
    EXPECT_EQ(found.report.at("rejected"),
              (ZRMJsonArray{"execSessionTimeout", "vpnEventDisabled"}));
    EXPECT_EQ(found.report.at("settings"), settingsWith("configEventDisabled", "false"));
    EXPECT_TRUE(found.report.at("error").is_null());
}

TEST_F(ZRMSettingsInspection, TellsWhyThereAreNoSettings) {
    const std::pair<std::string, const char*> rows[] = {
        {"garbage", "Data has invalid format."},
        {"[]", "Data has invalid format."},
        {R"({"a":"1","a":"2"})", "Data has invalid format."},
        {R"({"payload":"e30","signatures":[]})", "Signature not found."},
        {zrm_jwsTextWithPayload("{}"),
         "Settings data has invalid format for field config: '(null)' (nil)"},
        {R"({"statisticsUrl":"http://a b"})", "Parameter is nil: statisticsUrl"},
    };
    for (const auto& [content, why] : rows) {
        const auto found = inspect(content);
        EXPECT_FALSE(found.isGood) << content;
        EXPECT_TRUE(found.report.at("settings").is_null()) << content;
        EXPECT_EQ(message(found), why) << content;
    }
}

TEST_F(ZRMSettingsInspection, WithARootRefusesWhatIsNotSignedUnderIt) {
    const auto flat = inspect(R"({"vpnEventDisabled":"true"})", true);
    EXPECT_FALSE(flat.isGood);
    EXPECT_EQ(flat.report.at("error").as_object().at("domain"), kZRMJwsObjectErrorDomain);
    EXPECT_EQ(message(inspect(zrm_jwsTextWithPayload(R"({"config":{}})"), true)), "Unknown error.");
}

TEST_F(ZRMSettingsInspection, TellsWhenTheRootCannotBeRead) {
    std::ofstream(path_) << zrm_jwsTextWithPayload(R"({"config":{}})");
    const auto found = zrm_inspectSettings(path_, "/nowhere/at/all");
    EXPECT_FALSE(found.isGood);
    EXPECT_EQ(found.report.at("error").as_object().at("domain"), "NSPOSIXErrorDomain");
}

}  // namespace
