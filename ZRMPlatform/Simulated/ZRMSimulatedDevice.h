// A whole device in memory, with time that moves only when told to, for deterministic tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedBundles.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedCalls.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedClock.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedConsole.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDescription.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDigests.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedExecutor.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedFileManager.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedHardware.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedJailbreakTraits.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedKeychain.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedKeyedArchiver.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedLoader.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedLocation.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedNetwork.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedRandom.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedReachability.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedRsaKeys.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedScreens.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedSqliteFiles.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedTime.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedTrust.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedUserDefaults.h"

// The device and the application's process on it. Everything happens in the calling thread, and
// only inside the functions that run or wait; nothing of it may be used from a second thread.
//
//   ZRMSimulatedDevice device;
//   ZRMScopedPlatform installed(device);
//   … post a report through the library …
//   device.advanceBy(30);
//   EXPECT_EQ(device.network().requestsTo("/stat").size(), 1u);
//   device.restartProcess();   // the same disk, keychain and clock; a new process
//
// Objects of a process may outlive the device; their ports then do nothing.
class ZRMSimulatedDevice {
  public:
    ZRMSimulatedDevice();
    ~ZRMSimulatedDevice();
    ZRMSimulatedDevice(const ZRMSimulatedDevice&) = delete;
    ZRMSimulatedDevice& operator=(const ZRMSimulatedDevice&) = delete;

    // The ports of the current process.
    [[nodiscard]] std::shared_ptr<const ZRMPlatform> platform() const { return platform_; }

    // Runs everything that is due now; time does not pass.
    void runUntilIdle();
    // Lets time pass, so that timers and answers come in order, each at its moment.
    void advanceBy(double seconds);
    // Lets time pass until the condition holds, at most so long. Whether it holds.
    bool runUntil(const std::function<bool()>& condition, double withinSeconds);
    // Runs one task that is due now; false when there is none.
    bool runOneTask();
    // Moves the wall clock alone, either way, and runs what became due.
    void jumpWallClock(double seconds);

    [[nodiscard]] ZRMDate now() const { return time_->now(); }
    [[nodiscard]] std::uint64_t tasksRun() const { return process_->scheduler()->tasksRun(); }

    // Chooses among runnable tasks by chance from now on, restarts included; none ends that.
    void setSchedulingSeed(std::optional<std::uint64_t> seed);

    // Ends the process as it stands. From anywhere, tasks and disk hooks included: code still on
    // the stack goes on without any effect, and a wait it enters throws ZRMSimulatedProcessEnded.
    void killProcess() { process_->kill(); }
    [[nodiscard]] bool isProcessAlive() const { return process_->isAlive(); }
    // The process is killed just before the disk operation of that number takes effect.
    void killAtDiskOperation(std::uint64_t number);

    // Kills the process if it lives, drops its tasks, timers, exchanges and single instances, and
    // starts a new one. Outside every task.
    void restartProcess(ZRMSimulatedLoss loss = ZRMSimulatedLoss::None);
    // The same with the uptime at 0 again.
    void reboot(ZRMSimulatedLoss loss = ZRMSimulatedLoss::None);

    // The network and every reachability target together.
    void setConnected(bool connected);

    [[nodiscard]] ZRMSimulatedDisk& disk() { return *disk_; }
    [[nodiscard]] ZRMSimulatedNetwork& network() { return *network_; }
    [[nodiscard]] ZRMSimulatedConsole& console() { return *console_; }
    [[nodiscard]] ZRMSimulatedKeychain& keychain() { return *keychain_; }
    [[nodiscard]] ZRMSimulatedDefaultsStore& userDefaults() { return *defaults_; }
    [[nodiscard]] ZRMSimulatedReachability& reachability() { return *reachability_; }
    [[nodiscard]] ZRMSimulatedClock& clock() { return *clock_; }
    [[nodiscard]] ZRMSimulatedRandom& random() { return *random_; }
    [[nodiscard]] ZRMSimulatedDigests& digests() { return *digests_; }
    [[nodiscard]] ZRMSimulatedRsaKeys& rsaKeys() { return *rsaKeys_; }
    [[nodiscard]] ZRMSimulatedTrust& trust() { return *trust_; }
    [[nodiscard]] ZRMSimulatedKeyedArchiver& keyedArchiver() { return *keyedArchiver_; }
    [[nodiscard]] ZRMSimulatedMainBundle& mainBundle() { return *mainBundle_; }
    [[nodiscard]] ZRMSimulatedResourceBundles& resourceBundles() { return *resourceBundles_; }
    [[nodiscard]] ZRMSimulatedDeviceDescription& description() { return *description_; }
    [[nodiscard]] ZRMSimulatedLinkLayer& linkLayer() { return *linkLayer_; }
    [[nodiscard]] ZRMSimulatedLocaleSource& locale() { return *locale_; }
    [[nodiscard]] ZRMSimulatedLocationAuthorization& locationAuthorization() {
        return *locationAuthorization_;
    }
    [[nodiscard]] ZRMSimulatedLocation& location() { return *location_; }
    [[nodiscard]] ZRMSimulatedCallList& calls() { return *calls_; }
    [[nodiscard]] ZRMSimulatedScreens& screens() { return *screens_; }
    [[nodiscard]] ZRMSimulatedNotificationCenter& notifications() { return *notifications_; }
    [[nodiscard]] ZRMSimulatedNetworkInterfaces& networkInterfaces() { return *interfaces_; }
    [[nodiscard]] ZRMSimulatedWifi& wifi() { return *wifi_; }
    [[nodiscard]] ZRMSimulatedLocalAuthentication& localAuthentication() {
        return *localAuthentication_;
    }
    [[nodiscard]] ZRMSimulatedProcessInformation& processInformation() {
        return *processInformation_;
    }
    [[nodiscard]] ZRMSimulatedPower& power() { return *power_; }
    [[nodiscard]] ZRMSimulatedCarriers& carriers() { return *carriers_; }
    [[nodiscard]] ZRMSimulatedVolumes& volumes() { return *volumes_; }
    [[nodiscard]] ZRMSimulatedKernelValues& kernelValues() { return *kernelValues_; }
    [[nodiscard]] ZRMSimulatedProcessEnvironment& processEnvironment() { return *environment_; }
    [[nodiscard]] ZRMSimulatedFileAccess& fileAccess() { return *fileAccess_; }
    [[nodiscard]] ZRMSimulatedCommandProcessor& commandProcessor() { return *commandProcessor_; }
    // Of the current process.
    [[nodiscard]] ZRMSimulatedLoader& loader() { return *loader_; }
    [[nodiscard]] ZRMSimulatedUrlOpener& urlOpener() { return *urlOpener_; }
    // The executor of the current process.
    [[nodiscard]] ZRMSimulatedExecutor& executor() { return *executor_; }

  private:
    friend class ZRMScopedPlatform;

    void startProcess();
    void endProcess(ZRMSimulatedLoss loss);
    [[nodiscard]] std::shared_ptr<ZRMPlatform> makePlatform();
    void addSignals(ZRMPlatform& platform);
    void setInstalled(bool installed);

    std::shared_ptr<ZRMSimulatedTime> time_;
    std::shared_ptr<ZRMSimulatedRandom> random_;
    std::shared_ptr<ZRMSimulatedDisk> disk_;
    std::shared_ptr<ZRMSimulatedNetwork> network_;
    std::shared_ptr<ZRMSimulatedConsole> console_;
    std::shared_ptr<ZRMSimulatedKeychain> keychain_;
    std::shared_ptr<ZRMSimulatedDefaultsStore> defaults_;
    std::shared_ptr<ZRMSimulatedReachability> reachability_;
    std::shared_ptr<ZRMSimulatedClock> clock_;
    std::shared_ptr<ZRMSimulatedDigests> digests_;
    std::shared_ptr<ZRMSimulatedRsaKeys> rsaKeys_;
    std::shared_ptr<ZRMSimulatedTrust> trust_;
    std::shared_ptr<ZRMSimulatedKeyedArchiver> keyedArchiver_;
    std::shared_ptr<ZRMSimulatedMainBundle> mainBundle_;
    std::shared_ptr<ZRMSimulatedResourceBundles> resourceBundles_;
    std::shared_ptr<ZRMSimulatedDeviceDescription> description_;
    std::shared_ptr<ZRMSimulatedLinkLayer> linkLayer_;
    std::shared_ptr<ZRMSimulatedLocaleSource> locale_;
    std::shared_ptr<ZRMSimulatedLocation> location_;
    std::shared_ptr<ZRMSimulatedLocationAuthorization> locationAuthorization_;
    std::shared_ptr<ZRMSimulatedCallList> calls_;
    std::shared_ptr<ZRMSimulatedScreens> screens_;
    std::shared_ptr<ZRMSimulatedNotificationCenter> notifications_;
    std::shared_ptr<ZRMSimulatedNetworkInterfaces> interfaces_;
    std::shared_ptr<ZRMSimulatedWifi> wifi_;
    std::shared_ptr<ZRMSimulatedLocalAuthentication> localAuthentication_;
    std::shared_ptr<ZRMSimulatedProcessInformation> processInformation_;
    std::shared_ptr<ZRMSimulatedPower> power_;
    std::shared_ptr<ZRMSimulatedCarriers> carriers_;
    std::shared_ptr<ZRMSimulatedVolumes> volumes_;
    std::shared_ptr<ZRMSimulatedKernelValues> kernelValues_;
    std::shared_ptr<ZRMSimulatedProcessEnvironment> environment_;
    std::shared_ptr<ZRMSimulatedFileAccess> fileAccess_;
    std::shared_ptr<ZRMSimulatedCommandProcessor> commandProcessor_;

    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMSimulatedExecutor> executor_;
    std::shared_ptr<ZRMSimulatedLoader> loader_;
    std::shared_ptr<ZRMSimulatedUrlOpener> urlOpener_;
    std::unique_ptr<ZRMSimulatedSqliteFiles> sqliteFiles_;
    std::shared_ptr<ZRMPlatform> platform_;
    std::optional<std::uint64_t> seed_;
    std::uint64_t lives_ = 0;
    bool installed_ = false;
};

// Installs a platform as ZRMPlatform::current() as long as it lives; afterwards none is installed.
// With a device, each new process of it is installed as it starts. The device lives longer.
class ZRMScopedPlatform {
  public:
    explicit ZRMScopedPlatform(ZRMSimulatedDevice& device);
    explicit ZRMScopedPlatform(std::shared_ptr<const ZRMPlatform> platform);
    ~ZRMScopedPlatform();
    ZRMScopedPlatform(const ZRMScopedPlatform&) = delete;
    ZRMScopedPlatform& operator=(const ZRMScopedPlatform&) = delete;

  private:
    ZRMSimulatedDevice* device_ = nullptr;
};
