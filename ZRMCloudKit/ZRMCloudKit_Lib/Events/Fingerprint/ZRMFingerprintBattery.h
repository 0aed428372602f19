// The battery, as the fingerprint tells of it.
#pragma once

#include <span>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"

struct ZRMFingerprintBattery {
    double life = -1;  // 0.0 to 1.0, or -1.0 when unknown
    int state = 0;

    static std::span<const ZRMEventField<ZRMFingerprintBattery>> fields();
    // Switches monitoring on for the reading where it is off. From any thread; readings wait for
    // each other, so that none takes away another's monitoring.
    static ZRMFingerprintBattery read(ZRMPower& power);
};
