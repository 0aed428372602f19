#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

const std::vector<std::string> kCommonKeys{"environmentData", "eventDateTime", "structVersion"};

// The inner object without what every event has.
ZRMDictionary bodyOf(const ZRMCloudKitEvent& event) {
    const auto parameters = event.parameters();
    EXPECT_EQ(parameters.size(), 1U);
    auto body = parameters.begin()->value().as_object();
    for (const auto& key : kCommonKeys) {
        EXPECT_TRUE(body.contains(key)) << key;
        body.erase(key);
    }
    return body;
}

class FixedDetector final : public ZRMDeviceJailbreakDetector {
  public:
    FixedDetector(ZRMDeviceJailbreakDetectorType type, bool verdict)
        : type_(type), verdict_(verdict) {}
    bool isJailbroken() override { return verdict_; }
    [[nodiscard]] ZRMDeviceJailbreakDetectorType detectorType() const override { return type_; }

  private:
    ZRMDeviceJailbreakDetectorType type_;
    bool verdict_;
};

std::shared_ptr<ZRMDeviceJailbreakDetectorCollection> detectorsOf(
    const std::vector<std::pair<ZRMDeviceJailbreakDetectorType, bool>>& verdicts) {
    ZRMDeviceJailbreakDetectorCollection::Detectors detectors;
    for (const auto& [type, verdict] : verdicts) {
        detectors.push_back(std::make_shared<FixedDetector>(type, verdict));
    }
    return std::make_shared<ZRMDeviceJailbreakDetectorCollection>(detectors, false);
}

class ZRMEventCatalogue : public testing::Test {
  protected:
    ZRMDictionary jailbreakBody(
        const std::vector<std::pair<ZRMDeviceJailbreakDetectorType, bool>>& verdicts) {
        return bodyOf(
            *provider_.jailbreakEventWithDetectorCollection(detectorsOf(verdicts), watcher_));
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMEventProvider provider_{
        device_.platform(), std::make_shared<ZRMEnvironmentDataImpl>(),
        std::make_shared<ZRMEventPermissionChecker>(device_.platform()->locationAuthorization),
        nullptr};
    std::shared_ptr<ZRMDyldWatcher> watcher_ =
        std::make_shared<ZRMDyldWatcher>(device_.platform()->loader);
};

TEST_F(ZRMEventCatalogue, NamesTypeAndVersionOfEveryEventAndReportsNoPermission) {
    const ZRMCall call;
    const std::vector<std::tuple<std::shared_ptr<ZRMCloudKitEvent>, std::string, std::uint64_t>>
        events{
            {provider_.uiNavigationEventWithNavigationPoint(""), "UINavigationEvent", 1},
            {provider_.userLoginEventWithUserName("", "", ""), "UserLoginEvent", 2},
            {provider_.userLogoutEvent(), "UserLogoutEvent", 1},
            {provider_.sessionIdEventWithIdentifier(""), "SessionIdEvent", 1},
            {provider_.vpnEvent(false), "VPNEvent", 1},
            {provider_.logDataEventWithLogs({}), "LogDataEvent", 1},
            {provider_.touchIdChangedEventWithSupported(false, false, false), "TouchIdChangedEvent",
             1},
            {provider_.configEvent({}), "ConfigEvent", 1},
            {provider_.applicationInfoEventWithMd5(""), "ApplicationInfoEvent", 1},
            {provider_.screenshotEvent(true), "iOSScreenshotEvent", 1},
            {provider_.screenRecordingEvent(true), "ScreenRecordingEvent", 1},
            {provider_.callInfoEventWithInitialCalls({}), "IOSCallInfoEvent", 1},
            {provider_.applicationSignatureEventWithSignature({}), "IOSApplicationSignatureEvent",
             1},
            {provider_.jailbreakEventWithDetectorCollection(detectorsOf({}), watcher_),
             "DeviceJailbreakEvent", 1},
        };
    for (const auto& [event, type, version] : events) {
        const auto parameters = event->parameters();
        ASSERT_EQ(parameters.size(), 1U);
        EXPECT_EQ(parameters.begin()->key(), type);
        EXPECT_EQ(event->structVersion(), version) << type;
        EXPECT_EQ(parameters.begin()->value().at("structVersion"), version) << type;
        EXPECT_EQ(event->permissions(), 0U) << type;
        EXPECT_FALSE(parameters.begin()->value().as_object().contains("permissions")) << type;
    }
}

TEST_F(ZRMEventCatalogue, KeepsTheDateOfTheBuildingHoweverLateItsParametersAreAskedFor) {
    const auto event = provider_.userLogoutEvent();
    const auto before = event->parameters();
    device_.advanceBy(100);
    EXPECT_EQ(event->parameters(), before);
    EXPECT_NE(provider_.userLogoutEvent()->parameters(), before);
}

TEST_F(ZRMEventCatalogue, ReportsALoginWithItsNameOnlyWhenThereIsOne) {
    EXPECT_EQ(bodyOf(*provider_.userLoginEventWithUserName("", "SUCCESS", "id")),
              (ZRMDictionary{{"userId", "id"}, {"result", "SUCCESS"}}));
    EXPECT_EQ(bodyOf(*provider_.userLoginEventWithUserName("a", "SUCCESS", "id")),
              (ZRMDictionary{{"userName", "a"}, {"userId", "id"}, {"result", "SUCCESS"}}));
    EXPECT_EQ(bodyOf(*provider_.userLoginEventWithUserName("", "", "")),
              (ZRMDictionary{{"userId", ""}, {"result", ""}}));
}

TEST_F(ZRMEventCatalogue, ReportsALogoutWithTheCommonParametersAlone) {
    EXPECT_TRUE(bodyOf(*provider_.userLogoutEvent()).empty());
}

TEST_F(ZRMEventCatalogue, WritesTheBodyOfEachSimpleEvent) {
    EXPECT_EQ(bodyOf(*provider_.uiNavigationEventWithNavigationPoint("home")),
              (ZRMDictionary{{"navigationPoint", "home"}}));
    EXPECT_EQ(bodyOf(*provider_.sessionIdEventWithIdentifier("s")),
              (ZRMDictionary{{"sessionId", "s"}}));
    EXPECT_EQ(bodyOf(*provider_.vpnEvent(true)), (ZRMDictionary{{"transportVpn", true}}));
    EXPECT_EQ(bodyOf(*provider_.vpnEvent(false)), (ZRMDictionary{{"transportVpn", false}}));
    EXPECT_EQ(bodyOf(*provider_.logDataEventWithLogs({"a", "b"})),
              (ZRMDictionary{{"logs", ZRMJsonArray{"a", "b"}}}));
    EXPECT_EQ(bodyOf(*provider_.logDataEventWithLogs({})),
              (ZRMDictionary{{"logs", ZRMJsonArray()}}));
    EXPECT_EQ(bodyOf(*provider_.applicationInfoEventWithMd5("00ff")),
              (ZRMDictionary{{"applicationMd5", "00ff"}}));
    EXPECT_EQ(bodyOf(*provider_.screenshotEvent(true)), (ZRMDictionary{{"screenshot", true}}));
    EXPECT_EQ(bodyOf(*provider_.screenRecordingEvent(false)),
              (ZRMDictionary{{"isRecording", false}}));
}

TEST_F(ZRMEventCatalogue, TellsTheThreeBiometryFlagsApart) {
    for (int bits = 0; bits < 8; ++bits) {
        const bool supported = (bits & 1) != 0;
        const bool enabled = (bits & 2) != 0;
        const bool changed = (bits & 4) != 0;
        EXPECT_EQ(bodyOf(*provider_.touchIdChangedEventWithSupported(supported, enabled, changed)),
                  (ZRMDictionary{{"touchIdAvailable", supported},
                                 {"touchIdEnabled", enabled},
                                 {"touchIdChanged", changed}}));
    }
}

TEST_F(ZRMEventCatalogue, WritesTheAppliedConfigurationAsPrettyTextThatParsesBack) {
    const ZRMDictionary config{{"a", "1"}, {"b", ZRMDictionary{{"c", "\"quoted\""}}}};
    const auto body = bodyOf(*provider_.configEvent(config));
    const auto& text = body.at("appliedConfig").as_string();
    EXPECT_EQ(text, "{\n  \"a\" : \"1\",\n  \"b\" : {\n    \"c\" : \"\\\"quoted\\\"\"\n  }\n}");
    const auto parsed = zrm_jsonFromText(text);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed.value(), ZRMJsonValue(config));
}

TEST_F(ZRMEventCatalogue, LeavesOutAConfigurationThatCannotBeWritten) {
    const auto event = provider_.configEvent({{"n", std::numeric_limits<double>::infinity()}});
    EXPECT_EQ(event->appliedConfigText(), std::nullopt);
    EXPECT_TRUE(bodyOf(*event).empty());
}

TEST_F(ZRMEventCatalogue, WritesTheChangedCallOnlyInTheStagesThatHaveOne) {
    ZRMCall call;
    call.uuid = "U";
    call.hasConnected = true;
    const ZRMDictionary callBody{{"uuid", "U"},
                                 {"hasEnded", false},
                                 {"hasConnected", true},
                                 {"isOutgoing", false},
                                 {"isOnHold", false}};
    EXPECT_EQ(bodyOf(*provider_.callInfoEventWithInitialCalls({call})),
              (ZRMDictionary{{"calls", ZRMJsonArray{callBody}}, {"stage", 0U}}));
    EXPECT_EQ(bodyOf(*provider_.callInfoEventWithChangedCall(call, {})),
              (ZRMDictionary{{"changedCall", callBody}, {"calls", ZRMJsonArray()}, {"stage", 1U}}));
    EXPECT_EQ(bodyOf(*provider_.callInfoEventWithActiveCall(call, {call})),
              (ZRMDictionary{
                  {"changedCall", callBody}, {"calls", ZRMJsonArray{callBody}}, {"stage", 2U}}));
}

TEST_F(ZRMEventCatalogue, ReportsEachJailbreakVerdictUnderItsOwnKey) {
    const auto verdictsOf = [this](bool files, bool call, bool url) {
        auto body = jailbreakBody({{ZRMDeviceJailbreakDetectorFSPermissions, files},
                                   {ZRMDeviceJailbreakDetectorSysCalls, call},
                                   {ZRMDeviceJailbreakDetectorUrlSchemes, url}});
        body.erase("onloadImages");
        body.erase("currentImages");
        return body;
    };
    const auto bodyWith = [](bool files, unsigned call, bool url) {
        return ZRMDictionary{
            {"cydiaCheck", url}, {"systemFunctionCall", call}, {"writePermissionsInBundle", files}};
    };
    EXPECT_EQ(verdictsOf(true, false, false), bodyWith(true, 0, false));
    EXPECT_EQ(verdictsOf(false, true, false), bodyWith(false, 1, false));
    EXPECT_EQ(verdictsOf(false, false, true), bodyWith(false, 0, true));
    EXPECT_TRUE(verdictsOf(true, true, true).at("systemFunctionCall").is_uint64());
}

TEST_F(ZRMEventCatalogue, ReportsNoJailbreakTraitThatNoDetectorLooksFor) {
    const auto none = jailbreakBody({});
    EXPECT_EQ(none.at("cydiaCheck"), false);
    EXPECT_EQ(none.at("systemFunctionCall"), 0);
    EXPECT_EQ(none.at("writePermissionsInBundle"), false);
    EXPECT_EQ(jailbreakBody({{ZRMDeviceJailbreakDetectorFSPermissions, true},
                             {ZRMDeviceJailbreakDetectorUrlSchemes, true}})
                  .at("systemFunctionCall"),
              0);
}

TEST_F(ZRMEventCatalogue, TellsRecordedImagesFromThoseThatAreLoadedNow) {
    device_.loader().load("/app", 0x100000000);
    watcher_->addAttachedDyldImage({"/gone\xFF", 18446744073709551615U});
    const auto body = jailbreakBody({});
    EXPECT_EQ(body.at("onloadImages"),
              ZRMJsonValue(ZRMJsonArray{
                  ZRMDictionary{{"path", "/gone\uFFFD"}, {"vmaddr", 18446744073709551615U}}}));
    EXPECT_EQ(body.at("currentImages"),
              ZRMJsonValue(ZRMJsonArray{
                  ZRMDictionary{{"path", "/app"}, {"vmaddr", std::uint64_t{0x100000000}}}}));
}

TEST_F(ZRMEventCatalogue, WritesAbsentHashesOfASignatureAsEmptyTextsAndKeepsTheOrder) {
    const auto digests = device_.platform()->digests;
    const auto body = bodyOf(*provider_.applicationSignatureEventWithSignature(
        {{digests, ZRMCodeSignatureHashType::Sha256, {}},
         {digests, ZRMCodeSignatureHashType::Sha1, {}}}));
    const auto entryOf = [](unsigned hashType) {
        return ZRMDictionary{{"codeDirectoryHash", ""}, {"entitlementsHash", ""},
                             {"requirementsHash", ""},  {"infoPlistHash", ""},
                             {"hashType", hashType},    {"slotsHash", ZRMJsonArray()}};
    };
    EXPECT_EQ(body,
              (ZRMDictionary{{"applicationSignatures", ZRMJsonArray{entryOf(2), entryOf(1)}}}));
    EXPECT_EQ(bodyOf(*provider_.applicationSignatureEventWithSignature({})),
              (ZRMDictionary{{"applicationSignatures", ZRMJsonArray()}}));
}

TEST_F(ZRMEventCatalogue, StaysWritableWhateverTextTheHostHandsIn) {
    const std::string hostile("\xFF\x00\xED\xA0\x80\"\\\n", 8);
    const ZRMDictionary config{{hostile, hostile}};
    const std::vector<std::shared_ptr<ZRMCloudKitEvent>> events{
        provider_.uiNavigationEventWithNavigationPoint(hostile),
        provider_.userLoginEventWithUserName(hostile, hostile, hostile),
        provider_.sessionIdEventWithIdentifier(hostile),
        provider_.logDataEventWithLogs({hostile}),
        provider_.configEvent(config),
        provider_.applicationInfoEventWithMd5(hostile),
    };
    for (const auto& event : events) {
        const auto text = zrm_compactJsonText(event->parameters());
        ASSERT_TRUE(text);
        const auto parsed = zrm_jsonFromText(text.value());
        ASSERT_TRUE(parsed);
        EXPECT_EQ(parsed.value(), ZRMJsonValue(event->parameters()));
        EXPECT_FALSE(bodyOf(*event).empty());
    }
}

TEST_F(ZRMEventCatalogue, KeepsWhatItWasMadeFrom) {
    const auto login = provider_.userLoginEventWithUserName("n", "r", "i");
    EXPECT_EQ(login->userName(), "n");
    EXPECT_EQ(login->result(), "r");
    EXPECT_EQ(login->userId(), "i");
    EXPECT_EQ(provider_.configEvent({{"a", 1}})->appliedConfig(), (ZRMDictionary{{"a", 1}}));
    const auto call = provider_.callInfoEventWithChangedCall(ZRMCall{}, {});
    EXPECT_EQ(call->stage(), 1U);
    EXPECT_EQ(call->changedCall(), ZRMCall());
    EXPECT_TRUE(call->calls().empty());
    const auto detectors = detectorsOf({});
    const auto jailbreak = provider_.jailbreakEventWithDetectorCollection(detectors, watcher_);
    EXPECT_EQ(jailbreak->detectorCollection(), detectors);
    EXPECT_EQ(jailbreak->dyldWatcher(), watcher_);
}

// A body that says what the common parameters say as well.
class OverridingEvent final : public ZRMTableEvent<OverridingEvent> {
  public:
    using ZRMTableEvent::ZRMTableEvent;
    static ZRMEventTable<OverridingEvent> table() {
        static constexpr std::array kFields{
            zrm_eventField<&OverridingEvent::version>("structVersion", ""),
            zrm_eventField<&OverridingEvent::environment>("environmentData", ""),
        };
        return {"OverridingEvent", 1, kZRMEventPermissionLocation, kFields};
    }
    [[nodiscard]] std::string version() const { return "other"; }
    [[nodiscard]] ZRMDictionary environment() const {
        return {{"osName", "other"}, {"more", true}};
    }
};

TEST_F(ZRMEventCatalogue, LetsTheBodyWinOverTheCommonParametersMemberByMember) {
    auto environment = std::make_shared<ZRMEnvironmentDataImpl>();
    environment->osName = "SimulatedOS";
    environment->clientId = "client";
    const OverridingEvent event(std::make_shared<ZRMCommonParametersProvider>(
        environment,
        std::make_shared<ZRMEventPermissionChecker>(device_.platform()->locationAuthorization),
        ZRMDate{0}, nullptr));
    EXPECT_EQ(
        event.parameters(),
        (ZRMDictionary{{"OverridingEvent",
                        ZRMDictionary{{"environmentData", ZRMDictionary{{"osName", "other"},
                                                                        {"clientId", "client"},
                                                                        {"more", true}}},
                                      {"eventDateTime", "1970-01-01 00:00:00.000000"},
                                      {"structVersion", "other"},
                                      {"permissions", ZRMDictionary{{"location", false}}}}}}));
}

}  // namespace
