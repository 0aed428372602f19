// The displays, as the fingerprint tells of them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"
#include "ZRMPlatform/Ports/ZRMScreens.h"

struct ZRMFingerprintSize {
    double height = 0;
    double width = 0;

    static std::span<const ZRMEventField<ZRMFingerprintSize>> fields();
};

// Of the main screen; everything zero on a device without one.
struct ZRMFingerprintScreen {
    std::size_t amountOfScreens = 0;
    std::vector<std::string> availableModes;
    bool isMirrored = false;
    double nativeScale = 0;
    double scale = 0;
    ZRMDictionary sizeInPoints;
    ZRMDictionary sizeInPixels;

    static std::span<const ZRMEventField<ZRMFingerprintScreen>> fields();
    // From any thread.
    static ZRMFingerprintScreen read(const ZRMScreens& screens);
};
