// What the machine is called and what it is, as the kernel and the system's files say.
#pragma once

#include "ZRMPlatform/Ports/ZRMDevice.h"

// The name is the pretty one of /etc/machine-info, or else the node name. The model is the
// firmware's, from DMI or the device tree, and in no language.
class ZRMLinuxDevice : public ZRMDevice {
  public:
    // `maker` tells the applications of one maker from those of others.
    explicit ZRMLinuxDevice(std::string maker = "", std::string sysDirectory = "/sys",
                            std::string etcDirectory = "/etc");

    [[nodiscard]] std::string systemName() const override;
    [[nodiscard]] std::optional<std::string> systemVersion() const override;
    [[nodiscard]] std::optional<std::string> name() const override;
    [[nodiscard]] std::optional<std::string> localizedModel() const override;
    // Made of the machine identifier and the maker, neither of which can be found from it; absent
    // where the machine has no identifier yet.
    [[nodiscard]] std::optional<std::string> identifierForVendor() const override;
    [[nodiscard]] bool isMultitaskingSupported() const override;
    [[nodiscard]] std::string hardwareIdentifier() const override;

  private:
    std::string maker_;
    std::string sysDirectory_;
    std::string etcDirectory_;
};
