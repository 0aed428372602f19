// The device, the host application and the library's run, as every event describes them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"

// A plain record; what is absent is left out of the dictionary.
struct ZRMEnvironmentDataImpl {
    std::optional<std::string> osName;
    std::optional<std::string> osVersion;
    std::optional<std::string> deviceTag;
    std::optional<std::string> productName;
    std::optional<std::string> productVersion;
    std::optional<std::string> applicationId;
    std::optional<std::string> applicationVersion;
    std::optional<ZRMDate> applicationInstallationDate;
    std::optional<std::string> clientId;
    std::optional<std::string> execSessionId;
    std::optional<std::int64_t> uptime;         // milliseconds since boot
    std::optional<std::int64_t> startDateTime;  // milliseconds from 1970 to the boot

    static std::span<const ZRMEventField<ZRMEnvironmentDataImpl>> fields();
    [[nodiscard]] ZRMDictionary dictionary() const;
};
