// The subscriptions to cellular networks, as the fingerprint tells of them.
#pragma once

#include <span>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"
#include "ZRMPlatform/Ports/Values/ZRMCarrier.h"

// The members of one of "simCards". What is absent, or stands in for what is absent, is empty.
[[nodiscard]] std::span<const ZRMEventField<ZRMCarrier>> zrm_fingerprintSimCardFields();
