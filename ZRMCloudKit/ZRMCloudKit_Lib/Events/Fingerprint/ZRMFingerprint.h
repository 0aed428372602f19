// The device, the application and the network attachment at one moment, as the server is told.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"

// A plain record in the order in which it is written. What is not known is empty, 0 or false; what
// has a default here and is never set is sent empty, because the server's layout has it.
struct ZRMFingerprint {
    std::uint32_t activeProcessorsCount = 0;
    std::uint64_t amountOfPhysicalMemory = 0;
    ZRMDictionary battery;
    std::string bundleIdentifier;
    std::string bundleUrl;
    std::vector<ZRMDictionary> simCards;
    std::string currentTimestampInLocaleFormat;
    std::string currentTimestampIsoFormat;
    std::string currentTimestampUnixTimestamp;
    std::vector<std::string> deviceAvailableLocales;
    std::string deviceCurrentLocale;
    std::string deviceIdentifierForVendor;
    std::string deviceLocalizedModel;
    std::string deviceModel;
    bool deviceMultitaskingSupported = false;
    std::string deviceNameXor;
    std::vector<std::string> devicePreferedLanguages;
    std::string deviceSystemLocale;
    std::string deviceSystemName;
    std::string deviceSystemVersion;
    ZRMDictionary filesystemProperties;
    ZRMDictionary fontsInfo;
    std::string hostNameHash;
    std::string iOSVersion;
    std::uint32_t ipAddress3 = 0;
    std::string ipAddressHash;
    std::string ipv6;
    bool iosAppOnMac = false;
    bool macCatalystApp = false;
    bool lowPowerModeEnabled = false;
    std::uint32_t macAddress3 = 0;
    std::string macAddressHash;
    std::string processName;
    std::uint32_t processorsCount = 0;
    ZRMDictionary screenSettings;
    ZRMDictionary sysctlbyname;
    ZRMDictionary embeddedBrowserFingerprint;
    std::string wiFiSSID;
    std::string wiFiBSSIDHash;

    static std::span<const ZRMEventField<ZRMFingerprint>> fields();
};
