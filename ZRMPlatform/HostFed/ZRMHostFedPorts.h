// Joins what the host tells with what a device body knows.
#pragma once

#include <memory>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Installs the host-fed ports that have no other source and wraps those of the platform that the
// host may complete. The platform's executor is there already.
void zrm_joinHostFedPorts(ZRMPlatform& platform, const std::shared_ptr<ZRMHostSignals>& signals);
