#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"

#include "ZRMPlatform/Linux/ZRMLinuxClock.h"
#include "ZRMPlatform/Linux/ZRMLinuxConsoleLog.h"
#include "ZRMPlatform/Linux/ZRMLinuxDevice.h"
#include "ZRMPlatform/Linux/ZRMLinuxDirectories.h"
#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux/ZRMLinuxJailbreakTraits.h"
#include "ZRMPlatform/Linux/ZRMLinuxProcessEnvironment.h"
#include "ZRMPlatform/Linux/ZRMLinuxRandom.h"
#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlSession.h"

std::shared_ptr<const ZRMPlatform> zrm_makeLinuxPlatform(const ZRMLinuxPlatformOptions& options) {
    auto platform = std::make_shared<ZRMPlatform>();
    platform->processEnvironment = std::make_shared<ZRMLinuxProcessEnvironment>();
    const auto directories =
        std::make_shared<ZRMLinuxDirectories>(options.homeDirectory, *platform->processEnvironment);
    const auto routes = std::make_shared<ZRMLinuxKernelRoutes>();
    platform->clock = std::make_shared<ZRMLinuxClock>();
    platform->consoleLog = std::make_shared<ZRMLinuxConsoleLog>();
    platform->device = std::make_shared<ZRMLinuxDevice>();
    platform->directories = directories;
    platform->executor = std::make_shared<ZRMLinuxExecutor>(options.mainQueue);
    platform->commandProcessor = std::make_shared<ZRMLinuxCommandProcessor>();
    platform->fileAccess = std::make_shared<ZRMLinuxFileAccess>();
    platform->fileManager = std::make_shared<ZRMLinuxFileManager>();
    platform->loader = zrm_processLoader();
    platform->urlOpener = std::make_shared<ZRMLinuxUrlOpener>();
    platform->random = std::make_shared<ZRMLinuxRandom>();
    platform->urlSessions = std::make_shared<ZRMLinuxUrlSessionFactory>(
        platform->executor, options.certificateAuthorityFile, options.resolveOverrides, routes);
    return platform;
}

std::shared_ptr<const ZRMPlatform> zrm_makeDefaultPlatform() {
    return zrm_makeLinuxPlatform({});
}
