// From libcurl's failures to the codes of the URL-loading domain.
#pragma once

#include <functional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"

// What is known of a transfer that libcurl ended.
struct ZRMLinuxUrlFailure {
    int curlCode = 0;                // a CURLcode, not CURLE_OK
    long systemError = 0;            // the `errno` of a failed connection, 0 when there is none
    bool isRedirect = false;         // the last complete response was a redirect
    std::string curlText;            // libcurl's own words; may be empty
    std::function<bool()> isOnline;  // whether there is any route out; asked only where it matters
};

ZRMUrlErrorCode zrm_urlErrorCode(const ZRMLinuxUrlFailure& failure);

// An error of that code with its standard description.
ZRMError zrm_urlError(ZRMUrlErrorCode code);

// As above; a failure without a code of its own is described in libcurl's words.
ZRMError zrm_urlError(const ZRMLinuxUrlFailure& failure);
