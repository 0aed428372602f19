#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedUrlSession.h"

ZRMSimulatedDevice::ZRMSimulatedDevice()
    : time_(std::make_shared<ZRMSimulatedTime>()),
      random_(std::make_shared<ZRMSimulatedRandom>()),
      disk_(std::make_shared<ZRMSimulatedDisk>(time_, random_)),
      network_(std::make_shared<ZRMSimulatedNetwork>(time_)),
      console_(std::make_shared<ZRMSimulatedConsole>()),
      keychain_(std::make_shared<ZRMSimulatedKeychain>()),
      defaults_(std::make_shared<ZRMSimulatedDefaultsStore>()),
      reachability_(std::make_shared<ZRMSimulatedReachability>()),
      clock_(std::make_shared<ZRMSimulatedClock>(time_)),
      digests_(std::make_shared<ZRMSimulatedDigests>()),
      rsaKeys_(std::make_shared<ZRMSimulatedRsaKeys>()),
      trust_(std::make_shared<ZRMSimulatedTrust>()),
      keyedArchiver_(std::make_shared<ZRMSimulatedKeyedArchiver>()),
      mainBundle_(std::make_shared<ZRMSimulatedMainBundle>()),
      resourceBundles_(std::make_shared<ZRMSimulatedResourceBundles>(disk_)),
      description_(std::make_shared<ZRMSimulatedDeviceDescription>()),
      linkLayer_(std::make_shared<ZRMSimulatedLinkLayer>()),
      locale_(std::make_shared<ZRMSimulatedLocaleSource>()),
      location_(std::make_shared<ZRMSimulatedLocation>()),
      locationAuthorization_(std::make_shared<ZRMSimulatedLocationAuthorization>(location_)),
      calls_(std::make_shared<ZRMSimulatedCallList>()),
      screens_(std::make_shared<ZRMSimulatedScreens>()),
      notifications_(std::make_shared<ZRMSimulatedNotificationCenter>()),
      interfaces_(std::make_shared<ZRMSimulatedNetworkInterfaces>()),
      wifi_(std::make_shared<ZRMSimulatedWifi>()),
      localAuthentication_(std::make_shared<ZRMSimulatedLocalAuthentication>()),
      processInformation_(std::make_shared<ZRMSimulatedProcessInformation>()),
      power_(std::make_shared<ZRMSimulatedPower>()),
      carriers_(std::make_shared<ZRMSimulatedCarriers>()),
      volumes_(std::make_shared<ZRMSimulatedVolumes>()),
      kernelValues_(std::make_shared<ZRMSimulatedKernelValues>()),
      environment_(std::make_shared<ZRMSimulatedProcessEnvironment>()),
      fileAccess_(std::make_shared<ZRMSimulatedFileAccess>()),
      commandProcessor_(std::make_shared<ZRMSimulatedCommandProcessor>()) {
    startProcess();
}

ZRMSimulatedDevice::~ZRMSimulatedDevice() {
    setInstalled(false);
    endProcess(ZRMSimulatedLoss::None);
}

void ZRMSimulatedDevice::startProcess() {
    ++lives_;
    process_ = std::make_shared<ZRMSimulatedProcess>(time_);
    executor_ = std::make_shared<ZRMSimulatedExecutor>(process_);
    loader_ = std::make_shared<ZRMSimulatedLoader>();
    urlOpener_ = std::make_shared<ZRMSimulatedUrlOpener>(executor_->mainQueue());
    sqliteFiles_ = std::make_unique<ZRMSimulatedSqliteFiles>(disk_, process_, time_, random_);
    platform_ = makePlatform();
    trust_->processStarted(platform_);
    setSchedulingSeed(seed_);
    if (installed_) {
        ZRMPlatform::install(platform_);
    }
}

void ZRMSimulatedDevice::endProcess(ZRMSimulatedLoss loss) {
    process_->kill();
    process_->scheduler()->dropEverything();
    platform_->instances->dropEverything();
    disk_->lose(loss);
}

std::shared_ptr<ZRMPlatform> ZRMSimulatedDevice::makePlatform() {
    auto platform = std::make_shared<ZRMPlatform>();
    platform->executor = executor_;
    platform->clock = clock_;
    platform->urlSessions = std::make_shared<ZRMSimulatedUrlSessionFactory>(network_, process_);
    platform->digests = digests_;
    platform->rsaKeys = rsaKeys_;
    platform->trust = trust_;
    platform->fileManager = std::make_shared<ZRMSimulatedFileManager>(disk_, process_);
    platform->directories = std::make_shared<ZRMSimulatedDirectories>(sqliteFiles_->name());
    platform->consoleLog = std::make_shared<ZRMSimulatedConsoleLog>(console_, process_);
    platform->userDefaults =
        std::make_shared<ZRMSimulatedUserDefaults>(defaults_, process_, platform->consoleLog);
    platform->keyedArchiver = keyedArchiver_;
    platform->keychainItems = std::make_shared<ZRMSimulatedKeychainItems>(keychain_, process_);
    platform->mainBundle = mainBundle_;
    platform->resourceBundles = resourceBundles_;
    platform->reachabilityTargets =
        std::make_shared<ZRMSimulatedReachabilityTargets>(reachability_, process_);
    platform->device = description_;
    platform->linkLayer = linkLayer_;
    platform->locale = locale_;
    addSignals(*platform);
    platform->processEnvironment = environment_;
    platform->loader = loader_;
    platform->fileAccess = fileAccess_;
    platform->urlOpener = urlOpener_;
    platform->commandProcessor = commandProcessor_;
    platform->random = random_;
    return platform;
}

void ZRMSimulatedDevice::addSignals(ZRMPlatform& platform) {
    const auto mainQueue = executor_->mainQueue();
    platform.locationAuthorization = locationAuthorization_;
    platform.locationServices =
        std::make_shared<ZRMSimulatedLocationServices>(location_, process_, mainQueue);
    platform.calls = std::make_shared<ZRMSimulatedCalls>(calls_, process_);
    platform.screens = screens_;
    platform.notifications =
        std::make_shared<ZRMSimulatedNotifications>(notifications_, process_, mainQueue);
    platform.networkInterfaces = interfaces_;
    platform.wifi = wifi_;
    platform.localAuthentication = localAuthentication_;
    platform.processInformation = processInformation_;
    platform.power = power_;
    platform.carriers = carriers_;
    platform.volumes = volumes_;
    platform.kernelValues = kernelValues_;
}

void ZRMSimulatedDevice::runUntilIdle() {
    while (process_->scheduler()->runOne()) {
    }
}

void ZRMSimulatedDevice::advanceBy(double seconds) {
    const auto deadline = time_->momentAfter(ZRMSimulatedMoment::Clock::Uptime, seconds);
    process_->scheduler()->runUntilMoment(deadline);
    time_->advanceTo(deadline.microseconds);
}

bool ZRMSimulatedDevice::runUntil(const std::function<bool()>& condition, double withinSeconds) {
    const auto deadline = time_->momentAfter(ZRMSimulatedMoment::Clock::Uptime, withinSeconds);
    try {
        if (process_->scheduler()->runUntil(condition, deadline)) {
            return true;
        }
    } catch (const ZRMSimulatedProcessEnded&) {
        return condition();
    }
    runUntilIdle();
    return condition();
}

bool ZRMSimulatedDevice::runOneTask() {
    return process_->scheduler()->runOne();
}

void ZRMSimulatedDevice::jumpWallClock(double seconds) {
    time_->jumpWallClock(seconds);
    runUntilIdle();
}

void ZRMSimulatedDevice::setSchedulingSeed(std::optional<std::uint64_t> seed) {
    seed_ = seed;
    process_->scheduler()->setSeed(seed ? std::optional(*seed + lives_) : std::nullopt);
}

void ZRMSimulatedDevice::killAtDiskOperation(std::uint64_t number) {
    disk_->faults().setHook([this, number](std::uint64_t current, auto, const std::string&) {
        if (current == number) {
            killProcess();
        }
    });
}

void ZRMSimulatedDevice::restartProcess(ZRMSimulatedLoss loss) {
    endProcess(loss);
    startProcess();
}

void ZRMSimulatedDevice::reboot(ZRMSimulatedLoss loss) {
    endProcess(loss);
    time_->reboot();
    startProcess();
}

void ZRMSimulatedDevice::setConnected(bool connected) {
    network_->setConnected(connected);
    reachability_->setFlags(connected ? ZRMReachabilityReachable : 0U);
}

void ZRMSimulatedDevice::setInstalled(bool installed) {
    if (installed_ || installed) {
        ZRMPlatform::install(installed ? platform_ : nullptr);
    }
    installed_ = installed;
}

ZRMScopedPlatform::ZRMScopedPlatform(ZRMSimulatedDevice& device) : device_(&device) {
    device.setInstalled(true);
}

ZRMScopedPlatform::ZRMScopedPlatform(std::shared_ptr<const ZRMPlatform> platform) {
    ZRMPlatform::install(std::move(platform));
}

ZRMScopedPlatform::~ZRMScopedPlatform() {
    if (device_) {
        device_->setInstalled(false);
    } else {
        ZRMPlatform::install(nullptr);
    }
}
