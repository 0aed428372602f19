// Time zone and locale as the environment and the system's files say.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/ZRMDevice.h"

// The zone: TZ where it is a zone's name, /etc/timezone, the target of /etc/localtime, or "UTC".
// The locale: the first of LC_ALL, LC_TIME and LANG that is set and not empty, without encoding;
// "C", "POSIX", what no locale is called, and nothing at all mean "en_US_POSIX".
// The system's locale: LANG in /etc/locale.conf or /etc/default/locale, read the same way.
// The languages: those of LANGUAGE, then that of the first of LC_ALL, LC_MESSAGES and LANG; none
// where nobody chose one.
class ZRMLinuxLocaleSource : public ZRMLocaleSource {
  public:
    // `systemDirectory` stands in for /etc.
    explicit ZRMLinuxLocaleSource(std::shared_ptr<const ZRMProcessEnvironment> environment,
                                  std::string systemDirectory = "/etc");

    [[nodiscard]] std::string timeZoneIdentifier() const override;
    [[nodiscard]] std::string localeIdentifier() const override;
    [[nodiscard]] std::string systemLocaleIdentifier() const override;
    [[nodiscard]] std::vector<std::string> preferredLanguages() const override;

  private:
    std::shared_ptr<const ZRMProcessEnvironment> environment_;
    std::string systemDirectory_;
};
