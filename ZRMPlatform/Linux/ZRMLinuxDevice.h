// Name and release of the running kernel.
#pragma once

#include "ZRMPlatform/Ports/ZRMDevice.h"

class ZRMLinuxDevice : public ZRMDevice {
  public:
    [[nodiscard]] std::string systemName() const override;
    [[nodiscard]] std::optional<std::string> systemVersion() const override;
    [[nodiscard]] std::optional<std::string> name() const override;
    [[nodiscard]] std::optional<std::string> localizedModel() const override;
    [[nodiscard]] std::optional<std::string> identifierForVendor() const override;
    [[nodiscard]] bool isMultitaskingSupported() const override;
    [[nodiscard]] std::string hardwareIdentifier() const override;
};
