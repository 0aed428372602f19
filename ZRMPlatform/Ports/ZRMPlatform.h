// The device the library runs on: one body for every port.
#pragma once

#include <cstdint>
#include <memory>

#include "ZRMPlatform/Ports/Values/ZRMExport.h"
#include "ZRMPlatform/Ports/ZRMApplicationNotifications.h"
#include "ZRMPlatform/Ports/ZRMBundles.h"
#include "ZRMPlatform/Ports/ZRMCalls.h"
#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMDevice.h"
#include "ZRMPlatform/Ports/ZRMDigests.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"
#include "ZRMPlatform/Ports/ZRMJailbreakTraits.h"
#include "ZRMPlatform/Ports/ZRMKeychainItems.h"
#include "ZRMPlatform/Ports/ZRMKeyedArchive.h"
#include "ZRMPlatform/Ports/ZRMLoader.h"
#include "ZRMPlatform/Ports/ZRMLocalAuthentication.h"
#include "ZRMPlatform/Ports/ZRMLocationServices.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"
#include "ZRMPlatform/Ports/ZRMProcessInstances.h"
#include "ZRMPlatform/Ports/ZRMRandom.h"
#include "ZRMPlatform/Ports/ZRMReachabilityTarget.h"
#include "ZRMPlatform/Ports/ZRMRsaKeys.h"
#include "ZRMPlatform/Ports/ZRMScreens.h"
#include "ZRMPlatform/Ports/ZRMTrust.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"
#include "ZRMPlatform/Ports/ZRMUserDefaults.h"

// Every port is present. The struct does not change once it is installed.
struct ZRMPlatform {
    std::shared_ptr<ZRMExecutor> executor;
    std::shared_ptr<ZRMClock> clock;
    std::shared_ptr<ZRMUrlSessionFactory> urlSessions;
    std::shared_ptr<ZRMDigests> digests;
    std::shared_ptr<ZRMRsaKeys> rsaKeys;
    std::shared_ptr<ZRMTrust> trust;
    std::shared_ptr<ZRMFileManager> fileManager;
    std::shared_ptr<ZRMDirectories> directories;
    std::shared_ptr<ZRMUserDefaults> userDefaults;
    std::shared_ptr<ZRMKeyedArchiver> keyedArchiver;
    std::shared_ptr<ZRMKeychainItems> keychainItems;
    std::shared_ptr<ZRMMainBundle> mainBundle;
    std::shared_ptr<ZRMResourceBundles> resourceBundles;
    std::shared_ptr<ZRMReachabilityTargets> reachabilityTargets;
    std::shared_ptr<ZRMDevice> device;
    std::shared_ptr<ZRMLinkLayer> linkLayer;
    std::shared_ptr<ZRMLocaleSource> locale;
    std::shared_ptr<ZRMLocationAuthorization> locationAuthorization;
    std::shared_ptr<ZRMLocationServices> locationServices;
    std::shared_ptr<ZRMCalls> calls;
    std::shared_ptr<ZRMScreens> screens;
    std::shared_ptr<ZRMApplicationNotifications> notifications;
    std::shared_ptr<ZRMNetworkInterfaces> networkInterfaces;
    std::shared_ptr<ZRMWifi> wifi;
    std::shared_ptr<ZRMLocalAuthentication> localAuthentication;
    std::shared_ptr<ZRMProcessInformation> processInformation;
    std::shared_ptr<ZRMPower> power;
    std::shared_ptr<ZRMCarriers> carriers;
    std::shared_ptr<ZRMVolumes> volumes;
    std::shared_ptr<ZRMKernelValues> kernelValues;
    std::shared_ptr<ZRMProcessEnvironment> processEnvironment;
    std::shared_ptr<ZRMLoader> loader;
    std::shared_ptr<ZRMFileAccess> fileAccess;
    std::shared_ptr<ZRMUrlOpener> urlOpener;
    std::shared_ptr<ZRMCommandProcessor> commandProcessor;
    std::shared_ptr<ZRMConsoleLog> consoleLog;
    std::shared_ptr<ZRMRandom> random;
    std::shared_ptr<ZRMProcessInstances> instances = std::make_shared<ZRMProcessInstances>();

    // The installed platform; where none was installed, the default body is made and installed.
    // From any thread.
    ZRM_EXPORT static std::shared_ptr<const ZRMPlatform> current();

    // Replaces the platform for what is made from now on; what exists keeps the one it was made
    // with.
    ZRM_EXPORT static void install(std::shared_ptr<const ZRMPlatform> platform);

    // How often a platform was installed: what was taken from current() is still of the installed
    // platform as long as this number is the same. Takes no lock.
    static std::uint64_t generation();
};

// Makes the body that current() falls back to. Defined by the platform folder that is linked in.
std::shared_ptr<const ZRMPlatform> zrm_makeDefaultPlatform();
