// What the fingerprint event is about: this application in the networks of the moment.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMEventSource.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

class ZRMFingerprintSource final : public ZRMEventSource {
  public:
    explicit ZRMFingerprintSource(std::shared_ptr<const ZRMPlatform> platform);

    [[nodiscard]] std::shared_ptr<ZRMCloudKitEvent> eventWithProvider(
        const ZRMEventProvider& provider) override;

  private:
    std::shared_ptr<const ZRMPlatform> platform_;
};
