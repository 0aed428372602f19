#include "Tests/Simulation/ZRMSimulationLedger.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "Tools/zrm-inspect/ZRMUploadInspection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsExpiry.h"

namespace {

// The host's own events, with the field that tells each from the others.
constexpr std::array<std::pair<const char*, const char*>, 4> kReports = {{
    {"UserLoginEvent", "userId"},
    {"UserLogoutEvent", "eventDateTime"},
    {"SessionIdEvent", "sessionId"},
    {"UINavigationEvent", "navigationPoint"},
}};

// Uploads run four at a time, so up to three that come before another in the order may begin after
// it.
constexpr std::size_t kOvertakers = 3;

std::string nameOf(const std::string& key) {
    constexpr std::size_t kShown = 60;
    return "'" + (key.size() > kShown ? key.substr(0, kShown) + "…" : key) + "'";
}

}  // namespace

void ZRMSimulationLedger::fail(const std::string& what) {
    if (!failure_) {
        failure_ = what;
    }
}

std::uint64_t ZRMSimulationLedger::digestOf(std::span<const std::uint8_t> bytes) {
    std::uint64_t digest = 14695981039346656037ULL;  // FNV-1a
    for (const auto byte : bytes) {
        digest = (digest ^ byte) * 1099511628211ULL;
    }
    return digest;
}

std::string ZRMSimulationLedger::keyOf(const std::string& type, const ZRMDictionary& body,
                                       std::span<const std::uint8_t> bytes) {
    for (const auto& [report, field] : kReports) {
        const auto* value = type == report ? body.if_contains(field) : nullptr;
        if (value != nullptr && value->is_string()) {
            return type + "/" + std::string(value->get_string());
        }
    }
    return type + "#" + std::to_string(digestOf(bytes));
}

std::size_t ZRMSimulationLedger::callMade(const std::string& what, const std::string& report,
                                          ZRMDictionary expectedBody) {
    ++totals_.calls;
    calls_.push_back({what, report});
    if (!report.empty()) {
        ++openReports_;
        auto& fate = fates_[report];
        fate.isReport = true;
        fate.expectedBody = std::move(expectedBody);
    }
    return firstCall_ + calls_.size() - 1;
}

void ZRMSimulationLedger::handlerCalled(std::size_t call, std::optional<std::int64_t> errorCode) {
    if (call < firstCall_) {
        return fail("the handler of a call of an earlier life was called");
    }
    auto& made = calls_[call - firstCall_];
    if (++made.handlerCalls > 1) {
        return fail("the handler of " + made.what + " was called twice");
    }
    if (made.report.empty()) {
        return;
    }
    --openReports_;
    auto& fate = fates_[made.report];
    if (errorCode) {
        ++totals_.refused;
        fate.isRefused = true;
        if (fate.digest != 0) {
            fail("refused with error " + std::to_string(*errorCode) +
                 ", and yet sent or stored: " + nameOf(made.report));
        }
        return;
    }
    ++totals_.taken;
    waiting_.push_back(made.report);
}

void ZRMSimulationLedger::checkHandlers() {
    for (const auto& call : calls_) {
        if (call.handlerCalls != 1) {
            fail("the handler of " + call.what + " was called " +
                 std::to_string(call.handlerCalls) + " times");
        }
    }
    firstCall_ += calls_.size();
    calls_.clear();
}

ZRMSimulationLedger::Fates::value_type* ZRMSimulationLedger::recognise(
    std::span<const std::uint8_t> bytes) {
    const auto digest = digestOf(bytes);
    if (retired_.contains(digest)) {
        fail("an event came back that was gone");
        return nullptr;
    }
    if (const auto known = keyOfDigest_.find(digest); known != keyOfDigest_.end()) {
        return &*fates_.find(known->second);
    }
    const auto upload = zrm_uploadFromBytes(bytes);
    if (!upload) {
        fail("an event that cannot be read: " + upload.error().localizedDescription());
        return nullptr;
    }
    const auto& type = upload.value().eventType;
    const auto& body = upload.value().event.at(type).as_object();
    const auto key = keyOf(type, body, bytes);
    const bool isReport =
        std::ranges::any_of(kReports, [&type](const auto& report) { return type == report.first; });
    auto& event = *fates_.try_emplace(key).first;
    auto& fate = event.second;
    if (isReport && (!fate.isReport || fate.isRefused)) {
        fail("an event that the host did not report: " + nameOf(key));
    } else if (fate.digest != 0) {
        fail("two events for one report: " + nameOf(key));
    }
    for (const auto& field : fate.expectedBody) {
        const auto* value = body.if_contains(field.key());
        if (value == nullptr || *value != field.value()) {
            fail("not what was reported: " + nameOf(key));
        }
    }
    fate.digest = digest;
    keyOfDigest_[digest] = key;
    return failure_ ? nullptr : &event;
}

std::set<std::string> ZRMSimulationLedger::keysOf(const std::vector<ZRMSimulationRecord>& stored) {
    std::set<std::string> keys;
    for (const auto& record : stored) {
        const auto* event = recognise(record.bytes);
        if (event == nullptr) {
            break;
        }
        if (!keys.insert(event->first).second && event->second.isReport) {
            fail("stored twice: " + nameOf(event->first));
        }
    }
    return keys;
}

void ZRMSimulationLedger::checkNothingIsLost(const std::set<std::string>& stored) {
    for (const auto& [key, fate] : fates_) {
        if (fate.isOwed && fate.whyGone.empty() && !stored.contains(key)) {
            fail("lost: " + nameOf(key));
        }
    }
}

// Reports taken by now are stored, unless the log says that as many could not be.
void ZRMSimulationLedger::settle(const std::optional<std::vector<ZRMSimulationRecord>>& stored) {
    const auto keys = stored ? keysOf(*stored) : std::set<std::string>();
    std::size_t missing = 0;
    for (const auto& key : std::exchange(waiting_, {})) {
        auto& fate = fates_[key];
        const bool isMissing = stored && fate.whyGone.empty() && !keys.contains(key);
        missing += isMissing ? 1U : 0U;
        // Beside a failed commit, what the files hold may be what the library has taken back.
        fate.isOwed = !isStoreAbsent_ && !stored;
        trace_((fate.isOwed ? "stored: " : "perhaps not stored: ") + nameOf(key));
    }
    totals_.notStored += missing;
    if (missing > storeFailures_) {
        fail(std::to_string(missing) + " events were not stored, and the log names " +
             std::to_string(storeFailures_));
    }
}

void ZRMSimulationLedger::lifeBegan(const std::optional<std::vector<ZRMSimulationRecord>>& stored) {
    firstCall_ += calls_.size();
    calls_.clear();
    waiting_.clear();
    openReports_ = storeFailures_ = unreadable_ = expiredLogged_ = 0;
    isStoreAbsent_ = false;
    isDiskSound_ = true;
    places_.clear();
    unsent_.clear();
    tooOld_.clear();
    found_ = stored;
    isFoundKnown_ = stored.has_value();
    clockLow_ = std::numeric_limits<double>::max();
    clockHigh_ = std::numeric_limits<double>::lowest();
    for (auto& [key, fate] : fates_) {
        fate.attempts = 0;
        fate.lastReply.reset();
    }
    if (!stored) {
        return;
    }
    const auto keys = keysOf(*stored);
    checkNothingIsLost(keys);
    forgetWhatIsGone(keys);
}

void ZRMSimulationLedger::forgetWhatIsGone(const std::set<std::string>& stored) {
    for (auto event = fates_.begin(); event != fates_.end();) {
        auto& fate = event->second;
        if (stored.contains(event->first)) {
            fate.isOwed = true;
            fate.whyGone.clear();
            ++event;
            continue;
        }
        if (fate.isReport && !fate.isRefused && fate.whyGone.empty()) {
            ++totals_.lostWithProcess;
        }
        if (fate.digest != 0) {
            if (fate.isReport) {
                retired_.insert(fate.digest);
            }
            keyOfDigest_.erase(fate.digest);
        }
        event = fates_.erase(event);
    }
}

void ZRMSimulationLedger::clockReads(double secondsSince1970) {
    clockLow_ = std::min(clockLow_, secondsSince1970);
    clockHigh_ = std::max(clockHigh_, secondsSince1970);
}

void ZRMSimulationLedger::queueStarted() {
    if (const auto found = std::exchange(found_, std::nullopt); found && !isStoreAbsent_) {
        planResend(*found);
    }
}

void ZRMSimulationLedger::dropped(std::size_t expired) {
    expiredLogged_ += expired;
    if (isFoundKnown_) {
        return;
    }
    for (auto& [key, fate] : fates_) {
        if (fate.isOwed && fate.whyGone.empty()) {
            fate.whyGone = "expired, perhaps";
        }
    }
}

// Then nothing of earlier lives is sent in this one.
void ZRMSimulationLedger::couldNotFetch() {
    found_.reset();
    places_.clear();
    unsent_.clear();
}

void ZRMSimulationLedger::planResend(const std::vector<ZRMSimulationRecord>& stored) {
    auto ordered = stored;
    std::ranges::stable_sort(ordered, {}, &ZRMSimulationRecord::priority);
    std::size_t maybeTooOld = 0;
    for (const auto& record : ordered) {
        auto* event = recognise(record.bytes);
        if (event == nullptr) {
            return;
        }
        const auto days = static_cast<std::int16_t>(record.activeDays);
        if (zrm_isStatisticExpired(record.storeTimestamp, days, clockLow_)) {
            tooOld_.insert(event->first);
        }
        if (zrm_isStatisticExpired(record.storeTimestamp, days, clockHigh_)) {
            ++maybeTooOld;
            event->second.whyGone = "expired";
        } else {
            unsent_.insert(places_.size());
            places_.emplace(event->first, places_.size());
        }
    }
    totals_.expired += expiredLogged_;
    if (isDiskSound_ && (expiredLogged_ < tooOld_.size() || expiredLogged_ > maybeTooOld)) {
        fail("the log names " + std::to_string(expiredLogged_) + " expired events of " +
             std::to_string(tooOld_.size()));
    }
}

void ZRMSimulationLedger::queueEmptied(
    const std::optional<std::vector<ZRMSimulationRecord>>& stored, std::int64_t limit) {
    for (const auto& key : waiting_) {
        fates_[key].whyGone = "overflow";
    }
    for (auto& [key, fate] : fates_) {
        if (fate.isOwed && fate.whyGone.empty()) {
            fate.whyGone = "overflow";
            ++totals_.purged;
        }
    }
    std::int64_t size = 0;
    for (const auto& record : stored.value_or(std::vector<ZRMSimulationRecord>())) {
        size += static_cast<std::int64_t>(record.bytes.size());
    }
    if (isDiskSound_ && stored && size <= limit) {
        fail("the queue was emptied at " + std::to_string(size) + " bytes");
    }
}

int ZRMSimulationLedger::attemptsOf(std::span<const std::uint8_t> bytes) const {
    const auto key = keyOfDigest_.find(digestOf(bytes));
    return key == keyOfDigest_.end() ? 0 : fates_.at(key->second).attempts;
}

bool ZRMSimulationLedger::wasSurelyAnswered(const Fate& fate, double uptime) const {
    constexpr int kFirstRetriedStatus = 500;
    // The library's own events of one moment may be equal: the answer may have been a twin's.
    return fate.isReport && fate.lastReply && fate.lastReply->isComplete &&
           fate.lastReply->status < kFirstRetriedStatus && fate.lastReply->endsAtUptime < uptime &&
           fate.disconnectionsThen == disconnections_;
}

void ZRMSimulationLedger::checkRepetition(const Fates::value_type& event, double uptime) {
    const auto& [key, fate] = event;
    if (tooOld_.contains(key)) {
        fail("sent although it had expired: " + nameOf(key));
    }
    if (wasSurelyAnswered(fate, uptime)) {
        fail("sent again after its answer: " + nameOf(key));
    }
    if (fate.isReport && fate.lastReply && fate.lastReply->isComplete &&
        fate.lastReply->endsAtUptime > uptime && fate.disconnectionsThen == disconnections_) {
        fail("sent while its upload was under way: " + nameOf(key));
    }
    if (fate.isReport && fate.attempts > kMaxAttempts) {
        fail("sent more than " + std::to_string(kMaxAttempts) +
             " times in one life: " + nameOf(key));
    }
}

void ZRMSimulationLedger::checkOrder(const std::string& key) {
    const auto place = places_.find(key);
    const auto index = place == places_.end() ? places_.size() : place->second;
    std::size_t before = 0;
    for (auto each = unsent_.begin(); each != unsent_.end() && *each < index; ++each) {
        if (++before > kOvertakers + unreadable_) {
            fail("sent before others of a higher priority or age: " + nameOf(key));
            break;
        }
    }
    unsent_.erase(index);
}

void ZRMSimulationLedger::uploadBegan(std::span<const std::uint8_t> bytes,
                                      const ZRMSimulationReply& reply, double uptime) {
    queueStarted();
    auto* event = recognise(bytes);
    if (event == nullptr) {
        return;
    }
    auto& fate = event->second;
    totals_.repeated += fate.attempts > 0 ? 1U : 0U;
    ++fate.attempts;
    trace_("upload of " + nameOf(event->first) + ", answer " +
           (reply.isComplete ? std::to_string(reply.status) : "broken or none"));
    checkRepetition(*event, uptime);
    checkOrder(event->first);
    fate.lastReply = reply;
    fate.disconnectionsThen = disconnections_;
    constexpr int kFirstRetriedStatus = 500;
    if (reply.isComplete && (reply.status < kFirstRetriedStatus || fate.attempts >= kMaxAttempts)) {
        totals_.answered += fate.whyGone.empty() ? 1U : 0U;
        fate.whyGone = "answered";
    }
}

void ZRMSimulationLedger::storeSeen(const std::vector<ZRMSimulationRecord>& stored, bool isAtRest,
                                    double uptime) {
    const auto keys = keysOf(stored);
    checkNothingIsLost(keys);
    // After a failed commit the files may hold what the library was told is not stored.
    if (!isDiskSound_) {
        return;
    }
    for (const auto& key : keys) {
        auto& fate = fates_.at(key);
        fate.isOwed = true;
        if (isAtRest && wasSurelyAnswered(fate, uptime)) {
            fail("still stored after its answer: " + nameOf(key));
        }
    }
}
