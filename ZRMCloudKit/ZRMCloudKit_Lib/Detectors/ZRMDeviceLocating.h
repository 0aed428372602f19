// Finds the device's location, one detection at a time.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMCommonParametersProvider.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMCloudKitEvent.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"

// One detection: runs on an operation queue and finishes with an error or with a location.
class ZRMLocationDetection : public ZRMErrorProneOperation {
  public:
    using ZRMErrorProneOperation::ZRMErrorProneOperation;
    // Once finished: the event with the location, when one was found, and the state of the network
    // and of the location services now.
    [[nodiscard]] virtual std::shared_ptr<ZRMCloudKitEvent> eventWithProvider(
        std::shared_ptr<const ZRMCommonParametersProvider> provider) const = 0;
};

class ZRMDeviceLocating {
  public:
    virtual ~ZRMDeviceLocating() = default;
    // A new detection that has not begun. From any thread.
    [[nodiscard]] virtual std::shared_ptr<ZRMLocationDetection> makeDetection() = 0;
};
