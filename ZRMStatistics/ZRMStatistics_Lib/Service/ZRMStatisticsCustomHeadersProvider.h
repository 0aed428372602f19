// Request headers that the owner of the statistics service adds to every upload.
#pragma once

#include <map>
#include <string>

class ZRMStatisticsCustomHeadersProvider {
  public:
    virtual ~ZRMStatisticsCustomHeadersProvider() = default;
    // Header name to value; asked once for each upload, on any thread.
    [[nodiscard]] virtual std::map<std::string, std::string> customHeaders() const = 0;
};
