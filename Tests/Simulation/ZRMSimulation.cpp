#include "Tests/Simulation/ZRMSimulation.h"

#include <limits>
#include <sstream>

#include "Tests/Simulation/ZRMSimulationSettings.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitImpl.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitProvider.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceImpl.h"

namespace {

constexpr std::size_t kShownHistory = 40;
constexpr int kThreads = 3;
constexpr const char* kHost = "risk.example.com";
constexpr std::size_t kTagLength = 36;

// The service behind the process's event core.
std::shared_ptr<ZRMStatisticsServiceImpl> statisticsService() {
    const auto core = std::dynamic_pointer_cast<ZRMCloudKitImpl>(
        ZRMCloudKitProvider::sharedInstance()->cloudKitWithConfiguration({}, nullptr));
    return core ? std::dynamic_pointer_cast<ZRMStatisticsServiceImpl>(core->statisticsService())
                : nullptr;
}

}  // namespace

ZRMSimulation::ZRMSimulation(std::uint64_t seed)
    : seed_(seed),
      random_(seed),
      // What the log says of the start comes before what the start sends.
      server_(device_, ledger_, random_, [this] { readLog(); }) {
    const auto model = ZRMLinuxFileManager().readFile(
        ZRM_SOURCE_DIR
        "/ZRMStatistics/Resources/ZRMStatisticsResources.bundle/ZRMStatisticsModel.json");
    device_.resourceBundles().put("ZRMStatisticsResources.bundle", "ZRMStatisticsModel.json",
                                  model.value());
    device_.random().setSeed(seed);
    device_.setSchedulingSeed(seed);
    configuration_.setStatisticsUrl(std::string("https://") + kHost + "/stat?cid=mybank");
    startLife();
}

ZRMSimulation::~ZRMSimulation() {
    endLife();
}

void ZRMSimulation::happen(const std::string& what) {
    for (const char letter : what) {
        digest_ = (digest_ ^ static_cast<unsigned char>(letter)) * 1099511628211ULL;
    }
    note(what);
}

// What may differ between equal runs, such as the addresses in the log.
void ZRMSimulation::note(const std::string& what) {
    if (!keepsWholeHistory_ && history_.size() >= kShownHistory) {
        history_.erase(history_.begin());
    }
    history_.push_back(std::to_string(steps_) + " " + what);
}

std::vector<ZRMSimulationRecord> ZRMSimulation::stored() {
    auto records = store_.read(device_.disk());
    if (!records) {
        ledger_.fail("the store does not open: " + records.error().localizedDescription());
        return {};
    }
    return std::move(records).value();
}

void ZRMSimulation::endLife() {
    device_.killProcess();
    threads_.clear();
    service_.reset();
    isActive_ = false;
    device_.disk().faults().setHook({});
}

void ZRMSimulation::loseProcess() {
    endLife();
    auto& disk = device_.disk();
    const bool isPowerCut = random_.oneIn(6);
    if (isPowerCut) {
        ++powerCuts_;
        device_.reboot(random_.oneIn(2) ? ZRMSimulatedLoss::All : ZRMSimulatedLoss::Some);
    } else {
        ++kills_;
        device_.restartProcess();
    }
    // The system writes back what a process left, before the next cut of the power.
    for (const auto& path : disk.filesBelow("/")) {
        disk.put(path, disk.bytesOf(path));
    }
    happen(isPowerCut ? "power cut" : "process ends");
}

void ZRMSimulation::startLife() {
    ++lives_;
    server_.noteUnconnectedUploads();
    readLog();
    loseProcess();
    const bool isRepairDue = ZRMSimulationStore::isMarkedDamaged(device_.disk());
    ledger_.lifeBegan(isRepairDue ? std::nullopt : std::optional(stored()));
    happen("life " + std::to_string(lives_));
    if (diskIsBroken_) {
        ledger_.diskFails();
    }
    for (int number = 0; number < kThreads; ++number) {
        threads_.push_back(device_.platform()->executor->makeSerialQueue(
            "host." + std::to_string(number), ZRMQualityOfService::Default));
    }
    wantsService_ = true;
}

void ZRMSimulation::bringUpService() {
    if (service_ == nullptr) {
        configuration_.setLogLevel(random_.oneIn(10) ? ZRMMobileServiceLogLevelVerbose
                                                     : ZRMMobileServiceLogLevelErrors);
        service_ = ZRMMobileService::createServiceWithConfiguration(configuration_);
    }
    wantsService_ = false;
    activate();
}

void ZRMSimulation::activate() {
    call("activate", "", {},
         [this](ZRMMobileService& service, ZRMMobileService::CompletionHandler handler) {
             service.activateWithCompletionHandler(
                 [this, handler = std::move(handler)](const std::optional<ZRMError>& error) {
                     handler(error);
                     if (device_.isProcessAlive()) {
                         activationEnded(error.has_value());
                     }
                 });
         });
}

void ZRMSimulation::activationEnded(bool isFailed) {
    if (isFailed) {
        // The stored settings cannot be used; the host does what support tells it to.
        happen("activation fails");
        device_.disk().remove(zrm_simulationSettingsPath(device_));
        wantsService_ = true;
        return;
    }
    happen("active");
    isActive_ = true;
    ledger_.clockReads(device_.now().secondsSince1970);
    readLog();
    const auto tag = service_ ? service_->deviceTag() : std::nullopt;
    if (tag) {
        const auto own = tag->substr(0, kTagLength);
        if (deviceTag_ && *deviceTag_ != own) {
            ledger_.fail("the device tag has changed");
        }
        deviceTag_ = own;
    }
}

void ZRMSimulation::queueStarted() {
    ledger_.clockReads(device_.now().secondsSince1970);
    ledger_.queueStarted();
}

void ZRMSimulation::readLog() {
    auto& console = device_.console();
    if (console.text().empty()) {
        return;
    }
    const auto lines = console.lines();
    console.clear();
    for (const auto& line : lines) {
        readLogLine(line);
    }
}

void ZRMSimulation::readLogLine(const std::string& line) {
    constexpr std::size_t kShownText = 200;
    note("log: " + line.substr(0, kShownText));
    const auto says = [&line](const char* part) { return line.find(part) != line.npos; };
    if (says("Can't add statistic to store")) {
        ledger_.couldNotStore();
    } else if (says("persistent store for statistics storage") ||
               says("CoreData model not found")) {
        ledger_.storeIsAbsent();
        happen("no store");
    } else if (says("Can't fetch statistics entites")) {
        ledger_.couldNotFetch();
    } else if (says("Can't read stored statistic to send it")) {
        ledger_.couldNotRead();
    } else if (says("Storage is full, deleting all statistics")) {
        happen("overflow");
        ledger_.queueEmptied(stepRunsNoTask_ ? std::optional(stored()) : std::nullopt,
                             kZRMStatisticsMaxStorageSize);
    } else if (const auto found = line.find(kExpiredLine); found != line.npos) {
        ledger_.dropped(std::stoul(line.substr(found + std::string(kExpiredLine).size())));
        queueStarted();
    }
}

void ZRMSimulation::afterStep() {
    server_.noteUnconnectedUploads();
    readLog();
    if (!ledger_.isQueueStarted()) {
        ledger_.clockReads(device_.now().secondsSince1970);
    }
    if (isActive_ && service_ && device_.isProcessAlive() && service_->unstoredEventCount() == 0) {
        ledger_.nothingUnstored([this] { return stored(); });
    }
    callsWithin_ = 0;
}

void ZRMSimulation::rest() {
    ++rests_;
    device_.runUntilIdle();
    afterStep();
    if (!device_.isProcessAlive() || !isActive_) {
        return;
    }
    queueStarted();
    ledger_.checkHandlers();
    if (ZRMSimulationStore::isMarkedDamaged(device_.disk())) {
        return;
    }
    const auto records = stored();
    const auto path = device_.reachability().flagsOf(kHost);
    const bool isPathOpen = path && (*path & ZRMReachabilityReachable) != 0;
    ledger_.storeSeen(records, isPathOpen, device_.clock().uptimeSeconds());
    checkCounts(records);
}

void ZRMSimulation::checkCounts(const std::vector<ZRMSimulationRecord>& records) {
    const auto service = statisticsService();
    const auto source = service ? service->dataSource() : nullptr;
    if (!source || !ledger_.isDiskSound()) {
        return;
    }
    std::int64_t size = 0;
    for (const auto& record : records) {
        size += static_cast<std::int64_t>(record.bytes.size());
    }
    if (source->getStorageSize() != size) {
        ledger_.fail("counted " + std::to_string(source->getStorageSize()) + " bytes, stored " +
                     std::to_string(size));
    }
    if (source->count() != static_cast<std::int64_t>(records.size())) {
        ledger_.fail("counted " + std::to_string(source->count()) + " events, stored " +
                     std::to_string(records.size()));
    }
    // What is still being looked for, such as a location, is pending too.
    if (service_ && service_->pendingEventCount() < records.size()) {
        ledger_.fail("fewer events are pending than stored");
    }
}

void ZRMSimulation::finish() {
    constexpr int kHours = 24 * 60;
    mendDisk();
    server_.recover();
    setConnected(true);
    device_.reachability().setFlags(ZRMReachabilityReachable);  // the path may have changed alone
    startLife();
    while (wantsService_ && !failure()) {
        bringUpService();
        device_.runUntilIdle();
        afterStep();
    }
    for (int hour = 0; hour < kHours && !failure() && service_->pendingEventCount() > 0; ++hour) {
        device_.advanceBy(3600);
        afterStep();
    }
    rest();
    if (!failure() && !stored().empty()) {
        ledger_.fail(std::to_string(stored().size()) + " events do not arrive");
    }
    if (!failure()) {
        loseProcess();
        ledger_.lifeBegan(stored());
    }
}

std::string ZRMSimulation::summary() const {
    const auto& totals = ledger_.totals();
    std::ostringstream text;
    text << "seed " << seed_ << ": " << steps_ << " steps, " << lives_ << " lives, " << kills_
         << " ends, " << powerCuts_ << " power cuts, " << rests_ << " rests; reports taken "
         << totals.taken << ", refused " << totals.refused << ", not stored " << totals.notStored
         << ", lost with a process " << totals.lostWithProcess << "; uploads " << server_.uploads()
         << ", repeated " << totals.repeated << ", answered " << totals.answered << "; expired "
         << totals.expired << ", purged " << totals.purged << "; digest " << std::hex << digest_;
    return text.str();
}
