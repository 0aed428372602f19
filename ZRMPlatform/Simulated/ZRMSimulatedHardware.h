// What a simulated machine is made of; tests change the members, and changes are seen at once.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMHardware.h"
#include "ZRMPlatform/Ports/ZRMLocalAuthentication.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"

class ZRMSimulatedProcessInformation final : public ZRMProcessInformation {
  public:
    std::string name = "bank";
    std::uint32_t processors = 6;
    std::uint32_t activeProcessors = 4;
    std::uint64_t memory = 4ULL << 30;
    ZRMOperatingSystemVersion version = {17, 1, 2};
    bool mobileApplicationOnDesktop = false;
    bool desktopAdaptedApplication = false;

    [[nodiscard]] std::string processName() const override { return name; }
    [[nodiscard]] std::uint32_t processorCount() const override { return processors; }
    [[nodiscard]] std::uint32_t activeProcessorCount() const override { return activeProcessors; }
    [[nodiscard]] std::uint64_t physicalMemory() const override { return memory; }
    [[nodiscard]] ZRMOperatingSystemVersion operatingSystemVersion() const override {
        return version;
    }
    [[nodiscard]] bool isMobileApplicationOnDesktop() const override {
        return mobileApplicationOnDesktop;
    }
    [[nodiscard]] bool isDesktopAdaptedApplication() const override {
        return desktopAdaptedApplication;
    }
};

class ZRMSimulatedPower final : public ZRMPower {
  public:
    float level = 0.75F;
    ZRMBatteryState state = ZRMBatteryState::Charging;
    bool lowPowerMode = false;
    bool monitoring = false;
    int monitoringChanges = 0;

    [[nodiscard]] bool isBatteryMonitoringEnabled() const override { return monitoring; }
    void setBatteryMonitoringEnabled(bool enabled) override {
        monitoring = enabled;
        ++monitoringChanges;
    }
    [[nodiscard]] float batteryLevel() const override { return monitoring ? level : -1.0F; }
    [[nodiscard]] ZRMBatteryState batteryState() const override {
        return monitoring ? state : ZRMBatteryState::Unknown;
    }
    [[nodiscard]] bool isLowPowerModeEnabled() const override { return lowPowerMode; }
};

class ZRMSimulatedCarriers final : public ZRMCarriers {
  public:
    std::vector<ZRMCarrier> list = {{true, "at", "232", "01", "Alpine Mobile"}};
    [[nodiscard]] std::vector<ZRMCarrier> carriers() const override { return list; }
};

class ZRMSimulatedVolumes final : public ZRMVolumes {
  public:
    std::optional<ZRMResult<ZRMVolumeCapacity>> important =
        ZRMResult(ZRMVolumeCapacity{128'000'000'000, 64'000'000'000});
    ZRMResult<ZRMVolumeCapacity> fileSystem = ZRMVolumeCapacity{127'000'000'000, 63'000'000'000};
    mutable std::vector<std::string> questions;  // paths, in order

    [[nodiscard]] std::optional<ZRMResult<ZRMVolumeCapacity>> capacityForImportantUsage(
        const std::string& path) const override {
        questions.push_back(path);
        return important;
    }
    [[nodiscard]] ZRMResult<ZRMVolumeCapacity> fileSystemCapacity(
        const std::string& path) const override {
        questions.push_back(path);
        return fileSystem;
    }
};

class ZRMSimulatedKernelValues final : public ZRMKernelValues {
  public:
    std::map<std::string, std::string> texts = {{"hw.machine", "iPhone10,3"},
                                                {"hw.model", "D22AP"},
                                                {"kern.hostname", "pocket"},
                                                {"kern.ostype", "Darwin"}};
    std::map<std::string, std::int32_t> integers = {
        {"hw.ncpu", 6}, {"hw.physmem", -1073741824}, {"kern.hostid", 42}};

    [[nodiscard]] std::optional<std::string> text(const std::string& name) const override {
        const auto found = texts.find(name);
        return found != texts.end() ? std::optional(found->second) : std::nullopt;
    }
    [[nodiscard]] std::optional<std::int32_t> integer(const std::string& name) const override {
        const auto found = integers.find(name);
        return found != integers.end() ? std::optional(found->second) : std::nullopt;
    }
};

class ZRMSimulatedNetworkInterfaces final : public ZRMNetworkInterfaces {
  public:
    std::optional<std::vector<ZRMInterfaceAddress>> list =
        std::vector<ZRMInterfaceAddress>{{"en0", {192, 168, 1, 20}}};
    std::optional<std::vector<std::string>> scoped = std::vector<std::string>{"en0"};

    [[nodiscard]] std::optional<std::vector<ZRMInterfaceAddress>> addresses() const override {
        return list;
    }
    [[nodiscard]] std::optional<std::vector<std::string>> scopedInterfaceNames() const override {
        return scoped;
    }
};

class ZRMSimulatedWifi final : public ZRMWifi {
  public:
    std::optional<ZRMWifiNetwork> network = ZRMWifiNetwork{"Café Central", "a4:5e:60:01:02:03"};
    [[nodiscard]] std::optional<ZRMWifiNetwork> currentNetwork() const override { return network; }
};

// Nothing is enrolled and there is no sensor at first.
class ZRMSimulatedLocalAuthentication final : public ZRMLocalAuthentication {
  public:
    ZRMBiometricEvaluation evaluation = {false, std::nullopt,
                                         ZRMError(kZRMLocalAuthenticationErrorDomain,
                                                  ZRMLocalAuthenticationErrorBiometryNotAvailable)};
    [[nodiscard]] ZRMBiometricEvaluation evaluateBiometrics() const override { return evaluation; }
};
