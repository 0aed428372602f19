// Settings documents that a simulated host finds on its device.
#pragma once

#include <string>

#include "Tests/Simulation/ZRMSimulationRandom.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

// Where the library looks for them.
std::string zrm_simulationSettingsPath(ZRMSimulatedDevice& device);

// Replaces the document by one that switches events on and off by chance; now and then by one that
// cannot be used.
void zrm_putSimulationSettings(ZRMSimulatedDevice& device, ZRMSimulationRandom& random);
