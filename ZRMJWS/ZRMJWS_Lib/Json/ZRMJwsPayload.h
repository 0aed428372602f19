// What a JWS object carries.
#pragma once

#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

// Failures of both are in kZRMCocoaErrorDomain with kZRMJsonErrorCode. Pure; from any thread.

// The bytes of a payload as it travels. Refused where it is no base64url.
ZRMResult<ZRMData> zrm_dataFromJwsPayload(std::string_view payload);

// The one JSON object of a signed document. Refused where it is no JSON, no object, or repeats a
// name within an object: two readers must not understand one signature differently.
ZRMResult<ZRMDictionary> zrm_jsonObjectFromSignedData(const ZRMData& data);
