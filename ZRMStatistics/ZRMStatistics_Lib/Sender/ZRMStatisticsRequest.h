// The HTTP request of one upload.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMUrlRequest.h"

// `serverTimeMilliseconds` is the server's time since 1970, or 0 while it is not known. Custom
// headers replace those the request has by itself. `body` must not be null.
ZRMUrlRequest zrm_statisticsRequest(const std::string& url, ZRMSharedData body,
                                    std::int64_t serverTimeMilliseconds,
                                    const std::map<std::string, std::string>& customHeaders);
