// The kernel's values, as the fingerprint tells of them.
#pragma once

#include <span>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"

// The members of "sysctlbyname". A text that the kernel does not have is empty, a number 0.
[[nodiscard]] std::span<const ZRMEventField<ZRMKernelValues>> zrm_fingerprintKernelFields();
