// What Linux says about traits of a jailbroken device. A Linux machine is no sealed phone: a shell
// is as a rule to be had, so the command processor counts as available.
#pragma once

#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMJailbreakTraits.h"

// Looks the scheme up among the desktop's registered handlers ("x-scheme-handler/…" in the
// mimeapps.list and mimeinfo.cache files of the XDG directories).
class ZRMLinuxUrlOpener final : public ZRMUrlOpener {
  public:
    ZRMLinuxUrlOpener();
    // The files to look into, for those who know better than the environment.
    explicit ZRMLinuxUrlOpener(std::vector<std::string> handlerFiles);
    [[nodiscard]] bool canOpenUrl(const std::string& url) const override;

  private:
    std::vector<std::string> handlerFiles_;
};

class ZRMLinuxCommandProcessor final : public ZRMCommandProcessor {
  public:
    [[nodiscard]] int availability() const override;
};

class ZRMLinuxFileAccess final : public ZRMFileAccess {
  public:
    [[nodiscard]] bool isReadable(const std::string& path) const override;
    [[nodiscard]] bool isWritable(const std::string& path) const override;
};
