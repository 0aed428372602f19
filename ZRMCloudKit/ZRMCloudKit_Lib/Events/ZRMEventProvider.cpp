#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"

#include <utility>

ZRMEventProvider::ZRMEventProvider(
    std::shared_ptr<const ZRMPlatform> platform,
    std::shared_ptr<const ZRMEnvironmentDataImpl> enviromentData,
    std::shared_ptr<const ZRMEventPermissionChecker> permissionsChecker,
    std::shared_ptr<const ZRMServerTimeProvider> serverTimeProvider)
    : platform_(std::move(platform)),
      environmentData_(std::move(enviromentData)),
      permissionChecker_(std::move(permissionsChecker)),
      serverTimeProvider_(std::move(serverTimeProvider)) {}

std::shared_ptr<const ZRMCommonParametersProvider> ZRMEventProvider::commonParametersProvider()
    const {
    return std::make_shared<ZRMCommonParametersProvider>(
        environmentData_, permissionChecker_, platform_->clock->now(), serverTimeProvider_);
}

std::shared_ptr<ZRMUserLoginEvent> ZRMEventProvider::userLoginEventWithUserName(
    const std::string& userName, const std::string& result, const std::string& userId) const {
    return make<ZRMUserLoginEvent>(userName, result, userId);
}

std::shared_ptr<ZRMUserLogoutEvent> ZRMEventProvider::userLogoutEvent() const {
    return make<ZRMUserLogoutEvent>();
}

std::shared_ptr<ZRMApplicationInfoEvent> ZRMEventProvider::applicationInfoEventWithMd5(
    const std::string& md5) const {
    return make<ZRMApplicationInfoEvent>(md5);
}

std::shared_ptr<ZRMFingerprintEvent> ZRMEventProvider::fingerprintEventWithBundle(
    std::shared_ptr<const ZRMMainBundle> bundle,
    std::optional<ZRMWifiNodeDescriptor> wifiNodeDescriptor,
    std::optional<ZRMIpAddress> ipAddressV4, std::optional<ZRMIpAddress> ipAddressV6) const {
    return std::make_shared<ZRMFingerprintEvent>(
        platform_, std::move(bundle), std::move(wifiNodeDescriptor), std::move(ipAddressV4),
        std::move(ipAddressV6), commonParametersProvider());
}

std::shared_ptr<ZRMIOSGeoLocationEvent> ZRMEventProvider::coordinatesEventWithLocation(
    const std::optional<ZRMLocation>& location,
    std::shared_ptr<const ZRMReachabilityInspector> reachabilityInspector,
    bool locationServicesEnabled) const {
    return make<ZRMIOSGeoLocationEvent>(location, std::move(reachabilityInspector),
                                        locationServicesEnabled);
}

std::shared_ptr<ZRMTouchIdChangedEvent> ZRMEventProvider::touchIdChangedEventWithSupported(
    bool supported, bool enabled, bool changed) const {
    return make<ZRMTouchIdChangedEvent>(supported, enabled, changed);
}

std::shared_ptr<ZRMDeviceJailbreakEvent> ZRMEventProvider::jailbreakEventWithDetectorCollection(
    std::shared_ptr<ZRMDeviceJailbreakDetectorCollection> detectorCollection,
    std::shared_ptr<ZRMDyldWatcher> dyldWatcher) const {
    return make<ZRMDeviceJailbreakEvent>(std::move(detectorCollection), std::move(dyldWatcher));
}

std::shared_ptr<ZRMApplicationSignatureEvent>
ZRMEventProvider::applicationSignatureEventWithSignature(
    ZRMApplicationSignatureEvent::Signature signature) const {
    return make<ZRMApplicationSignatureEvent>(std::move(signature));
}

std::shared_ptr<ZRMUINavigationEvent> ZRMEventProvider::uiNavigationEventWithNavigationPoint(
    const std::string& navigationPoint) const {
    return make<ZRMUINavigationEvent>(navigationPoint);
}

std::shared_ptr<ZRMSessionIdEvent> ZRMEventProvider::sessionIdEventWithIdentifier(
    const std::string& identifier) const {
    return make<ZRMSessionIdEvent>(identifier);
}

std::shared_ptr<ZRMLogDataEvent> ZRMEventProvider::logDataEventWithLogs(
    const std::vector<std::string>& logs) const {
    return make<ZRMLogDataEvent>(logs);
}

std::shared_ptr<ZRMConfigEvent> ZRMEventProvider::configEvent(
    const ZRMDictionary& appliedConfig) const {
    return make<ZRMConfigEvent>(appliedConfig);
}

std::shared_ptr<ZRMScreenRecordingEvent> ZRMEventProvider::screenRecordingEvent(
    bool recording) const {
    return make<ZRMScreenRecordingEvent>(recording);
}

std::shared_ptr<ZRMCallInfoEvent> ZRMEventProvider::callInfoEventWithInitialCalls(
    const std::vector<ZRMCall>& calls) const {
    return make<ZRMCallInfoEvent>(ZRMCallInfoStageInitial, std::nullopt, calls);
}

std::shared_ptr<ZRMCallInfoEvent> ZRMEventProvider::callInfoEventWithChangedCall(
    const ZRMCall& call, const std::vector<ZRMCall>& calls) const {
    return make<ZRMCallInfoEvent>(ZRMCallInfoStageChanged, call, calls);
}

std::shared_ptr<ZRMCallInfoEvent> ZRMEventProvider::callInfoEventWithActiveCall(
    const ZRMCall& call, const std::vector<ZRMCall>& calls) const {
    return make<ZRMCallInfoEvent>(ZRMCallInfoStageActive, call, calls);
}

std::shared_ptr<ZRMVpnEvent> ZRMEventProvider::vpnEvent(bool vpnConnected) const {
    return make<ZRMVpnEvent>(vpnConnected);
}

std::shared_ptr<ZRMScreenshotEvent> ZRMEventProvider::screenshotEvent(bool screenshotTaken) const {
    return make<ZRMScreenshotEvent>(screenshotTaken);
}
