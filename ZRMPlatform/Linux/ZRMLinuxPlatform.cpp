#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"

#include <algorithm>

#include "ZRMPlatform/HostFed/ZRMHostFedPorts.h"
#include "ZRMPlatform/Linux/ZRMLinuxCarriers.h"
#include "ZRMPlatform/Linux/ZRMLinuxClock.h"
#include "ZRMPlatform/Linux/ZRMLinuxConsoleLog.h"
#include "ZRMPlatform/Linux/ZRMLinuxDevice.h"
#include "ZRMPlatform/Linux/ZRMLinuxDigests.h"
#include "ZRMPlatform/Linux/ZRMLinuxDirectories.h"
#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux/ZRMLinuxJailbreakTraits.h"
#include "ZRMPlatform/Linux/ZRMLinuxKernelValues.h"
#include "ZRMPlatform/Linux/ZRMLinuxKeychainFile.h"
#include "ZRMPlatform/Linux/ZRMLinuxKeychainItems.h"
#include "ZRMPlatform/Linux/ZRMLinuxKeyedArchiver.h"
#include "ZRMPlatform/Linux/ZRMLinuxLinkLayer.h"
#include "ZRMPlatform/Linux/ZRMLinuxLocaleSource.h"
#include "ZRMPlatform/Linux/ZRMLinuxMainBundle.h"
#include "ZRMPlatform/Linux/ZRMLinuxNetworkInterfaces.h"
#include "ZRMPlatform/Linux/ZRMLinuxPower.h"
#include "ZRMPlatform/Linux/ZRMLinuxProcessEnvironment.h"
#include "ZRMPlatform/Linux/ZRMLinuxProcessInformation.h"
#include "ZRMPlatform/Linux/ZRMLinuxRandom.h"
#include "ZRMPlatform/Linux/ZRMLinuxReachability.h"
#include "ZRMPlatform/Linux/ZRMLinuxResourceBundles.h"
#include "ZRMPlatform/Linux/ZRMLinuxRsaKeys.h"
#include "ZRMPlatform/Linux/ZRMLinuxScreens.h"
#include "ZRMPlatform/Linux/ZRMLinuxSecretService.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlSession.h"
#include "ZRMPlatform/Linux/ZRMLinuxUserDefaults.h"
#include "ZRMPlatform/Linux/ZRMLinuxVolumes.h"
#include "ZRMPlatform/Linux/ZRMLinuxWifi.h"

namespace {

// A host that names a home wants everything of the library below it, secrets too.
std::shared_ptr<ZRMKeychainItems> makeKeychain(bool hasHome, const ZRMLinuxDirectories& directories,
                                               const std::shared_ptr<ZRMConsoleLog>& console) {
    auto file = std::make_shared<ZRMLinuxKeychainFile>(
        directories.keychains() + "/zrm-keychain.plist", console);
    if (hasHome) {
        return file;
    }
    return std::make_shared<ZRMLinuxKeychainItems>(&zrm_connectSecretService, std::move(file));
}

void addNetwork(ZRMPlatform& platform, const ZRMLinuxPlatformOptions& options) {
    const auto routes = std::make_shared<ZRMLinuxKernelRoutes>();
    const auto overrides = zrm_parseResolveOverrides(options.resolveOverrides);
    platform.urlSessions = std::make_shared<ZRMLinuxUrlSessionFactory>(
        platform.executor, options.certificateAuthorityFile, overrides, routes);
    platform.trust =
        std::make_shared<ZRMLinuxTrust>(platform.executor, platform.clock, platform.urlSessions);
    platform.reachabilityTargets = std::make_shared<ZRMLinuxReachabilityTargets>(
        routes, ZRMLinuxKernelRouteChanges::shared(), ZRMLinuxInterfaces(), overrides);
    platform.linkLayer = std::make_shared<ZRMLinuxLinkLayer>(ZRMLinuxInterfaces());
    platform.networkInterfaces = std::make_shared<ZRMLinuxNetworkInterfaces>(ZRMLinuxInterfaces());
    platform.wifi = std::make_shared<ZRMLinuxWifi>(ZRMLinuxInterfaces());
}

void addStores(ZRMPlatform& platform, const ZRMLinuxPlatformOptions& options) {
    const auto directories =
        std::make_shared<ZRMLinuxDirectories>(options.homeDirectory, *platform.processEnvironment);
    platform.directories = directories;
    platform.fileManager = std::make_shared<ZRMLinuxFileManager>();
    platform.userDefaults = std::make_shared<ZRMLinuxUserDefaults>(
        directories->preferences(), platform.consoleLog,
        platform.executor->concurrentQueue(ZRMQualityOfService::Utility));
    platform.keyedArchiver = std::make_shared<ZRMLinuxKeyedArchiver>();
    platform.keychainItems =
        makeKeychain(!options.homeDirectory.empty(), *directories, platform.consoleLog);
    platform.mainBundle = std::make_shared<ZRMLinuxMainBundle>(options.bundleDirectory);
    platform.resourceBundles =
        std::make_shared<ZRMLinuxResourceBundles>(options.resourcesDirectory);
}

// Applications whose bundle identifiers differ in the last component alone are of one maker.
std::string makerOf(const ZRMMainBundle& bundle) {
    const auto identifier = bundle.identifier().value_or("");
    return identifier.substr(0, std::min(identifier.rfind('.'), identifier.size()));
}

void addMachine(ZRMPlatform& platform) {
    platform.device = std::make_shared<ZRMLinuxDevice>(makerOf(*platform.mainBundle));
    platform.locale = std::make_shared<ZRMLinuxLocaleSource>(platform.processEnvironment);
    platform.screens = std::make_shared<ZRMLinuxScreens>();
    platform.processInformation = std::make_shared<ZRMLinuxProcessInformation>();
    platform.power = std::make_shared<ZRMLinuxPower>();
    platform.carriers = std::make_shared<ZRMLinuxCarriers>();
    platform.volumes = std::make_shared<ZRMLinuxVolumes>();
    platform.kernelValues =
        std::make_shared<ZRMLinuxKernelValues>(platform.device, platform.processInformation);
}

}  // namespace

std::shared_ptr<const ZRMPlatform> zrm_makeLinuxPlatform(const ZRMLinuxPlatformOptions& options) {
    auto platform = std::make_shared<ZRMPlatform>();
    platform->consoleLog = std::make_shared<ZRMLinuxConsoleLog>();
    platform->processEnvironment = std::make_shared<ZRMLinuxProcessEnvironment>();
    platform->executor = std::make_shared<ZRMLinuxExecutor>(options.mainQueue);
    platform->clock = std::make_shared<ZRMLinuxClock>();
    platform->random = std::make_shared<ZRMLinuxRandom>();
    platform->digests = std::make_shared<ZRMLinuxDigests>();
    platform->rsaKeys = std::make_shared<ZRMLinuxRsaKeys>();
    platform->loader = zrm_processLoader();
    platform->fileAccess = std::make_shared<ZRMLinuxFileAccess>();
    platform->urlOpener = std::make_shared<ZRMLinuxUrlOpener>();
    platform->commandProcessor = std::make_shared<ZRMLinuxCommandProcessor>();
    addStores(*platform, options);
    addNetwork(*platform, options);
    addMachine(*platform);
    zrm_joinHostFedPorts(*platform,
                         options.hostSignals ? options.hostSignals : ZRMHostSignals::shared());
    return platform;
}

std::shared_ptr<const ZRMPlatform> zrm_makeDefaultPlatform() {
    return zrm_makeLinuxPlatform({});
}
