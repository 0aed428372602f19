// The date formatters that the process shares.
#pragma once

#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.h"

// Each is made on first use and lives with the process; it keeps the device's time zone of that
// moment. May be called, and the formatters used, from any thread.

// "yyyyMMdd'T'HHmmss", such as "20240305T070809".
[[nodiscard]] std::shared_ptr<const ZRMDateFormatter> zrm_iso8601DateTimeFormatter();

// "EEE, dd MMM yyyy HH:mm:ss zzz", such as "Tue, 05 Mar 2024 07:08:09 GMT": the "Date" header of
// HTTP.
[[nodiscard]] std::shared_ptr<const ZRMDateFormatter> zrm_serverTimeFormatter();
