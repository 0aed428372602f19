// The variables of the process's environment.
#pragma once

#include "ZRMPlatform/Ports/ZRMDevice.h"

class ZRMLinuxProcessEnvironment : public ZRMProcessEnvironment {
  public:
    [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override;
};
