// What must be true of a run: the promises to the host, kept as a book of every event.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Tests/Simulation/ZRMSimulationStore.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

// What the far end did with one upload.
struct ZRMSimulationReply {
    bool isReceived = false;  // the event came through, whatever followed
    bool isComplete = false;  // an answer that reaches the device if nothing breaks meanwhile
    int status = 0;
    double endsAtUptime = 0;  // seconds
};

// Fed with all that happens; the first broken promise stays as failure(). Events are told apart by
// their content, so the host's reports each carry something of their own. One thread.
class ZRMSimulationLedger {
  public:
    // Told what becomes of events, for the history of a run.
    using Trace = std::function<void(const std::string& what)>;
    explicit ZRMSimulationLedger(Trace trace) : trace_(std::move(trace)) {}

    static constexpr int kMaxAttempts = 18;  // of one upload within one life of the process

    [[nodiscard]] const std::optional<std::string>& failure() const { return failure_; }
    void fail(const std::string& what);

    // The host made a call. `report` names the event it stands for, as keyOf() would, or is empty.
    std::size_t callMade(const std::string& what, const std::string& report,
                         ZRMDictionary expectedBody);
    void handlerCalled(std::size_t call, std::optional<std::int64_t> errorCode);
    // Nothing is left to run: each handler of this life was called.
    void checkHandlers();

    // A new life begins with what the store holds; absent while a repair of it is due, because its
    // records may lie elsewhere until then. Whatever the life before had not stored is gone.
    void lifeBegan(const std::optional<std::vector<ZRMSimulationRecord>>& stored);
    // The clock's range while the queue is started decides what is too old to be sent.
    void clockReads(double secondsSince1970);
    // What was stored has been taken up: sent, or named in the log as expired.
    void queueStarted();
    [[nodiscard]] bool isQueueStarted() const { return !found_; }
    // This life goes on without a store: its events are uploaded or lost.
    void storeIsAbsent() { isStoreAbsent_ = true; }
    // From here on the disk fails in this life.
    void diskFails() { isDiskSound_ = false; }
    [[nodiscard]] bool isDiskSound() const { return isDiskSound_; }

    // Lines of the library's log.
    void couldNotStore() { ++storeFailures_; }
    void couldNotRead() { ++unreadable_; }
    void couldNotFetch();
    void dropped(std::size_t expired);
    // With what was stored at that moment, where that is known.
    void queueEmptied(const std::optional<std::vector<ZRMSimulationRecord>>& stored,
                      std::int64_t limit);

    // The library says that nothing is on its way into the store. `stored` is asked for when it
    // also said that some events could not be stored. A report whose handler was not called yet may
    // be one of those, so that then it is too early to tell.
    template <class Read>
    void nothingUnstored(Read stored) {
        if (openReports_ > 0) {
            return;
        }
        if (!waiting_.empty()) {
            settle(storeFailures_ > 0 ? std::optional(stored()) : std::nullopt);
        }
        storeFailures_ = 0;
    }

    void uploadBegan(std::span<const std::uint8_t> bytes, const ZRMSimulationReply& reply,
                     double uptime);
    [[nodiscard]] int attemptsOf(std::span<const std::uint8_t> bytes) const;
    void connectionLost() { ++disconnections_; }

    // The store as it is. At rest nothing is due to run at this moment, and the path to the server
    // is open: without it the end of an upload waits with the other uploads.
    void storeSeen(const std::vector<ZRMSimulationRecord>& stored, bool isAtRest, double uptime);

    // "TYPE/what the host gave", or "TYPE#digest" for the library's own events.
    static std::string keyOf(const std::string& type, const ZRMDictionary& body,
                             std::span<const std::uint8_t> bytes);
    static std::uint64_t digestOf(std::span<const std::uint8_t> bytes);

    struct Totals {
        std::size_t calls = 0, taken = 0, refused = 0, notStored = 0, answered = 0, expired = 0,
                    purged = 0, repeated = 0, lostWithProcess = 0;
    };
    [[nodiscard]] const Totals& totals() const { return totals_; }

  private:
    struct Call {
        std::string what;
        std::string report;
        int handlerCalls = 0;
        bool isRefused = false;
    };
    // One event.
    struct Fate {
        ZRMDictionary expectedBody;
        bool isReport = false;
        bool isRefused = false;
        bool isOwed = false;  // it was stored: it must be there unless `whyGone` says why not
        std::string whyGone;  // a rule that lets it go; empty: none
        std::uint64_t digest = 0;
        int attempts = 0;  // in this life
        std::optional<ZRMSimulationReply> lastReply;
        std::uint64_t disconnectionsThen = 0;
    };
    using Fates = std::map<std::string, Fate>;

    // The event of these bytes, checked against what was reported; null after a failure.
    Fates::value_type* recognise(std::span<const std::uint8_t> bytes);
    void settle(const std::optional<std::vector<ZRMSimulationRecord>>& stored);
    std::set<std::string> keysOf(const std::vector<ZRMSimulationRecord>& stored);
    void checkNothingIsLost(const std::set<std::string>& stored);
    void forgetWhatIsGone(const std::set<std::string>& stored);
    void planResend(const std::vector<ZRMSimulationRecord>& stored);
    void checkOrder(const std::string& key);
    void checkRepetition(const Fates::value_type& event, double uptime);
    [[nodiscard]] bool wasSurelyAnswered(const Fate& fate, double uptime) const;

    const Trace trace_;
    std::optional<std::string> failure_;
    Totals totals_;
    Fates fates_;
    std::unordered_set<std::uint64_t> retired_;  // digests of events that are gone for good
    std::map<std::uint64_t, std::string> keyOfDigest_;

    // Of the current life.
    std::vector<Call> calls_;
    std::size_t firstCall_ = 0;         // the number of calls_[0]
    std::vector<std::string> waiting_;  // reports taken and not yet known to be stored
    std::size_t openReports_ = 0;       // whose handlers were not called yet
    std::size_t storeFailures_ = 0;
    std::size_t unreadable_ = 0;
    std::size_t expiredLogged_ = 0;
    bool isStoreAbsent_ = false;
    bool isDiskSound_ = true;
    std::uint64_t disconnections_ = 0;

    std::optional<std::vector<ZRMSimulationRecord>> found_;  // until the queue is started
    bool isFoundKnown_ = false;
    double clockLow_ = 0;
    double clockHigh_ = 0;
    std::map<std::string, std::size_t> places_;  // in the order of sending at start
    std::set<std::size_t> unsent_;               // places
    std::set<std::string> tooOld_;
};
