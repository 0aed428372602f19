// Joins what the host tells with what a device body knows.
#pragma once

#include <memory>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Installs the host-fed ports that have no other source and wraps those that the host may
// complete. The latter and the platform's executor are there already.
void zrm_joinHostFedPorts(ZRMPlatform& platform, const std::shared_ptr<ZRMHostSignals>& signals);
