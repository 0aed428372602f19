// What the event core's archive holds.
#pragma once

#include <optional>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Biometry/ZRMTouchIdInfo.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"
#include "ZRMPlatform/Ports/ZRMKeyedArchive.h"

struct ZRMCloudKitSettingsValues {
    std::optional<std::string> installationId;
    std::optional<ZRMDate> installationDate;
    ZRMDate applicationMd5SendDate;
    std::optional<ZRMTouchIdInfo> touchIdDomainState;
    std::optional<std::string> secureDeviceTag;
    ZRMDate secureDeviceTagRefreshDate;
    double secureDeviceTagRefreshInterval = 0;  // seconds

    // Absent values are left out.
    [[nodiscard]] ZRMArchiveObject encode() const;
    // Absent when the object is of another class or a field of another type. A field that is
    // missing keeps its initial value. The interval is read as a whole number of seconds although
    // it is written with its fraction.
    static std::optional<ZRMCloudKitSettingsValues> decode(const ZRMArchiveObject& object);

    friend bool operator==(const ZRMCloudKitSettingsValues&,
                           const ZRMCloudKitSettingsValues&) = default;
};
