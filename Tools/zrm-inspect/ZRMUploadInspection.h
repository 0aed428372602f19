// Looks into the body of an upload.
#pragma once

#include <span>
#include <string>

#include "Tools/zrm-inspect/ZRMInspection.h"

struct ZRMInspectedUpload {
    std::string eventType;
    ZRMDictionary event;  // {eventType: {…}}
};

// The event within gzip, a JWS object without signatures and a payload {"array":[{TYPE:{…}}]}.
ZRMResult<ZRMInspectedUpload> zrm_uploadFromBytes(std::span<const std::uint8_t> body);

// {"bytes":…,"eventType":…,"event":{…},"error":null}; eventType and event are null beside an error.
ZRMInspection zrm_inspectUpload(const std::string& path);
