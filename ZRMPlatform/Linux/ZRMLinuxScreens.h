// The displays at the machine's graphics connectors.
#pragma once

#include <string>

#include "ZRMPlatform/Ports/ZRMScreens.h"

// Built-in panels come first, then the others by their connectors' names. The size is that of the
// mode a display prefers, in pixels; a point is a pixel. A display that names no mode has no size.
// The kernel does not say whether a display is captured, nor whether one shows what another does.
class ZRMLinuxScreens : public ZRMScreens {
  public:
    explicit ZRMLinuxScreens(std::string sysDirectory = "/sys");
    [[nodiscard]] std::vector<ZRMScreen> screens() const override;

  private:
    std::string sysDirectory_;
};
