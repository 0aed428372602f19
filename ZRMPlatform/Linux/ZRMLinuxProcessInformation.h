// The process and the machine it runs on, as the kernel describes them.
#pragma once

#include <string_view>

#include "ZRMPlatform/Ports/ZRMHardware.h"

// The numbers a kernel release begins with; those that are missing are 0.
[[nodiscard]] ZRMOperatingSystemVersion zrm_operatingSystemVersion(std::string_view release);

// The process has the name of its executable, or else the kernel's short one, or none. Processors
// and memory come from the C library where the kernel's files do not tell.
class ZRMLinuxProcessInformation : public ZRMProcessInformation {
  public:
    explicit ZRMLinuxProcessInformation(std::string procDirectory = "/proc",
                                        std::string sysDirectory = "/sys");

    [[nodiscard]] std::string processName() const override;
    // Those that are plugged in.
    [[nodiscard]] std::uint32_t processorCount() const override;
    // Those that are switched on.
    [[nodiscard]] std::uint32_t activeProcessorCount() const override;
    // What the kernel can give out, a little less than what is built in.
    [[nodiscard]] std::uint64_t physicalMemory() const override;
    // Of the kernel.
    [[nodiscard]] ZRMOperatingSystemVersion operatingSystemVersion() const override;
    [[nodiscard]] bool isMobileApplicationOnDesktop() const override { return false; }
    [[nodiscard]] bool isDesktopAdaptedApplication() const override { return false; }

  private:
    std::string procDirectory_;
    std::string sysDirectory_;
};
