#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintEvent.h"

#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMDeviceModel.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintBattery.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintHashes.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintKernel.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintScreen.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintSimCard.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintTexts.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintVolume.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSURL/NSURL+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/UIDevice/UIDevice+ZRMCoreKit.h"

ZRMEventTable<ZRMFingerprint> ZRMFingerprintEvent::table() {
    return {"IOSFingerprintEvent", 4, kZRMEventPermissionNone, ZRMFingerprint::fields()};
}

ZRMFingerprintEvent::ZRMFingerprintEvent(
    std::shared_ptr<const ZRMPlatform> platform, std::shared_ptr<const ZRMMainBundle> bundle,
    std::optional<ZRMWifiNodeDescriptor> wifiNode, std::optional<ZRMIpAddress> ipAddressV4,
    std::optional<ZRMIpAddress> ipAddressV6,
    std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMBaseEvent(std::move(provider)),
      platform_(std::move(platform)),
      bundle_(std::move(bundle)),
      wifiNode_(std::move(wifiNode)),
      ipAddressV4_(std::move(ipAddressV4)),
      ipAddressV6_(std::move(ipAddressV6)) {}

std::uint64_t ZRMFingerprintEvent::structVersion() const {
    return table().structVersion;
}

ZRMEventPermissions ZRMFingerprintEvent::permissions() const {
    return table().permissions;
}

ZRMDictionary ZRMFingerprintEvent::parameters() const {
    return zrm_eventParameters(*provider(), table().eventType, structVersion(), permissions(),
                               fingerprintParameters());
}

ZRMDictionary ZRMFingerprintEvent::fingerprintParameters() const {
    ZRMFingerprint print;
    readApplication(print);
    readTime(print);
    readDevice(print);
    readMachine(print);
    readNetwork(print);
    return zrm_eventBody(print, ZRMFingerprint::fields());
}

void ZRMFingerprintEvent::readApplication(ZRMFingerprint& print) const {
    print.bundleIdentifier = bundle_->identifier().value_or("");
    const auto path = bundle_->path();
    print.bundleUrl = path.empty() ? std::string() : zrm_directoryUrlText(path);
    const auto& process = *platform_->processInformation;
    print.processName = process.processName();
    print.iosAppOnMac = process.isMobileApplicationOnDesktop();
    print.macCatalystApp = process.isDesktopAdaptedApplication();
}

void ZRMFingerprintEvent::readTime(ZRMFingerprint& print) const {
    const auto now = platform_->clock->now();
    print.currentTimestampInLocaleFormat =
        zrm_mediumLocalDescriptionForDate(*platform_->locale, now);
    print.currentTimestampIsoFormat = zrm_isoDescription(now);
    print.currentTimestampUnixTimestamp = zrm_fingerprintSecondsText(now);
}

void ZRMFingerprintEvent::readDevice(ZRMFingerprint& print) const {
    const auto& device = *platform_->device;
    print.deviceIdentifierForVendor = device.identifierForVendor().value_or("");
    print.deviceLocalizedModel = device.localizedModel().value_or("");
    print.deviceModel = zrm_deviceModel(device.hardwareIdentifier());
    print.deviceMultitaskingSupported = device.isMultitaskingSupported();
    print.deviceNameXor = zrm_fingerprintDeviceNameXor(device.name().value_or(""));
    print.deviceSystemName = device.systemName();
    print.deviceSystemVersion = device.systemVersion().value_or("");
    const auto& locale = *platform_->locale;
    print.deviceCurrentLocale = locale.localeIdentifier();
    print.devicePreferedLanguages = locale.preferredLanguages();
    print.deviceSystemLocale = locale.systemLocaleIdentifier();
}

void ZRMFingerprintEvent::readMachine(ZRMFingerprint& print) const {
    const auto& process = *platform_->processInformation;
    print.activeProcessorsCount = process.activeProcessorCount();
    print.processorsCount = process.processorCount();
    print.amountOfPhysicalMemory = process.physicalMemory();
    print.iOSVersion = zrm_fingerprintVersionText(process.operatingSystemVersion());
    print.lowPowerModeEnabled = platform_->power->isLowPowerModeEnabled();
    print.battery = zrm_eventBody(ZRMFingerprintBattery::read(*platform_->power),
                                  ZRMFingerprintBattery::fields());
    print.filesystemProperties =
        zrm_eventBody(zrm_fingerprintVolume(*platform_->volumes, *platform_->directories),
                      zrm_fingerprintVolumeFields());
    print.screenSettings = zrm_eventBody(ZRMFingerprintScreen::read(*platform_->screens),
                                         ZRMFingerprintScreen::fields());
    print.sysctlbyname = zrm_eventBody(*platform_->kernelValues, zrm_fingerprintKernelFields());
}

void ZRMFingerprintEvent::readNetwork(ZRMFingerprint& print) const {
    auto& digests = *platform_->digests;
    for (const auto& carrier : platform_->carriers->carriers()) {
        print.simCards.push_back(zrm_eventBody(carrier, zrm_fingerprintSimCardFields()));
    }
    const auto addressV4 = ipAddressV4_ ? ipAddressV4_->dataValue() : ZRMData();
    const auto addressV6 = ipAddressV6_ ? ipAddressV6_->dataValue() : ZRMData();
    auto ipV4 = zrm_fingerprintAddress(digests, addressV4);
    print.ipAddress3 = ipV4.firstThree;
    print.ipAddressHash = std::move(ipV4.hash);
    print.ipv6 = zrm_fingerprintAddress(digests, addressV6).hash;
    auto mac = zrm_fingerprintMacAddress(digests, zrm_deviceMacAddress(*platform_->linkLayer));
    print.macAddress3 = mac.firstThree;
    print.macAddressHash = std::move(mac.hash);
    if (wifiNode_) {
        print.wiFiSSID = wifiNode_->ssid().value_or("");
        print.wiFiBSSIDHash = zrm_fingerprintBssidHash(digests, wifiNode_->bssid());
    }
}
