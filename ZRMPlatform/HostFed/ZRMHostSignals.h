// All that the host has told of the device.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/HostFed/ZRMHostCalls.h"
#include "ZRMPlatform/HostFed/ZRMHostLocation.h"
#include "ZRMPlatform/HostFed/ZRMHostNotifications.h"
#include "ZRMPlatform/HostFed/ZRMHostScreens.h"
#include "ZRMPlatform/HostFed/ZRMHostWord.h"
#include "ZRMPlatform/Ports/Values/ZRMBiometricEvaluation.h"
#include "ZRMPlatform/Ports/Values/ZRMWifiNetwork.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"

struct ZRMHostBattery {
    float level = -1;  // 0.0 to 1.0, or -1.0 when unknown
    ZRMBatteryState state = ZRMBatteryState::Unknown;
};

// Fed from any thread at any rate, before the library is activated and after. Observers are told by
// tasks on their queues, and no lock is held while a task is posted or runs. Values are kept as
// they come: whoever feeds them sees to it that texts are UTF-8 and numbers in their ranges.
struct ZRMHostSignals {
    // The one of the process; never destroyed.
    static const std::shared_ptr<ZRMHostSignals>& shared();

    ZRMHostCalls calls;
    ZRMHostNotifications notifications;
    ZRMHostLocation location;
    ZRMHostWord<ZRMBiometricEvaluation> biometrics;

    // Of what the machine may know by itself: without a word it answers.
    ZRMHostScreens screens{notifications};
    ZRMHostWord<std::optional<ZRMWifiNetwork>> wifi;  // absent within: attached to none
    ZRMHostWord<std::vector<ZRMCarrier>> carriers;
    ZRMHostWord<std::vector<std::string>> tunnels;  // beside those that the machine lists
    ZRMHostWord<ZRMHostBattery> battery;
    ZRMHostWord<bool> lowPowerMode;
    ZRMHostWord<std::string> deviceName;
    ZRMHostWord<std::string> localizedModel;
    ZRMHostWord<std::string> identifierForVendor;

    // Takes back all of these.
    void forgetMachine();
};
