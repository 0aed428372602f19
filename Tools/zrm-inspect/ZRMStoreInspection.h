// Looks into the queue of events on a device.
#pragma once

#include <string>

#include "Tools/zrm-inspect/ZRMInspection.h"

// The records of every store below the directory, oldest first, as
// {"records":[{"eventType":…,"storeTimestamp":…,"lastTryTimestamp":…,"activeDays":…,"priority":…,
// "bytes":…,"error":null},…],"error":null}. A record that holds no upload has a null eventType and
// its error. The stores are not changed.
ZRMInspection zrm_inspectStore(const std::string& home);
