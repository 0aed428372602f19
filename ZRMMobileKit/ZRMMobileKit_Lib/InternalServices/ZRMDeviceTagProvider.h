// Who knows the tags of the device.
#pragma once

#include <string>

// May be used from any thread.
class ZRMDeviceTagProvider {
  public:
    virtual ~ZRMDeviceTagProvider() = default;
    // The device's own; empty while there is none.
    [[nodiscard]] virtual std::string deviceTag() const = 0;
    // The one that the server issued; empty while there is none.
    [[nodiscard]] virtual std::string secureDeviceTag() const = 0;
};
