// What a risk server checks before it believes an upload.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include <boost/json/object.hpp>

#include "Tools/zrm-risk-server/ZRMServerMessages.h"

// The text says what is wrong with the upload.
class ZRMMalformedUpload : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct ZRMUpload {
    std::string eventType;
    boost::json::object event;  // {eventType: {...}}
};

// The event of an upload: gzip around {"payload":BASE64URL,"signatures":[]}, whose payload is
// {"array":[{TYPE:{...}}]}. Throws ZRMMalformedUpload where the headers or any layer are not so.
ZRMUpload zrm_readUpload(const ZRMServerRequest& request);

// Throws ZRMMalformedUpload where the text is not unpadded base64url.
std::string zrm_decodeBase64Url(std::string_view text);

// The content of one whole gzip member. Throws ZRMMalformedUpload where the bytes are anything
// else, or where the content is longer than `limit` bytes.
std::string zrm_inflateGzip(std::string_view bytes, std::size_t limit);
