// What the library asks of the device itself.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/ZRMDevice.h"

// The address of the interface "en0" as "AA:BB:CC:DD:EE:FF". Absent, with the failed step in the
// log, when it cannot be read. May be called from any thread.
[[nodiscard]] std::optional<std::string> zrm_deviceMacAddress(const ZRMLinkLayer& linkLayer);
