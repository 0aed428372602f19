// What an inspection found.
#pragma once

#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

struct ZRMInspection {
    ZRMDictionary report;  // what is printed
    bool isGood = false;
};

// The domain of what the inspector itself finds wrong; failures of the library's readers keep their
// own domains.
inline constexpr const char* kZRMInspectErrorDomain = "ZRMInspectErrorDomain";

enum ZRMInspectErrorCode : int {
    ZRMInspectErrorNotGzip = 1,   // not one whole gzip member
    ZRMInspectErrorNotJws = 2,    // a JWS object that no upload may be
    ZRMInspectErrorNotEvent = 3,  // the payload does not hold exactly one event
    ZRMInspectErrorNoStore = 4,   // there is no store
    ZRMInspectErrorNotExecutable = 5,
};

ZRMError zrm_inspectError(ZRMInspectErrorCode code, const std::string& message);

// {"domain":…,"code":…,"message":…}
ZRMDictionary zrm_reportOfError(const ZRMError& error);

// The file's bytes, or an error in the domain of the operating system.
ZRMResult<ZRMData> zrm_readInspectedFile(const std::string& path);
