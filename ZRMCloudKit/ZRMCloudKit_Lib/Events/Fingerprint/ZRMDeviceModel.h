// The marketing names of hardware.
#pragma once

#include <span>
#include <string_view>

struct ZRMDeviceModelRow {
    std::string_view identifier;  // as uname has it, such as "iPhone10,3"
    std::string_view name;
};

// Every identifier there is a name for, each once; variants of one model share a name. Made at
// build time.
[[nodiscard]] std::span<const ZRMDeviceModelRow> zrm_deviceModelTable();

// An identifier that is not in the table gets the name of its family, or "Unknown".
[[nodiscard]] std::string_view zrm_deviceModel(std::string_view hardwareIdentifier);
