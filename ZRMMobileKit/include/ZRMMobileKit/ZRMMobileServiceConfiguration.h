// What a host decides about the service before it makes one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMExport.h"

// How much the console and the trace file get to see.
enum ZRMMobileServiceLogLevel : std::uint64_t {
    ZRMMobileServiceLogLevelVerbose = 0,  // every line
    ZRMMobileServiceLogLevelErrors = 1,   // errors only
};

// A plain value. A service copies the configuration it is made with, so later changes to the
// original change nothing. Not to be changed by one thread while another reads it.
class ZRM_EXPORT ZRMMobileServiceConfiguration {
  public:
    // The same as default construction.
    static ZRMMobileServiceConfiguration configuration();

    ZRMMobileServiceConfiguration();
    ZRMMobileServiceConfiguration(const ZRMMobileServiceConfiguration& other);
    ZRMMobileServiceConfiguration(ZRMMobileServiceConfiguration&& other) noexcept;
    ZRMMobileServiceConfiguration& operator=(const ZRMMobileServiceConfiguration& other);
    ZRMMobileServiceConfiguration& operator=(ZRMMobileServiceConfiguration&& other) noexcept;
    ~ZRMMobileServiceConfiguration();

    // Where events are uploaded to instead of the endpoint that the settings name; absent at first.
    // An absolute HTTP or HTTPS URL of at most 2000 characters; a "cid" query item in it replaces
    // the customer identifier. A text of another form makes activation fail with error 8.
    [[nodiscard]] const std::optional<std::string>& statisticsUrl() const;
    void setStatisticsUrl(std::optional<std::string> statisticsUrl);

    // One of ZRMMobileServiceLogLevel; errors only at first. Other numbers count as errors only.
    [[nodiscard]] std::uint64_t logLevel() const;
    void setLogLevel(std::uint64_t logLevel);

  private:
    std::optional<std::string> statisticsUrl_;
    std::uint64_t logLevel_ = ZRMMobileServiceLogLevelErrors;
};
