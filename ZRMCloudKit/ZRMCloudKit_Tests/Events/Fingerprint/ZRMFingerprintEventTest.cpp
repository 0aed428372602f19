#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintTexts.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kReplaced = "\xEF\xBF\xBD";

ZRMJsonValue veiled(const std::string& name) {
    return ZRMJsonValue(zrm_fingerprintDeviceNameXor(name));
}

class ZRMFingerprintEventTest : public testing::Test {
  protected:
    std::shared_ptr<ZRMFingerprintEvent> makeEvent() {
        return provider_.fingerprintEventWithBundle(device_.platform()->mainBundle, wifiNode_,
                                                    ipAddressV4_, ipAddressV6_);
    }
    ZRMDictionary body() { return makeEvent()->fingerprintParameters(); }
    ZRMJsonValue member(const char* key) { return body().at(key); }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::optional<ZRMWifiNodeDescriptor> wifiNode_ =
        ZRMWifiNodeDescriptor("Café Central", "a4:5e:60:01:02:03");
    std::optional<ZRMIpAddress> ipAddressV4_ = ZRMIpAddress::ipAddressWithString("192.168.1.20");
    std::optional<ZRMIpAddress> ipAddressV6_ = ZRMIpAddress::ipAddressWithString("fe80::1");
    ZRMEventProvider provider_{
        device_.platform(), std::make_shared<ZRMEnvironmentDataImpl>(),
        std::make_shared<ZRMEventPermissionChecker>(device_.platform()->locationAuthorization),
        nullptr};
};

TEST_F(ZRMFingerprintEventTest, HasItsTypeVersionFourAndNoPermission) {
    const auto event = makeEvent();
    const auto parameters = event->parameters();
    ASSERT_EQ(parameters.size(), 1U);
    EXPECT_EQ(parameters.begin()->key(), "IOSFingerprintEvent");
    EXPECT_EQ(event->structVersion(), 4U);
    EXPECT_EQ(event->permissions(), 0U);
    const auto& inner = parameters.begin()->value().as_object();
    EXPECT_EQ(inner.at("structVersion"), 4);
    EXPECT_FALSE(inner.contains("permissions"));
}

TEST_F(ZRMFingerprintEventTest, KeepsWhatItWasGiven) {
    const auto event = makeEvent();
    EXPECT_EQ(event->bundle(), device_.platform()->mainBundle);
    EXPECT_EQ(event->wifiNode(), wifiNode_);
    EXPECT_EQ(event->ipAddressV4(), ipAddressV4_);
    EXPECT_EQ(event->ipAddressV6(), ipAddressV6_);
}

TEST_F(ZRMFingerprintEventTest, MergesItsBodyOverTheCommonParameters) {
    const auto parameters = makeEvent()->parameters();
    const auto& inner = parameters.begin()->value().as_object();
    for (const auto* key : {"environmentData", "eventDateTime", "structVersion"}) {
        EXPECT_TRUE(inner.contains(key)) << key;
    }
    for (const auto& [key, value] : body()) {
        EXPECT_EQ(inner.at(key), value) << key;
    }
    EXPECT_EQ(inner.size(), 3 + body().size());
}

TEST_F(ZRMFingerprintEventTest, HasItsMembersInTheOrderOfTheServersLayout) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : body()) {
        keys.emplace_back(key);
    }
    EXPECT_THAT(keys, ElementsAreArray({"activeProcessorsCount",
                                        "amountOfPhysicalMemory",
                                        "battery",
                                        "bundleIdentifier",
                                        "bundleUrl",
                                        "simCards",
                                        "currentTimestampInLocaleFormat",
                                        "currentTimestampIsoFormat",
                                        "currentTimestampUnixTimestamp",
                                        "deviceAvailableLocales",
                                        "deviceCurrentLocale",
                                        "deviceIdentifierForVendor",
                                        "deviceLocalizedModel",
                                        "deviceModel",
                                        "deviceMultitaskingSupported",
                                        "deviceNameXor",
                                        "devicePreferedLanguages",
                                        "deviceSystemLocale",
                                        "deviceSystemName",
                                        "deviceSystemVersion",
                                        "filesystemProperties",
                                        "fontsInfo",
                                        "hostNameHash",
                                        "iOSVersion",
                                        "ipAddress3",
                                        "ipAddressHash",
                                        "ipv6",
                                        "iosAppOnMac",
                                        "macCatalystApp",
                                        "lowPowerModeEnabled",
                                        "macAddress3",
                                        "macAddressHash",
                                        "processName",
                                        "processorsCount",
                                        "screenSettings",
                                        "sysctlbyname",
                                        "embeddedBrowserFingerprint",
                                        "wiFiSSID",
                                        "wiFiBSSIDHash"}));
}

TEST_F(ZRMFingerprintEventTest, WritesEachMemberAsTheJsonTypeOfTheLayout) {
    const auto print = body();
    const auto expectKind = [&print](const std::vector<const char*>& keys, auto kinds) {
        for (const auto* key : keys) {
            EXPECT_THAT(kinds, testing::Contains(print.at(key).kind())) << key;
        }
    };
    using Kind = boost::json::kind;
    expectKind({"activeProcessorsCount", "amountOfPhysicalMemory", "ipAddress3", "macAddress3",
                "processorsCount"},
               std::vector{Kind::uint64, Kind::int64});
    expectKind({"battery", "filesystemProperties", "fontsInfo", "screenSettings", "sysctlbyname",
                "embeddedBrowserFingerprint"},
               std::vector{Kind::object});
    expectKind({"simCards", "deviceAvailableLocales", "devicePreferedLanguages"},
               std::vector{Kind::array});
    expectKind(
        {"deviceMultitaskingSupported", "iosAppOnMac", "macCatalystApp", "lowPowerModeEnabled"},
        std::vector{Kind::bool_});
    expectKind({"bundleIdentifier",
                "bundleUrl",
                "currentTimestampInLocaleFormat",
                "currentTimestampIsoFormat",
                "currentTimestampUnixTimestamp",
                "deviceCurrentLocale",
                "deviceIdentifierForVendor",
                "deviceLocalizedModel",
                "deviceModel",
                "deviceNameXor",
                "deviceSystemLocale",
                "deviceSystemName",
                "deviceSystemVersion",
                "hostNameHash",
                "iOSVersion",
                "ipAddressHash",
                "ipv6",
                "macAddressHash",
                "processName",
                "wiFiSSID",
                "wiFiBSSIDHash"},
               std::vector{Kind::string});
}

TEST_F(ZRMFingerprintEventTest, DescribesTheApplicationAndItsProcess) {
    device_.mainBundle().setPath("/apps/Meine Bank/Bänk.app");
    device_.processInformation().mobileApplicationOnDesktop = true;
    auto print = body();
    EXPECT_EQ(print.at("bundleIdentifier"), "com.example.host");
    EXPECT_EQ(print.at("bundleUrl"), "file:///apps/Meine%20Bank/B%C3%A4nk.app/");
    EXPECT_EQ(print.at("processName"), "bank");
    EXPECT_EQ(print.at("iosAppOnMac"), true);
    EXPECT_EQ(print.at("macCatalystApp"), false);
    device_.processInformation().mobileApplicationOnDesktop = false;
    device_.processInformation().desktopAdaptedApplication = true;
    print = body();
    EXPECT_EQ(print.at("iosAppOnMac"), false);
    EXPECT_EQ(print.at("macCatalystApp"), true);
}

TEST_F(ZRMFingerprintEventTest, DescribesTheDeviceAndItsLocales) {
    const auto print = body();
    EXPECT_EQ(print.at("deviceCurrentLocale"), "de_AT");
    EXPECT_EQ(print.at("deviceIdentifierForVendor"), "6F1C2D3E-4A5B-4C6D-8E7F-0A1B2C3D4E5F");
    EXPECT_EQ(print.at("deviceLocalizedModel"), "Telefon");
    EXPECT_EQ(print.at("deviceModel"), "iPhone X");
    EXPECT_EQ(print.at("deviceMultitaskingSupported"), true);
    EXPECT_EQ(print.at("deviceNameXor"), veiled("Ada's phone"));
    EXPECT_EQ(print.at("devicePreferedLanguages"), (ZRMJsonArray{"de-AT", "en"}));
    EXPECT_EQ(print.at("deviceSystemLocale"), "en_US_POSIX");
    EXPECT_EQ(print.at("deviceSystemName"), "SimulatedOS");
    EXPECT_EQ(print.at("deviceSystemVersion"), "17.1");
}

TEST_F(ZRMFingerprintEventTest, DescribesTheMachine) {
    device_.processInformation().memory = std::numeric_limits<std::uint64_t>::max();
    device_.power().lowPowerMode = true;
    const auto print = body();
    EXPECT_EQ(print.at("activeProcessorsCount"), 4);
    EXPECT_EQ(print.at("processorsCount"), 6);
    EXPECT_EQ(print.at("amountOfPhysicalMemory"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(print.at("iOSVersion"), "17.1.2");
    EXPECT_EQ(print.at("lowPowerModeEnabled"), true);
    EXPECT_EQ(print.at("battery"), (ZRMDictionary{{"batteryLife", 0.75}, {"batteryState", 2}}));
    EXPECT_EQ(print.at("filesystemProperties"),
              (ZRMDictionary{{"size", 128000000000U}, {"free", 64000000000U}}));
    EXPECT_EQ(print.at("screenSettings").at("amountOfScreens"), 1);
    EXPECT_EQ(print.at("sysctlbyname").at("hwmachine"), "iPhone10,3");
}

TEST_F(ZRMFingerprintEventTest, WritesTheTimeInThreeWaysInTheDevicesTimeZone) {
    // 2026-01-01 00:30:01.5 in Vienna.
    device_.jumpWallClock(1767223801.5 - device_.now().secondsSince1970);
    const auto print = body();
    EXPECT_EQ(print.at("currentTimestampInLocaleFormat"), "01.01.2026");
    EXPECT_EQ(print.at("currentTimestampIsoFormat"), "20260101T003001");
    EXPECT_EQ(print.at("currentTimestampUnixTimestamp"), "1767223801.5");
}

TEST_F(ZRMFingerprintEventTest, WritesTheDateAsTheCurrentLocaleDoes) {
    device_.jumpWallClock(1767223801.5 - device_.now().secondsSince1970);
    const std::vector<std::pair<std::string, std::string>> dates{
        {"en_US", "Jan 1, 2026"}, {"ja_JP", "2026/01/01"}, {"zh_Hans_CN", "2026年1月1日"}};
    for (const auto& [locale, date] : dates) {
        device_.locale().setLocaleIdentifier(locale);
        EXPECT_EQ(member("currentTimestampInLocaleFormat"), ZRMJsonValue(date)) << locale;
    }
}

TEST_F(ZRMFingerprintEventTest, SendsEmptyWhatTheLayoutHasAndNobodyFills) {
    const auto print = body();
    EXPECT_EQ(print.at("deviceAvailableLocales"), ZRMJsonArray());
    EXPECT_EQ(print.at("fontsInfo"), ZRMDictionary());
    EXPECT_EQ(print.at("hostNameHash"), "");
    EXPECT_EQ(print.at("embeddedBrowserFingerprint"), ZRMDictionary());
}

TEST_F(ZRMFingerprintEventTest, TellsAddressesOnlyByDigestAndFirstBytes) {
    const auto print = body();
    EXPECT_EQ(print.at("ipAddress3"), 108736);
    EXPECT_EQ(print.at("ipAddressHash"),
              "b71597436e1f181c0dae41bfaf270cd3253f53d5d181539902f4b246169663b9");
    EXPECT_EQ(print.at("ipv6"), "2e18105ec947918e5eb62aeccadbf7260192871150429bb8c7cb82fbf0a5e8fb");
    // The simulated interface is 02:00:5e:10:20:30.
    EXPECT_EQ(print.at("macAddress3"), 0x303230);
    EXPECT_EQ(print.at("macAddressHash"),
              "cb9e95a195b097b0086b2a8537a85ab92c76dda91db521cb83e85609be007cad");
    EXPECT_EQ(print.at("wiFiBSSIDHash"),
              "c2cf8d9d99817cc809e3706d3a61cd16a3a0e8c133d52625b40b0ee7f73348f5");
    const auto text = zrm_compactJsonText(print).value();
    for (const auto* secret : {"192.168.1.20", "fe80", "a4:5e", "A4:5E", "02:00", "Ada"}) {
        EXPECT_THAT(text, testing::Not(testing::HasSubstr(secret)));
    }
}

TEST_F(ZRMFingerprintEventTest, TellsTheNamesOfNetworkAndHostAsTheyAre) {
    EXPECT_EQ(member("wiFiSSID"), "Café Central");
    EXPECT_EQ(member("sysctlbyname").at("kernhostname"), "pocket");
}

TEST_F(ZRMFingerprintEventTest, HasNoWifiWithoutANetworkAndOfOneWithoutNames) {
    for (const auto& node : {std::optional<ZRMWifiNodeDescriptor>(),
                             std::optional(ZRMWifiNodeDescriptor(std::nullopt, std::nullopt))}) {
        wifiNode_ = node;
        EXPECT_EQ(member("wiFiSSID"), "");
        EXPECT_EQ(member("wiFiBSSIDHash"), "");
    }
}

TEST_F(ZRMFingerprintEventTest, HasNoAddressesOutsideANetwork) {
    ipAddressV4_ = std::nullopt;
    ipAddressV6_ = std::nullopt;
    device_.linkLayer().failAt(ZRMSimulatedLinkLayer::Step::Index);
    const auto print = body();
    EXPECT_EQ(print.at("ipAddress3"), 0);
    EXPECT_EQ(print.at("ipAddressHash"), "");
    EXPECT_EQ(print.at("ipv6"), "");
    EXPECT_EQ(print.at("macAddress3"), 0);
    EXPECT_EQ(print.at("macAddressHash"), "");
}

TEST_F(ZRMFingerprintEventTest, HasOneObjectForEachSubscription) {
    device_.carriers().list = {{true, "at", "232", "01", "Alpine Mobile"},
                               {false, "--", "65535", "65535", "--"}};
    const auto cards = member("simCards").as_array();
    ASSERT_EQ(cards.size(), 2U);
    EXPECT_EQ(cards[0].at("carrierName"), "Alpine Mobile");
    EXPECT_EQ(cards[1].at("carrierIsoCountryCode"), "");
    EXPECT_EQ(cards[1].at("carrierMobileNetworkCode"), "");
    device_.carriers().list.clear();
    EXPECT_EQ(member("simCards"), ZRMJsonArray());
}

TEST_F(ZRMFingerprintEventTest, HasAnEmptyTextForEachThatTheDeviceDoesNotSupply) {
    device_.mainBundle().setIdentifier(std::nullopt);
    device_.mainBundle().setPath("");
    auto& description = device_.description();
    description.setSystemVersion(std::nullopt);
    description.setName(std::nullopt);
    description.setLocalizedModel(std::nullopt);
    description.setIdentifierForVendor(std::nullopt);
    description.setHardwareIdentifier("");
    device_.locale().setPreferredLanguages({});
    const auto print = body();
    for (const auto* key : {"bundleIdentifier", "bundleUrl", "deviceSystemVersion", "deviceNameXor",
                            "deviceLocalizedModel", "deviceIdentifierForVendor"}) {
        EXPECT_EQ(print.at(key), "") << key;
    }
    EXPECT_EQ(print.at("deviceModel"), "Unknown");
    EXPECT_EQ(print.at("devicePreferedLanguages"), ZRMJsonArray());
}

TEST_F(ZRMFingerprintEventTest, IsBuiltWholeWhenNothingCanBeReadAndLogsTheVolumeAlone) {
    device_.digests().setAvailable(ZRMDigestAlgorithm::Sha256, false);
    device_.volumes().important =
        ZRMResult<ZRMVolumeCapacity>(ZRMError::withDescription("d", 1, "no volume"));
    device_.screens().setScreens({});
    device_.kernelValues().texts.clear();
    device_.kernelValues().integers.clear();
    device_.carriers().list.clear();
    wifiNode_ = std::nullopt;
    ipAddressV4_ = std::nullopt;
    ipAddressV6_ = std::nullopt;
    const ZRMRecordedLog log;
    EXPECT_EQ(body().size(), 39U);
    EXPECT_THAT(log.errors(), ElementsAre("Error: no volume"));
    EXPECT_THAT(log.verboses(), IsEmpty());
}

TEST_F(ZRMFingerprintEventTest, CarriesNamesOfEveryScript) {
    const std::vector<std::string> names{"Überweisung",
                                         "銀行のスマホ",
                                         "הטלפון של דנה",
                                         "📱\u200D🏦",
                                         "quote\" back\\slash \n\t\x01",
                                         std::string("nul\0in", 6)};
    for (const auto& name : names) {
        device_.description().setName(name);
        device_.description().setLocalizedModel(name);
        device_.locale().setLocaleIdentifier(name);
        device_.locale().setTimeZoneIdentifier(name);
        wifiNode_ = ZRMWifiNodeDescriptor(name, name);
        const auto text = zrm_compactJsonText(makeEvent()->parameters());
        ASSERT_TRUE(text) << name;
        const auto read = zrm_jsonFromText(text.value());
        ASSERT_TRUE(read) << name;
        const auto& print = read.value().at("IOSFingerprintEvent");
        EXPECT_EQ(print.at("wiFiSSID"), ZRMJsonValue(name));
        EXPECT_EQ(print.at("deviceLocalizedModel"), ZRMJsonValue(name));
        EXPECT_EQ(print.at("deviceCurrentLocale"), ZRMJsonValue(name));
        EXPECT_EQ(print.at("deviceNameXor"), veiled(name));
    }
}

TEST_F(ZRMFingerprintEventTest, IsAJsonDocumentEvenWhereTextsAreNotUtf8) {
    const std::string broken = "a\xFF";
    const ZRMJsonValue repaired("a" + std::string(kReplaced));
    device_.mainBundle().setIdentifier(broken);
    device_.mainBundle().setPath("/" + broken);
    auto& description = device_.description();
    description.setName(broken);
    description.setLocalizedModel(broken);
    description.setSystemName(broken);
    description.setSystemVersion(broken);
    description.setIdentifierForVendor(broken);
    description.setHardwareIdentifier(broken);
    device_.locale().setLocaleIdentifier(broken);
    device_.locale().setSystemLocaleIdentifier(broken);
    device_.locale().setTimeZoneIdentifier(broken);
    device_.locale().setPreferredLanguages({broken});
    device_.carriers().list = {{true, broken, broken, broken, broken}};
    device_.kernelValues().texts["kern.hostname"] = broken;
    device_.processInformation().name = broken;
    wifiNode_ = ZRMWifiNodeDescriptor(broken, broken);
    const auto text = zrm_compactJsonText(makeEvent()->parameters());
    ASSERT_TRUE(text);
    const auto print = body();
    for (const auto* key : {"bundleIdentifier", "deviceLocalizedModel", "deviceSystemName",
                            "deviceSystemVersion", "deviceIdentifierForVendor", "processName",
                            "deviceCurrentLocale", "deviceSystemLocale", "wiFiSSID"}) {
        EXPECT_EQ(print.at(key), repaired) << key;
    }
    EXPECT_EQ(print.at("bundleUrl"), "file:///a%FF/");
    EXPECT_EQ(print.at("devicePreferedLanguages"), ZRMJsonArray{repaired});
    EXPECT_EQ(print.at("simCards").at(0).at("carrierName"), repaired);
    EXPECT_EQ(print.at("sysctlbyname").at("kernhostname"), repaired);
    EXPECT_EQ(print.at("deviceNameXor"), veiled(broken));
}

TEST_F(ZRMFingerprintEventTest, LooksAtTheDeviceAnewForEachDocument) {
    const auto event = makeEvent();
    const auto first = event->fingerprintParameters();
    EXPECT_EQ(event->fingerprintParameters(), first);
    device_.advanceBy(1);
    device_.power().level = 0.5F;
    const auto second = event->fingerprintParameters();
    EXPECT_EQ(second.at("battery").at("batteryLife"), 0.5);
    EXPECT_NE(second.at("currentTimestampUnixTimestamp"),
              first.at("currentTimestampUnixTimestamp"));
}

}  // namespace
