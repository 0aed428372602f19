// The Linux body of every port.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMPlatform.h"

struct ZRMHostSignals;

// What a host may decide about its device body. Empty texts mean the system's own choice.
struct ZRMLinuxPlatformOptions {
    // Directory below which documents, application support, defaults and keychain live; otherwise
    // the XDG base directories.
    std::string homeDirectory;
    // Directory that holds the library's resource bundles; otherwise the library's own.
    std::string resourcesDirectory;
    // The application bundle with its Info.plist; otherwise the directory of the executable.
    std::string bundleDirectory;
    // PEM file of the certificate authorities that TLS trusts; otherwise the system's.
    std::string certificateAuthorityFile;
    // "HOST:PORT:ADDRESS" or "HOST:PORT:ADDRESS:PORT": where a name and port are taken to lie.
    std::vector<std::string> resolveOverrides;
    // The host's own main loop; otherwise a thread of the library's is the main queue.
    std::shared_ptr<ZRMQueue> mainQueue;
    // What the host tells of the device; otherwise what it tells through ZRMDeviceSignals.
    std::shared_ptr<ZRMHostSignals> hostSignals;
};

ZRM_EXPORT std::shared_ptr<const ZRMPlatform> zrm_makeLinuxPlatform(
    const ZRMLinuxPlatformOptions& options);
