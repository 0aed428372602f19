// One run: a host application on a simulated device, and everything that can happen to both.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Tests/Simulation/ZRMSimulationLedger.h"
#include "Tests/Simulation/ZRMSimulationRandom.h"
#include "Tests/Simulation/ZRMSimulationServer.h"
#include "Tests/Simulation/ZRMSimulationStore.h"
#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMStatistics/ZRMStatistics_Lib/DataSource/ZRMStatisticsDataSource.h"

// The seed decides everything: the same seed and number of steps make the same run. One thread.
class ZRMSimulation {
  public:
    explicit ZRMSimulation(std::uint64_t seed);
    ~ZRMSimulation();
    ZRMSimulation(const ZRMSimulation&) = delete;
    ZRMSimulation& operator=(const ZRMSimulation&) = delete;

    // One thing happens: the library runs a task, the host reports, time passes, something breaks.
    void step();
    // Fills the queue over its limit, while there is a service.
    void flood();
    // All that is broken is mended; what is owed must arrive. Ends the run.
    void finish();

    // The first promise that was broken, with the step.
    [[nodiscard]] const std::optional<std::string>& failure() const { return ledger_.failure(); }
    [[nodiscard]] std::uint64_t steps() const { return steps_; }
    // What happened last, oldest first.
    [[nodiscard]] const std::vector<std::string>& history() const { return history_; }
    void keepWholeHistory() { keepsWholeHistory_ = true; }
    // Of everything that happened: equal for equal runs.
    [[nodiscard]] std::uint64_t digest() const { return digest_; }
    [[nodiscard]] std::string summary() const;

  private:
    struct Happening;
    static const std::vector<Happening>& happenings();
    static constexpr const char* kEvidence = ".damaged-";
    // What the library's log says before the number of events that were too old.
    static constexpr const char* kExpiredLine = "Statistics deleted because they expired: ";

    void happen(const std::string& what);
    void note(const std::string& what);
    void afterStep();
    void queueStarted();
    void readLog();
    void readLogLine(const std::string& line);

    // The process.
    void startLife();
    void endLife();
    void loseProcess();
    void bringUpService();
    void tamperWithFiles();
    void activate();
    void activationEnded(bool isFailed);
    std::vector<ZRMSimulationRecord> stored();

    // The host.
    void report(int kind);
    void reportFromSomeThread();
    void reportTooMuch();
    void call(
        const std::string& what, const std::string& report, ZRMDictionary body,
        const std::function<void(ZRMMobileService&, ZRMMobileService::CompletionHandler)>& run);
    void askForMore();
    void anotherService();
    [[nodiscard]] std::string token(std::size_t longest);

    // The world.
    void passTime(double seconds);
    void jumpClock(double seconds);
    void setConnected(bool connected);
    void changePath();
    void breakDisk();
    void mendDisk();
    void scheduleKill();
    void sendSignal();
    void rest();
    void checkCounts(const std::vector<ZRMSimulationRecord>& records);

    const std::uint64_t seed_;
    ZRMSimulationRandom random_;
    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMSimulationStore store_;
    ZRMSimulationLedger ledger_{[this](const std::string& what) { note(what); }};
    ZRMSimulationServer server_;

    ZRMMobileServiceConfiguration configuration_;
    std::shared_ptr<ZRMMobileService> service_;
    std::vector<std::shared_ptr<ZRMQueue>> threads_;  // the host's own
    bool isActive_ = false;
    bool wantsService_ = false;  // its activation failed, or was not asked for yet
    bool diskIsBroken_ = false;
    bool stepRunsNoTask_ = false;
    std::set<std::string> logouts_;  // their dates, which tell them apart
    int callsWithin_ = 0;
    std::uint64_t reports_ = 0;
    std::optional<std::string> deviceTag_;

    std::uint64_t steps_ = 0;
    std::uint64_t lives_ = 0;
    std::uint64_t kills_ = 0;
    std::uint64_t powerCuts_ = 0;
    std::uint64_t rests_ = 0;
    std::uint64_t digest_ = 14695981039346656037ULL;
    std::vector<std::string> history_;
    bool keepsWholeHistory_ = false;
};
