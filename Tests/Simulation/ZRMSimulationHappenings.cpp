// What can happen in a step of a simulation, and how often it does.
#include <array>
#include <cerrno>
#include <limits>
#include <numeric>

#include "Tests/Simulation/ZRMSimulation.h"
#include "Tests/Simulation/ZRMSimulationSettings.h"

namespace {

constexpr double kHour = 3600;
constexpr double kDay = 86400;

std::string inSeconds(double seconds) {
    return std::to_string(seconds) + " s";
}

}  // namespace

struct ZRMSimulation::Happening {
    std::uint64_t weight;  // of kTotalWeight or so
    void (*run)(ZRMSimulation& run);
};

const std::vector<ZRMSimulation::Happening>& ZRMSimulation::happenings() {
    using Run = ZRMSimulation;
    static const std::vector<Happening> kHappenings = {
        {12000, [](Run& run) { run.device_.runOneTask(); }},
        {300, [](Run& run) { run.device_.runUntilIdle(); }},
        {1000, [](Run& run) { run.reportFromSomeThread(); }},
        {60, [](Run& run) { run.reportTooMuch(); }},
        {1600, [](Run& run) { run.passTime(run.random_.between(0, 0.5)); }},
        {300, [](Run& run) { run.passTime(run.random_.between(0, 90)); }},
        {30, [](Run& run) { run.passTime(run.random_.between(0, 3 * kHour)); }},
        {2, [](Run& run) { run.passTime(run.random_.between(0, 2 * kDay)); }},
        {40, [](Run& run) { run.jumpClock(120); }},
        {6, [](Run& run) { run.jumpClock(2 * kDay); }},
        {1, [](Run& run) { run.jumpClock(35 * kDay); }},
        {60, [](Run& run) { run.setConnected(false); }},
        {240, [](Run& run) { run.setConnected(true); }},
        {20, [](Run& run) { run.changePath(); }},
        {60, [](Run& run) { run.server_.changeMood(); }},
        {60, [](Run& run) { run.rest(); }},
        {10, [](Run& run) { run.breakDisk(); }},
        {40, [](Run& run) { run.mendDisk(); }},
        {14, [](Run& run) { run.scheduleKill(); }},
        {6, [](Run& run) { run.device_.killProcess(); }},
        {80, [](Run& run) { run.sendSignal(); }},
        {30, [](Run& run) { run.askForMore(); }},
        {4, [](Run& run) { run.anotherService(); }},
    };
    return kHappenings;
}

void ZRMSimulation::step() {
    ++steps_;
    if (!device_.isProcessAlive()) {
        tamperWithFiles();
        startLife();
        return;
    }
    // Some lives begin without the service for a while.
    if (wantsService_ && !random_.oneIn(4)) {
        bringUpService();
        afterStep();
        return;
    }
    static const std::uint64_t kTotalWeight = std::accumulate(
        happenings().begin(), happenings().end(), std::uint64_t{0},
        [](std::uint64_t sum, const auto& happening) { return sum + happening.weight; });
    auto drawn = random_.below(kTotalWeight);
    for (const auto& happening : happenings()) {
        if (drawn < happening.weight) {
            happening.run(*this);
            break;
        }
        drawn -= happening.weight;
    }
    afterStep();
}

void ZRMSimulation::passTime(double seconds) {
    happen("time passes: " + inSeconds(seconds));
    device_.advanceBy(seconds);
}

void ZRMSimulation::jumpClock(double seconds) {
    const double jump = random_.between(-seconds, seconds);
    happen("clock jumps: " + inSeconds(jump));
    ledger_.clockReads(device_.now().secondsSince1970);
    device_.jumpWallClock(jump);
}

void ZRMSimulation::setConnected(bool connected) {
    if (connected == device_.network().isConnected()) {
        return;
    }
    happen(connected ? "connected" : "disconnected");
    if (!connected) {
        ledger_.connectionLost();
    }
    device_.setConnected(connected);
}

// The path to the server changes without a word about the connection itself.
void ZRMSimulation::changePath() {
    const std::uint32_t kFlags[] = {0U, ZRMReachabilityReachable,
                                    ZRMReachabilityReachable | ZRMReachabilityIsCellular};
    const auto flags = kFlags[random_.below(std::size(kFlags))];
    happen("path " + std::to_string(flags));
    device_.reachability().setFlags(device_.network().isConnected() ? flags : 0U);
}

void ZRMSimulation::breakDisk() {
    using Operation = ZRMSimulatedDiskOperation;
    constexpr std::array kOperations = {
        Operation::Open,   Operation::Create,   Operation::Read,
        Operation::Write,  Operation::Truncate, Operation::Synchronize,
        Operation::Remove, Operation::Move,     Operation::MakeDirectory};
    constexpr std::array kPaths = {"*", "*ZRMStatisticsStorage*", "*-wal"};
    diskIsBroken_ = true;
    ledger_.diskFails();
    auto& disk = device_.disk();
    if (random_.oneIn(3)) {
        happen("disk full");
        disk.setCapacity(disk.usedBytes() + random_.below(20000));
        return;
    }
    ZRMSimulatedDiskFault fault;
    if (!random_.oneIn(3)) {
        fault.operation = kOperations[random_.below(kOperations.size())];
    }
    fault.pathPattern = kPaths[random_.below(kPaths.size())];
    fault.errorNumber = random_.oneIn(2) ? EIO : ENOSPC;
    fault.skip = random_.below(10);
    fault.times = 1 + random_.below(random_.oneIn(3) ? 1000 : 5);
    happen("disk fails");
    disk.faults().add(fault);
}

void ZRMSimulation::mendDisk() {
    if (!diskIsBroken_) {
        return;
    }
    happen("disk mended");
    diskIsBroken_ = false;
    device_.disk().faults().clear();
    device_.disk().setCapacity(std::numeric_limits<std::uint64_t>::max());
}

void ZRMSimulation::scheduleKill() {
    const auto distance = 1 + random_.below(random_.oneIn(2) ? 12 : 150);
    happen("kill in " + std::to_string(distance));
    device_.killAtDiskOperation(device_.disk().faults().operationCount() + distance);
}

void ZRMSimulation::sendSignal() {
    happen("signal");
    switch (random_.below(6)) {
        case 0: {
            ZRMCall call;
            call.uuid = "call-" + std::to_string(random_.below(3));
            call.hasConnected = random_.oneIn(2);
            call.hasEnded = random_.oneIn(3);
            device_.calls().update(call);
            break;
        }
        case 1: {
            auto screens = device_.screens().screens();
            screens[0].isCaptured = !screens[0].isCaptured;
            device_.screens().setScreens(screens);
            device_.notifications().post(ZRMApplicationNotification::ScreenCapturedDidChange);
            break;
        }
        case 2:
            device_.notifications().post(ZRMApplicationNotification::UserDidTakeScreenshot);
            break;
        case 3:
            device_.notifications().post(ZRMApplicationNotification::WillEnterForeground);
            break;
        case 4:
            device_.networkInterfaces().scoped = random_.oneIn(2)
                                                     ? std::vector<std::string>{"en0"}
                                                     : std::vector<std::string>{"en0", "utun3"};
            break;
        default:
            device_.location().deliver({ZRMLocation{}});
            break;
    }
}

void ZRMSimulation::askForMore() {
    using Handler = ZRMMobileService::CompletionHandler;
    switch (random_.below(4)) {
        case 0:
            return call("location", "", {}, [](ZRMMobileService& service, Handler handler) {
                service.sendGeoLocationWithCompletionHandler(std::move(handler));
            });
        case 1:
            return call("analyze", "", {}, [](ZRMMobileService& service, Handler handler) {
                service.analyzeEnvironmentWithCompletionHandler(std::move(handler));
            });
        case 2:
            return call("start", "", {}, [](ZRMMobileService& service, Handler handler) {
                service.startWithCompletionHandler(std::move(handler));
            });
        default:
            return isActive_ ? activate() : static_cast<void>(0);
    }
}

// The host makes a second service of the same process, and forgets the first.
void ZRMSimulation::anotherService() {
    if (isActive_) {
        happen("another service");
        isActive_ = false;
        service_ = ZRMMobileService::createServiceWithConfiguration(configuration_);
        activate();
    }
}

// Between two lives.
void ZRMSimulation::tamperWithFiles() {
    constexpr std::size_t kMostEvidence = 12;
    auto& disk = device_.disk();
    if (random_.oneIn(3)) {
        zrm_putSimulationSettings(device_, random_);
    }
    if (random_.oneIn(10)) {
        happen("store marked damaged");
        ZRMSimulationStore::markDamaged(disk);
    }
    if (!random_.oneIn(2)) {
        mendDisk();
    }
    std::vector<std::string> evidence;
    for (const auto& path : disk.filesBelow("/")) {
        if (path.ends_with("/ZRMCloudKitSettings") && random_.oneIn(10)) {
            happen("archive damaged");
            disk.put(path, "no archive");
        }
        if (path.find(kEvidence) != path.npos) {
            evidence.push_back(path);
        }
    }
    // Somebody clears it away; not while a repair may still read it.
    if (evidence.size() > kMostEvidence && !ZRMSimulationStore::isMarkedDamaged(disk)) {
        for (const auto& path : evidence) {
            disk.remove(path);
        }
    }
}
