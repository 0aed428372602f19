// Every event as the simulated device produces it, whole, against the document in Golden/.
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMCloudKitFixture.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMFakeDetectors.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMGoldenFile.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/UIDevice/UIDevice+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMGenerated/ZRMFingerprintBuildSettings.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMSignedImageWriter.h"

namespace {

class ZRMGoldenEvents : public ZRMCloudKitFixture {
  protected:
    // A core that was started a minute and a half a second ago, when the server's clock was half a
    // minute behind.
    ZRMGoldenEvents() {
        zrm_setDeviceTag(*device_.platform()->keychainItems,
                         "7C9E6679-7425-40DE-944B-E07FC1F90AE7");
        configuration_.execSessionId = "0F8FAD5B-D9CB-469F-A165-70867728950E";
        configuration_.productName = "ZRMMobileKit";
        configuration_.productVersion = "3.28.0.12";
        configuration_.appliedSettings = {{"clientId", "demosite"},
                                          {"events", ZRMDictionary{{"vpnEventDisabled", "false"}}}};
        serverTimeProvider_ = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
        serverTimeProvider_->setTime("Wed, 31 Dec 2025 23:59:30 GMT");

        detectors_ = zrm_makeCloudKitDetectors(device_.platform());
        vpn_ = std::make_shared<ZRMFakeVpnDetector>(true);
        detectors_.makeVpnDetector = [this] { return vpn_; };
        recording_ = std::make_shared<ZRMFakeScreenRecordingDetector>(
            ZRMScreenRecordingEventPolicy::defaultPolicy());
        detectors_.makeScreenRecordingDetector = [this](const auto&) { return recording_; };
        screenshot_ = std::make_shared<ZRMFakeScreenshotDetector>();
        detectors_.makeScreenshotDetector = [this] { return screenshot_; };
        detectors_.touchId =
            std::make_shared<ZRMFakeTouchId>(ZRMTouchIdInfo(true, false, std::nullopt));
        detectors_.bundleHasher = std::make_shared<ZRMFakeBundleHasher>(
            ZRMData{0xd4, 0x1d, 0x8c, 0xd9, 0x8f, 0x00, 0xb2, 0x04, 0xe9, 0x80, 0x09, 0x98, 0xec,
                    0xf8, 0x42, 0x7e});
        detectors_.callObserver = calls_;
        core_ = makeStartedCore();
        device_.advanceBy(61.5);
    }

    void expectGolden(const std::string& type) {
        device_.runUntilIdle();
        ASSERT_FALSE(service_->sent.empty());
        const auto text = zrm_prettyJsonText(service_->sent.back().parameters);
        ASSERT_TRUE(text);
        EXPECT_EQ(text.value() + "\n", zrm_goldenFile(type + ".json"));
    }

    std::shared_ptr<ZRMFakeVpnDetector> vpn_;
    std::shared_ptr<ZRMFakeScreenRecordingDetector> recording_;
    std::shared_ptr<ZRMFakeScreenshotDetector> screenshot_;
    std::shared_ptr<ZRMFakeCallObserver> calls_ = std::make_shared<ZRMFakeCallObserver>();
    std::shared_ptr<ZRMCloudKitImpl> core_;
};

TEST_F(ZRMGoldenEvents, DeviceJailbreak) {
    device_.loader().load("/private/var/containers/Bank.app/Bank", 0x100000000);
    device_.loader().load("/Library/MobileSubstrate/MobileSubstrate.dylib", 0x1a0000000);
    device_.urlOpener().openableUrls = {"cydia://package"};
    device_.commandProcessor().available = 1;
    core_->sendDeviceJailbreak();
    expectGolden("DeviceJailbreakEvent");
}

TEST_F(ZRMGoldenEvents, Fingerprint) {
    // A name that this build's key, whichever it is, veils as the document has it.
    const auto& key = kZRMFingerprintStatisticDeviceNameXorKey;
    const ZRMData veiledName{0x25, 0x01, 0x0c, 0x48, 0x5e, 0x4b, 0x15, 0x11, 0x0b, 0x0b, 0x08};
    device_.description().setName(
        zrm_textFromData(zrm_xorWithBytes(veiledName, key.data(), key.size())));
    device_.networkInterfaces().list = std::vector<ZRMInterfaceAddress>{
        {"en0", {192, 168, 1, 20}},
        {"en0", {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}}};
    core_->sendFingerprint();
    expectGolden("IOSFingerprintEvent");
}

TEST_F(ZRMGoldenEvents, ApplicationSignature) {
    device_.loader().load("/private/var/containers/Bank.app/Bank", 0x100000000,
                          zrm_writeSignedImage({.codeDirectories = {{.hashType = 1}, {}}}).bytes);
    core_->sendApplicationSignature();
    expectGolden("IOSApplicationSignatureEvent");
}

TEST_F(ZRMGoldenEvents, UINavigation) {
    core_->sendUINavigationPoint("Überweisung");
    expectGolden("UINavigationEvent");
}

TEST_F(ZRMGoldenEvents, UserLogin) {
    core_->sendUserLogin("ann", "SUCCESS", "user-1");
    expectGolden("UserLoginEvent");
}

TEST_F(ZRMGoldenEvents, UserLogout) {
    core_->sendUserLogout();
    expectGolden("UserLogoutEvent");
}

TEST_F(ZRMGoldenEvents, SessionId) {
    core_->sendSessionId("session-1");
    expectGolden("SessionIdEvent");
}

TEST_F(ZRMGoldenEvents, Vpn) {
    core_->sendVpnEvent();
    expectGolden("VPNEvent");
}

TEST_F(ZRMGoldenEvents, LogData) {
    core_->sendLogEvent({"[2026-01-01 00:00:00 +0000] [1:main] [ERR] first",
                         "[2026-01-01 00:00:01 +0000] [7] [VER] \"second\""});
    expectGolden("LogDataEvent");
}

TEST_F(ZRMGoldenEvents, TouchIdChanged) {
    core_->sendTouchIdChanged();
    expectGolden("TouchIdChangedEvent");
}

TEST_F(ZRMGoldenEvents, Config) {
    core_->sendConfigEvent();
    expectGolden("ConfigEvent");
}

TEST_F(ZRMGoldenEvents, ApplicationInfo) {
    core_->sendApplicationMd5();
    expectGolden("ApplicationInfoEvent");
}

TEST_F(ZRMGoldenEvents, GeoLocation) {
    device_.location().setStatus(ZRMLocationAuthorizationWhenInUse);
    core_->sendDeviceCoordinatesWithAccuracy(10, 10, [](const auto&) {});
    device_.runUntilIdle();
    device_.location().deliver({{48.208174, 16.373819, 8.5}});
    expectGolden("IOSGeoLocationEvent");
}

TEST_F(ZRMGoldenEvents, Screenshot) {
    core_->sendScreenshotEvent();
    device_.runUntilIdle();
    screenshot_->report();
    expectGolden("iOSScreenshotEvent");
}

TEST_F(ZRMGoldenEvents, ScreenRecording) {
    core_->sendScreenRecordingEventWithPolicy(ZRMScreenRecordingEventPolicy::defaultPolicy());
    device_.runUntilIdle();
    recording_->report(true);
    expectGolden("ScreenRecordingEvent");
}

TEST_F(ZRMGoldenEvents, CallInfo) {
    const ZRMCall held{.uuid = "9B2F1C9A-55B4-4C5E-8A0B-3F6C1B6B7A11",
                       .hasConnected = true,
                       .hasEnded = false,
                       .isOutgoing = false,
                       .isOnHold = true};
    ZRMCall dialling;
    dialling.isOutgoing = true;
    calls_->current = {held, dialling};
    core_->connectedCallChanged(*calls_, held);
    expectGolden("IOSCallInfoEvent");
}

}  // namespace
