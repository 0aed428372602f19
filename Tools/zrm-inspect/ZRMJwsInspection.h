// Looks into a signed document and verifies its signatures.
#pragma once

#include <optional>
#include <string>

#include "Tools/zrm-inspect/ZRMInspection.h"

struct ZRMJwsInspectionOptions {
    std::string rootPath;                      // PEM; without one nothing is pinned
    std::optional<double> atSecondsSince1970;  // otherwise now
    bool withoutRevocation = false;
    bool pinnedAnchorsOnly = false;
};

// {"validity":2,"results":[6],"error":null}: the object's validity (2 is well formed; null where
// the file holds no JSON), the result of each signature (null where no operation could be made),
// and the error that a reader of the library gets. Good when everything is verified.
ZRMInspection zrm_inspectJws(const std::string& path, const ZRMJwsInspectionOptions& options);
