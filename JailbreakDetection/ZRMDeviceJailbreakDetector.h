// One trait of device or process that is typical of a jailbroken device.
#pragma once

#include <cstdint>

enum ZRMDeviceJailbreakDetectorType : std::uint32_t {
    ZRMDeviceJailbreakDetectorFSPermissions = 1,
    ZRMDeviceJailbreakDetectorDyldImages = 2,
    ZRMDeviceJailbreakDetectorSysCalls = 4,
    ZRMDeviceJailbreakDetectorUrlSchemes = 8,
};

// May be used from any thread; may block.
class ZRMDeviceJailbreakDetector {
  public:
    virtual ~ZRMDeviceJailbreakDetector() = default;
    // Examined anew on each call.
    [[nodiscard]] virtual bool isJailbroken() = 0;
    [[nodiscard]] virtual ZRMDeviceJailbreakDetectorType detectorType() const = 0;
};
