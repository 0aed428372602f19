// What the library asks of the device itself.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/ZRMDevice.h"
#include "ZRMPlatform/Ports/ZRMKeychainItems.h"

// The address of the interface "en0" as "AA:BB:CC:DD:EE:FF". Absent, with the failed step in the
// log, when it cannot be read. May be called from any thread.
[[nodiscard]] std::optional<std::string> zrm_deviceMacAddress(const ZRMLinkLayer& linkLayer);

// The tag kept in the keychain under the account "ZRMDeviceTag"; absent when it cannot be read or
// is no text.
[[nodiscard]] std::optional<std::string> zrm_deviceTag(const ZRMKeychainItems& items);
// Whether it was written.
bool zrm_setDeviceTag(ZRMKeychainItems& items, const std::string& tag);
