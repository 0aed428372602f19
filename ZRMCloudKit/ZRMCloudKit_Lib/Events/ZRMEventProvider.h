// Makes the events, each with the common parameters of its moment.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMApplicationInfoEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMApplicationSignatureEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMCallInfoEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMConfigEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMDeviceJailbreakEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMIOSGeoLocationEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMLogDataEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMScreenRecordingEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMScreenshotEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMSessionIdEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMTouchIdChangedEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMUINavigationEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMUserLoginEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMUserLogoutEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMVpnEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintEvent.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Immutable; may be used from any thread.
class ZRMEventProvider {
  public:
    // The server time provider may be absent. "enviromentData" is the interface's own spelling.
    ZRMEventProvider(std::shared_ptr<const ZRMPlatform> platform,
                     std::shared_ptr<const ZRMEnvironmentDataImpl> enviromentData,
                     std::shared_ptr<const ZRMEventPermissionChecker> permissionsChecker,
                     std::shared_ptr<const ZRMServerTimeProvider> serverTimeProvider);

    // The common parameters of an event that is built now.
    [[nodiscard]] std::shared_ptr<const ZRMCommonParametersProvider> commonParametersProvider()
        const;

    [[nodiscard]] std::shared_ptr<ZRMUserLoginEvent> userLoginEventWithUserName(
        const std::string& userName, const std::string& result, const std::string& userId) const;
    [[nodiscard]] std::shared_ptr<ZRMUserLogoutEvent> userLogoutEvent() const;
    // The digest in hexadecimal.
    [[nodiscard]] std::shared_ptr<ZRMApplicationInfoEvent> applicationInfoEventWithMd5(
        const std::string& md5) const;
    // The wireless network and the addresses may be absent.
    [[nodiscard]] std::shared_ptr<ZRMFingerprintEvent> fingerprintEventWithBundle(
        std::shared_ptr<const ZRMMainBundle> bundle,
        std::optional<ZRMWifiNodeDescriptor> wifiNodeDescriptor,
        std::optional<ZRMIpAddress> ipAddressV4, std::optional<ZRMIpAddress> ipAddressV6) const;
    // The location may be absent.
    [[nodiscard]] std::shared_ptr<ZRMIOSGeoLocationEvent> coordinatesEventWithLocation(
        const std::optional<ZRMLocation>& location,
        std::shared_ptr<const ZRMReachabilityInspector> reachabilityInspector,
        bool locationServicesEnabled) const;
    [[nodiscard]] std::shared_ptr<ZRMTouchIdChangedEvent> touchIdChangedEventWithSupported(
        bool supported, bool enabled, bool changed) const;
    [[nodiscard]] std::shared_ptr<ZRMDeviceJailbreakEvent> jailbreakEventWithDetectorCollection(
        std::shared_ptr<ZRMDeviceJailbreakDetectorCollection> detectorCollection,
        std::shared_ptr<ZRMDyldWatcher> dyldWatcher) const;
    [[nodiscard]] std::shared_ptr<ZRMApplicationSignatureEvent>
    applicationSignatureEventWithSignature(ZRMApplicationSignatureEvent::Signature signature) const;
    [[nodiscard]] std::shared_ptr<ZRMUINavigationEvent> uiNavigationEventWithNavigationPoint(
        const std::string& navigationPoint) const;
    [[nodiscard]] std::shared_ptr<ZRMSessionIdEvent> sessionIdEventWithIdentifier(
        const std::string& identifier) const;
    [[nodiscard]] std::shared_ptr<ZRMLogDataEvent> logDataEventWithLogs(
        const std::vector<std::string>& logs) const;
    [[nodiscard]] std::shared_ptr<ZRMConfigEvent> configEvent(
        const ZRMDictionary& appliedConfig) const;
    [[nodiscard]] std::shared_ptr<ZRMScreenRecordingEvent> screenRecordingEvent(
        bool recording) const;
    [[nodiscard]] std::shared_ptr<ZRMCallInfoEvent> callInfoEventWithInitialCalls(
        const std::vector<ZRMCall>& calls) const;
    [[nodiscard]] std::shared_ptr<ZRMCallInfoEvent> callInfoEventWithChangedCall(
        const ZRMCall& call, const std::vector<ZRMCall>& calls) const;
    [[nodiscard]] std::shared_ptr<ZRMCallInfoEvent> callInfoEventWithActiveCall(
        const ZRMCall& call, const std::vector<ZRMCall>& calls) const;
    [[nodiscard]] std::shared_ptr<ZRMVpnEvent> vpnEvent(bool vpnConnected) const;
    [[nodiscard]] std::shared_ptr<ZRMScreenshotEvent> screenshotEvent(bool screenshotTaken) const;

  private:
    template <class Event, class... Arguments>
    [[nodiscard]] std::shared_ptr<Event> make(Arguments&&... arguments) const {
        return std::make_shared<Event>(std::forward<Arguments>(arguments)...,
                                       commonParametersProvider());
    }

    std::shared_ptr<const ZRMPlatform> platform_;
    std::shared_ptr<const ZRMEnvironmentDataImpl> environmentData_;
    std::shared_ptr<const ZRMEventPermissionChecker> permissionChecker_;
    std::shared_ptr<const ZRMServerTimeProvider> serverTimeProvider_;
};
