// What the event core is told when it is made.
#pragma once

#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"

inline constexpr const char* kZRMCloudKitDefaultStatisticsUrl = "https://localhost:8443/stat";
inline constexpr const char* kZRMCloudKitDefaultSecureDeviceTagUrl =
    "https://localhost:8443/zwjsqd";

// The defaults describe a demonstration set-up that talks to a server on the same machine.
struct ZRMCloudKitConfiguration {
    std::string clientId = "demosite";
    std::string execSessionId = "00000000-0000-0000-0000-000000000000";
    std::string dataDirectory;  // absolute path
    std::string productName = "ZRMCloudKit";
    std::string productVersion = "0.0.1";
    std::string statisticsUrl = kZRMCloudKitDefaultStatisticsUrl;
    std::string secureDeviceTagUrl = kZRMCloudKitDefaultSecureDeviceTagUrl;
    ZRMData jwsRootCertificate;                      // PEM
    double applicationMd5StatisticInterval = 86400;  // seconds
    bool alwaysSendTouchIdChangedStatistic = false;
    ZRMDictionary appliedSettings;

    // The defaults, with the application's documents directory as the data directory.
    static ZRMCloudKitConfiguration configuration(const ZRMDirectories& directories);
    // The same on the installed platform.
    static ZRMCloudKitConfiguration configuration();
};
