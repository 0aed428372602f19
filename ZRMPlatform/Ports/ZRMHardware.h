// What the machine is made of and how it is doing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMCarrier.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

struct ZRMOperatingSystemVersion {
    long major = 0;
    long minor = 0;
    long patch = 0;

    friend bool operator==(const ZRMOperatingSystemVersion&,
                           const ZRMOperatingSystemVersion&) = default;
};

// The ports of this file may be used from any thread and answer at once.

class ZRMProcessInformation {
  public:
    virtual ~ZRMProcessInformation() = default;
    [[nodiscard]] virtual std::string processName() const = 0;
    [[nodiscard]] virtual std::uint32_t processorCount() const = 0;
    [[nodiscard]] virtual std::uint32_t activeProcessorCount() const = 0;
    [[nodiscard]] virtual std::uint64_t physicalMemory() const = 0;  // bytes
    [[nodiscard]] virtual ZRMOperatingSystemVersion operatingSystemVersion() const = 0;
    // A mobile application that runs unchanged on a desktop computer.
    [[nodiscard]] virtual bool isMobileApplicationOnDesktop() const = 0;
    // A mobile application that was built for the desktop.
    [[nodiscard]] virtual bool isDesktopAdaptedApplication() const = 0;
};

enum class ZRMBatteryState : int { Unknown = 0, Unplugged = 1, Charging = 2, Full = 3 };

class ZRMPower {
  public:
    virtual ~ZRMPower() = default;
    // Level and state are known only while monitoring is on.
    [[nodiscard]] virtual bool isBatteryMonitoringEnabled() const = 0;
    virtual void setBatteryMonitoringEnabled(bool enabled) = 0;
    [[nodiscard]] virtual float batteryLevel() const = 0;  // 0.0 to 1.0, or -1.0 when unknown
    [[nodiscard]] virtual ZRMBatteryState batteryState() const = 0;
    [[nodiscard]] virtual bool isLowPowerModeEnabled() const = 0;
};

class ZRMCarriers {
  public:
    virtual ~ZRMCarriers() = default;
    // One a subscription; empty without a telephony service.
    [[nodiscard]] virtual std::vector<ZRMCarrier> carriers() const = 0;
};

struct ZRMVolumeCapacity {
    std::uint64_t total = 0;      // bytes
    std::uint64_t available = 0;  // bytes

    friend bool operator==(const ZRMVolumeCapacity&, const ZRMVolumeCapacity&) = default;
};

class ZRMVolumes {
  public:
    virtual ~ZRMVolumes() = default;
    // The capacity that the volume could give to something important, which may be more than what
    // is free; absent where the system makes no such distinction.
    [[nodiscard]] virtual std::optional<ZRMResult<ZRMVolumeCapacity>> capacityForImportantUsage(
        const std::string& path) const = 0;
    // Size and free size of the file system that holds the path.
    [[nodiscard]] virtual ZRMResult<ZRMVolumeCapacity> fileSystemCapacity(
        const std::string& path) const = 0;
};

class ZRMKernelValues {
  public:
    virtual ~ZRMKernelValues() = default;
    // By the names that sysctl gives them, such as "hw.machine"; absent when the kernel has no such
    // value.
    [[nodiscard]] virtual std::optional<std::string> text(const std::string& name) const = 0;
    // Greater values are cut to their lowest 32 bits.
    [[nodiscard]] virtual std::optional<std::int32_t> integer(const std::string& name) const = 0;
};
