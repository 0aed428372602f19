// What a BSD kernel answers by name, put together from what Linux says elsewhere.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/ZRMDevice.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"

// Texts: "hw.machine", "hw.model", "kern.hostname", "kern.ostype". Integers: "hw.ncpu",
// "hw.physmem", "kern.hostid"; the last is what /etc/hostid holds, since without that file the C
// library asks the network.
class ZRMLinuxKernelValues : public ZRMKernelValues {
  public:
    ZRMLinuxKernelValues(std::shared_ptr<const ZRMDevice> device,
                         std::shared_ptr<const ZRMProcessInformation> processInformation,
                         std::string procDirectory = "/proc", std::string etcDirectory = "/etc");

    [[nodiscard]] std::optional<std::string> text(const std::string& name) const override;
    [[nodiscard]] std::optional<std::int32_t> integer(const std::string& name) const override;

  private:
    std::shared_ptr<const ZRMDevice> device_;
    std::shared_ptr<const ZRMProcessInformation> processInformation_;
    std::string procDirectory_;
    std::string etcDirectory_;
};
