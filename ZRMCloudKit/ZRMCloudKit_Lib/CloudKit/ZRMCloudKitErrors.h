// Errors of the event core.
#pragma once

inline constexpr const char* kZRMCloudKitErrorDomain = "ZRMCloudKitErrorDomain";

enum ZRMCloudKitErrorCode : int {
    ZRMCloudKitErrorLocationNotAvailable = 1,  // this device or build cannot tell where it is
};
