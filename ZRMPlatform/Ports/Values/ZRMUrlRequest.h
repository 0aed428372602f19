// One HTTP request and its response, as plain values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// Numbers are those of the URL-loading system that callers were written against.
enum class ZRMUrlRequestCachePolicy {
    UseProtocolCachePolicy = 0,
    ReloadIgnoringLocalCacheData = 1,
};

// Header names compare without regard to ASCII case and keep the spelling they were set with.
class ZRMHttpHeaders {
  public:
    using Field = std::pair<std::string, std::string>;

    // Replaces the field of that name, or appends it.
    void set(std::string_view name, std::string_view value);
    // The value of the field, or nullptr when there is none.
    [[nodiscard]] const std::string* find(std::string_view name) const;
    // In the order in which the fields were first set.
    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }

  private:
    std::vector<Field> fields_;
};

struct ZRMUrlRequest {
    std::string method = "GET";
    std::string url;  // absolute text
    ZRMHttpHeaders headers = {};
    ZRMSharedData body = {};  // absent means no body
    double timeoutIntervalSeconds = 60;
    ZRMUrlRequestCachePolicy cachePolicy = ZRMUrlRequestCachePolicy::UseProtocolCachePolicy;
    // A longer body ends the exchange with ZRMUrlErrorDataLengthExceedsMaximum.
    std::size_t maximumResponseBytes = std::size_t{16} * 1024 * 1024;
};

struct ZRMUrlResponse {
    int statusCode = 0;
    ZRMHttpHeaders headers = {};
};
