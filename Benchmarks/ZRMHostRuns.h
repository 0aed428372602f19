// Runs of zrm-bench-host: an application directory, a home, and a far end.
#pragma once

#include <cstdint>
#include <string>

#include "Benchmarks/ZRMChildProcess.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

// The host, its bundle, its homes. One thread. Failures throw std::runtime_error.
class ZRMHostRuns {
  public:
    // Uploads go to `port` of this machine, in plain HTTP or, trusting `certificateAuthorityFile`,
    // over TLS. Settings and tags are asked for at `documentsPort`, which may refuse.
    struct FarEnd {
        std::uint16_t port = 0;
        std::uint16_t documentsPort = 0;
        std::string certificateAuthorityFile;
    };

    explicit ZRMHostRuns(FarEnd farEnd);

    void setFarEnd(FarEnd farEnd) { farEnd_ = std::move(farEnd); }
    // Instead of the bundles beside the library.
    void setResources(std::string path) { resources_ = std::move(path); }
    [[nodiscard]] const ZRMTestDirectory& directory() const { return directory_; }

    // A home that no run has used yet.
    std::string makeHome();
    // A home with so many reported and stored events, some of which may be uploaded already.
    std::string makeHomeWithEvents(std::size_t count);

    // Starts the host in that home with "scenario" and what else is in `options`.
    [[nodiscard]] ZRMChildProcess start(const std::string& home, ZRMDictionary options) const;
    // The same, to its end: what it measured.
    [[nodiscard]] ZRMDictionary run(const std::string& home, ZRMDictionary options) const;

  private:
    FarEnd farEnd_;
    ZRMTestDirectory directory_;
    std::string resources_;
    int homes_ = 0;
};

// A line that the host wrote.
ZRMDictionary zrm_measuredFromLine(const std::string& line);
double zrm_number(const ZRMDictionary& measured, const char* key);

// Throws std::runtime_error saying what is not so.
void zrm_mustHold(bool holds, const std::string& what);
