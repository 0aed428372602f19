// Where the library talks to.
#pragma once

#include <optional>
#include <string>

// Absolute URL texts. A value.
class ZRMUrlSettings {
  public:
    ZRMUrlSettings() = default;
    ZRMUrlSettings(std::string defaultStatisticsUrl, std::string settingsUpdateUrl,
                   std::string secureDeviceTagUrl)
        : defaultStatisticsUrl_(std::move(defaultStatisticsUrl)),
          settingsUpdateUrl_(std::move(settingsUpdateUrl)),
          secureDeviceTagUrl_(std::move(secureDeviceTagUrl)) {}

    // The endpoint that the document names.
    [[nodiscard]] const std::string& defaultStatisticsUrl() const { return defaultStatisticsUrl_; }
    void setDefaultStatisticsUrl(std::string url) { defaultStatisticsUrl_ = std::move(url); }

    // The endpoint that the host names instead.
    [[nodiscard]] const std::optional<std::string>& customStatisticsUrl() const {
        return customStatisticsUrl_;
    }
    void setCustomStatisticsUrl(std::optional<std::string> url) {
        customStatisticsUrl_ = std::move(url);
    }

    // The custom one where there is one, else the default.
    [[nodiscard]] const std::string& statisticsUrl() const {
        return customStatisticsUrl_ ? *customStatisticsUrl_ : defaultStatisticsUrl_;
    }

    [[nodiscard]] const std::string& settingsUpdateUrl() const { return settingsUpdateUrl_; }
    void setSettingsUpdateUrl(std::string url) { settingsUpdateUrl_ = std::move(url); }

    [[nodiscard]] const std::string& secureDeviceTagUrl() const { return secureDeviceTagUrl_; }
    void setSecureDeviceTagUrl(std::string url) { secureDeviceTagUrl_ = std::move(url); }

    friend bool operator==(const ZRMUrlSettings&, const ZRMUrlSettings&) = default;

  private:
    std::string defaultStatisticsUrl_;
    std::optional<std::string> customStatisticsUrl_;
    std::string settingsUpdateUrl_;
    std::string secureDeviceTagUrl_;
};
