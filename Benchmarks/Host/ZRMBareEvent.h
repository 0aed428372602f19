// What an event's bytes cost at the least: a JSON library and zlib, and nothing else.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <boost/json/value.hpp>

class ZRMBareEvent {
  public:
    // `payload` is the JSON text of an event as it is sent, `encodedPayload` the same in base64url.
    // Throws std::exception when that is no JSON.
    ZRMBareEvent(std::string_view payload, std::string encodedPayload);

    // Writes the event as JSON, then the document around its encoded form, and compresses that as
    // uploads are. The number of compressed bytes.
    std::size_t make() const;

  private:
    boost::json::value payload_;
    std::string encodedPayload_;
};
