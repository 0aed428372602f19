// How long things last.
#pragma once

// Seconds. A value.
class ZRMTimeIntervalSettings {
  public:
    ZRMTimeIntervalSettings() = default;
    ZRMTimeIntervalSettings(double settingsUpdateInterval, double execSessionTimeout)
        : settingsUpdateInterval_(settingsUpdateInterval),
          execSessionTimeout_(execSessionTimeout) {}

    // Between two downloads of the settings.
    [[nodiscard]] double settingsUpdateInterval() const { return settingsUpdateInterval_; }
    void setSettingsUpdateInterval(double seconds) { settingsUpdateInterval_ = seconds; }

    // Without a start of the library, after which the next start is a new execution session.
    [[nodiscard]] double execSessionTimeout() const { return execSessionTimeout_; }
    void setExecSessionTimeout(double seconds) { execSessionTimeout_ = seconds; }

    friend bool operator==(const ZRMTimeIntervalSettings&,
                           const ZRMTimeIntervalSettings&) = default;

  private:
    double settingsUpdateInterval_ = 0;
    double execSessionTimeout_ = 0;
};
