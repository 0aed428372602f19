#include "Tests/Simulation/ZRMSimulationServer.h"

#include <array>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"

namespace {

constexpr const char* kPath = "/stat";
constexpr double kTimeoutSeconds = 60;  // of a request and of its whole exchange
constexpr double kDaySeconds = 86400;

}  // namespace

ZRMSimulationServer::ZRMSimulationServer(ZRMSimulatedDevice& device, ZRMSimulationLedger& ledger,
                                         ZRMSimulationRandom& random,
                                         std::function<void()> beforeUpload)
    : device_(device), ledger_(ledger), random_(random), beforeUpload_(std::move(beforeUpload)) {
    device_.network().handle(kPath,
                             [this](const ZRMUrlRequest& request) { return answer(request); });
    device_.network().handleEverything([this](const ZRMUrlRequest&) { return answerInMood(); });
}

void ZRMSimulationServer::changeMood() {
    // Good half of the time, so that the queue empties now and then.
    mood_ = random_.oneIn(2) ? Mood::Good
                             : static_cast<Mood>(random_.below(std::uint64_t(Mood::Count)));
    serverClock_ = random_.oneIn(2)
                       ? Clock::Right
                       : static_cast<Clock>(random_.below(std::uint64_t(Clock::Count)));
}

void ZRMSimulationServer::recover() {
    mood_ = Mood::Good;
    serverClock_ = Clock::Right;
}

std::string ZRMSimulationServer::date() const {
    const auto written = [](double secondsSince1970) {
        return zrm_serverTimeFormatter()->stringFromDate(ZRMDate{secondsSince1970});
    };
    const double now = device_.now().secondsSince1970;
    switch (serverClock_) {
        case Clock::Right:
            return written(now);
        case Clock::Garbage:
            return "yesterday, \xff about noon";
        case Clock::Early:
            return written(now - 40 * kDaySeconds);
        case Clock::Late:
            return written(now + 3 * kDaySeconds);
        case Clock::FarFuture:
            return "Fri, 31 Dec 9999 23:59:59 GMT";
        case Clock::None:
        case Clock::Count:
            break;
    }
    return "";
}

ZRMSimulatedAnswer ZRMSimulationServer::flakyAnswer() {
    static constexpr std::array kErrors = {
        ZRMUrlErrorTimedOut, ZRMUrlErrorCannotConnectToHost, ZRMUrlErrorNetworkConnectionLost,
        ZRMUrlErrorNotConnectedToInternet, ZRMUrlErrorSecureConnectionFailed};
    static constexpr std::array kStatuses = {200, 204, 301, 400, 404, 429, 500, 503, 599};
    switch (random_.below(4)) {
        case 0:
            return ZRMSimulatedAnswer::withError(kErrors[random_.below(kErrors.size())]);
        case 1:
            return ZRMSimulatedAnswer::withStatus(kStatuses[random_.below(kStatuses.size())]);
        case 2: {
            auto lost = ZRMSimulatedAnswer::withBody("{\"taken\":true}");
            lost.bodySeconds = random_.between(0, 3);
            lost.lostAfterBytes = random_.below(lost.body.size() + 1);
            return lost;
        }
        default:
            return ZRMSimulatedAnswer::never();
    }
}

ZRMSimulatedAnswer ZRMSimulationServer::answerInMood() {
    ZRMSimulatedAnswer answer;
    switch (mood_) {
        case Mood::Good:
        case Mood::Count:
            answer.delaySeconds = random_.oneIn(2) ? 0 : random_.between(0, 0.2);
            break;
        case Mood::Slow:
            answer = ZRMSimulatedAnswer::withBody("{\"taken\":true}");
            answer.delaySeconds = random_.between(0, 70);
            answer.bodySeconds = random_.between(0, 10);
            break;
        case Mood::Flaky:
            answer = random_.oneIn(3) ? ZRMSimulatedAnswer{} : flakyAnswer();
            break;
        case Mood::Broken:
            answer = ZRMSimulatedAnswer::withStatus(503);
            break;
        case Mood::Unreachable:
            answer = ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotConnectToHost);
            break;
    }
    if (const auto text = date(); !text.empty()) {
        answer.headers.set("Date", text);
    }
    return answer;
}

ZRMSimulationReply ZRMSimulationServer::replyOf(const ZRMSimulatedAnswer& answer) const {
    ZRMSimulationReply reply;
    const double seconds = answer.delaySeconds + answer.bodySeconds;
    reply.isReceived = !answer.errorCode || *answer.errorCode != ZRMUrlErrorCannotConnectToHost;
    reply.isComplete = !answer.errorCode && !answer.lostAfterBytes && seconds < kTimeoutSeconds;
    reply.status = answer.status;
    reply.endsAtUptime = device_.clock().uptimeSeconds() + seconds;
    return reply;
}

ZRMSimulatedAnswer ZRMSimulationServer::answer(const ZRMUrlRequest& request) {
    // The last one of the record is this one.
    noteUploadsBefore(device_.network().requests().size() - 1);
    ++noted_;
    const auto answer = answerInMood();
    note(request, replyOf(answer));
    return answer;
}

void ZRMSimulationServer::noteUnconnectedUploads() {
    auto& network = device_.network();
    noteUploadsBefore(network.requests().size());
    network.forgetRequests();
    noted_ = 0;
}

void ZRMSimulationServer::noteUploadsBefore(std::size_t end) {
    const auto& requests = device_.network().requests();
    for (; noted_ < end; ++noted_) {
        if (requests[noted_].path() == kPath) {
            note(requests[noted_].request, {});
        }
    }
}

void ZRMSimulationServer::note(const ZRMUrlRequest& request, const ZRMSimulationReply& reply) {
    ++uploads_;
    beforeUpload_();
    ledger_.clockReads(device_.now().secondsSince1970);
    if (request.body) {
        ledger_.uploadBegan(*request.body, reply, device_.clock().uptimeSeconds());
    } else {
        ledger_.fail("an upload without a body");
    }
}
