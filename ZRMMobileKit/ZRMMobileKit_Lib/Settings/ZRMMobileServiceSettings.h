// The settings in force.
#pragma once

#include <optional>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMEventSettings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMIdsSettings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMLoggerSettings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMTimeIntervalSettings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMUrlSettings.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

// A text of the document is missing, empty or no URL.
class ZRMSettingsException : public ZRMInvalidArgument {
  public:
    ZRMSettingsException(const std::string& reason, ZRMDictionary userInfo)
        : ZRMInvalidArgument(reason), userInfo_(std::move(userInfo)) {}

    [[nodiscard]] const ZRMDictionary& userInfo() const { return userInfo_; }

  private:
    ZRMDictionary userInfo_;
};

// A value of five sections.
class ZRMMobileServiceSettings {
  public:
    // The values that hold until a document says otherwise.
    static ZRMMobileServiceSettings defaultSettings();
    // From a flat document that holds every key, all values texts. A missing or empty text, and a
    // URL text that is no URL, throws what makeExceptionForKey() makes. A policy of which a key is
    // missing or empty is absent.
    static ZRMMobileServiceSettings settingsFromJson(const ZRMDictionary& document);
    // The flat document of the settings. The effective statistics URL stands where the default one
    // is read, and the customized client identifier is written but never read; otherwise reading it
    // again yields equal settings.
    static ZRMDictionary jsonFromSettings(const ZRMMobileServiceSettings& settings);
    // "Parameter is nil: %@" with the key.
    static ZRMSettingsException makeExceptionForKey(const std::string& key,
                                                    ZRMDictionary userInfo = {});

    ZRMMobileServiceSettings() = default;
    ZRMMobileServiceSettings(ZRMUrlSettings urls, ZRMTimeIntervalSettings timeIntervals,
                             ZRMEventSettings events, ZRMIdsSettings ids, ZRMLoggerSettings logger)
        : urls_(std::move(urls)),
          timeIntervals_(timeIntervals),
          events_(events),
          ids_(std::move(ids)),
          logger_(logger) {}

    [[nodiscard]] const ZRMUrlSettings& urls() const { return urls_; }
    [[nodiscard]] ZRMUrlSettings& urls() { return urls_; }
    [[nodiscard]] const ZRMTimeIntervalSettings& timeIntervals() const { return timeIntervals_; }
    [[nodiscard]] ZRMTimeIntervalSettings& timeIntervals() { return timeIntervals_; }
    [[nodiscard]] const ZRMEventSettings& events() const { return events_; }
    [[nodiscard]] ZRMEventSettings& events() { return events_; }
    [[nodiscard]] const ZRMIdsSettings& ids() const { return ids_; }
    [[nodiscard]] ZRMIdsSettings& ids() { return ids_; }
    [[nodiscard]] const ZRMLoggerSettings& logger() const { return logger_; }
    [[nodiscard]] ZRMLoggerSettings& logger() { return logger_; }

    // The value of the first query item named "cid" of the effective statistics URL; absent when
    // there is none or it has no value.
    [[nodiscard]] std::optional<std::string> getClientIdFromStatisticsUrl() const;
    // That identifier where there is one, else the section's own.
    [[nodiscard]] std::string customizedClientId() const;

    friend bool operator==(const ZRMMobileServiceSettings&,
                           const ZRMMobileServiceSettings&) = default;

  private:
    ZRMUrlSettings urls_;
    ZRMTimeIntervalSettings timeIntervals_;
    ZRMEventSettings events_;
    ZRMIdsSettings ids_;
    ZRMLoggerSettings logger_;
};
