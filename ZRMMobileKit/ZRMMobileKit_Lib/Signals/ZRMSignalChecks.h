// Whether what a host tells of the device may be believed to be well-formed. All operations are
// pure.
#pragma once

#include <string>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMCall.h"
#include "ZRMPlatform/Ports/Values/ZRMCarrier.h"
#include "ZRMPlatform/Ports/Values/ZRMLocation.h"
#include "ZRMPlatform/Ports/Values/ZRMScreen.h"
#include "ZRMPlatform/Ports/Values/ZRMWifiNetwork.h"

// UTF-8 without NUL, at most kZRMMaxSignalLength bytes.
[[nodiscard]] bool zrm_isSignalText(const std::string& text);
[[nodiscard]] bool zrm_isSignalCall(const ZRMCall& call);
[[nodiscard]] bool zrm_isSignalScreen(const ZRMScreen& screen);
[[nodiscard]] bool zrm_isSignalLocation(const ZRMLocation& location);
[[nodiscard]] bool zrm_isSignalNetwork(const ZRMWifiNetwork& network);
[[nodiscard]] bool zrm_areSignalCarriers(const std::vector<ZRMCarrier>& carriers);
[[nodiscard]] bool zrm_areSignalTunnels(const std::vector<std::string>& interfaceNames);
