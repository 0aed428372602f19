// Looks into a settings document.
#pragma once

#include <string>

#include "Tools/zrm-inspect/ZRMInspection.h"

// {"settings":{…},"rejected":["vpnEventDisabled"],"error":null}: what would be in force, null
// beside an error, and the keys whose entries are rejected, in the settings table's order. The file
// is a signed document as a server delivers it and the library stores it; or, unsigned, its payload
// or the flat settings within. With a root, PEM, its signatures have to verify as well. Good is a
// document without an error and without a rejected key.
ZRMInspection zrm_inspectSettings(const std::string& path, const std::string& rootPath);
