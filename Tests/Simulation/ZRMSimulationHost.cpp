// What the host does in a simulation.
#include <algorithm>
#include <array>
#include <utility>

#include "Tests/Simulation/ZRMSimulation.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Categories/NSString/NSString+ZRMCloudKit.h"

namespace {

using Handler = ZRMMobileService::CompletionHandler;

constexpr std::array kPieces = {"a",        "Zz9",       "\"",       "\\",
                                "\n",       "/",         "\xC3\xBC", "\xE4\xB8\xAD",
                                "\x7F",     "</script>", "\t",       "\xF0\x9F\x98\x80",
                                "\xCC\x88", "'"};
constexpr int kLogins = 7;  // results of a login
constexpr std::size_t kLongestId = 255;
constexpr std::size_t kLongestPoint = 2048;
constexpr int kCallsWithinAStep = 4;

}  // namespace

// Unlike every other one of the run; filled up to so many characters now and then.
std::string ZRMSimulation::token(std::size_t longest) {
    std::string text = "t" + std::to_string(++reports_) + "-";
    const auto pieces = random_.below(6);
    for (std::uint64_t piece = 0; piece < pieces; ++piece) {
        text += kPieces[random_.below(kPieces.size())];
    }
    if (random_.oneIn(20)) {
        text += '\0';
    }
    if (random_.oneIn(20)) {
        text.resize(std::max(longest, text.size()), 'x');
    }
    return text;
}

void ZRMSimulation::call(const std::string& what, const std::string& report, ZRMDictionary body,
                         const std::function<void(ZRMMobileService&, Handler)>& run) {
    if (service_ == nullptr || !device_.isProcessAlive()) {
        return;
    }
    const auto number = ledger_.callMade(what, report, std::move(body));
    Handler handler = [this, number, what](const std::optional<ZRMError>& error) {
        if (!device_.isProcessAlive()) {
            return;  // what is left on the stack of a process that is gone
        }
        happen("answer to " + what + (error ? ": " + std::to_string(error->code()) : ""));
        ledger_.handlerCalled(number, error ? std::optional(error->code()) : std::nullopt);
        if (random_.oneIn(20) && ++callsWithin_ < kCallsWithinAStep) {
            this->report(static_cast<int>(random_.below(4)));
        }
    };
    happen(what);
    // A handler may let go of the service.
    const auto service = service_;
    try {
        run(*service, std::move(handler));
    } catch (const ZRMSimulatedProcessEnded&) {
        happen("ended within " + what);
    }
}

void ZRMSimulation::report(int kind) {
    switch (kind) {
        case 0: {
            const auto user = token(kLongestId);
            const auto result = static_cast<ZRMLoginResult>(random_.below(kLogins));
            const auto name = random_.oneIn(2) ? std::optional(token(kLongestId)) : std::nullopt;
            ZRMDictionary body{{"userId", user}, {"result", zrm_stringFromLoginResult(result)}};
            if (name) {
                body["userName"] = *name;
            }
            call("login", "UserLoginEvent/" + user, std::move(body),
                 [&](ZRMMobileService& service, Handler handler) {
                     service.sendLogin(user, result, name, std::move(handler));
                 });
            break;
        }
        case 1: {
            const auto session = token(1024);
            call("session", "SessionIdEvent/" + session, {{"sessionId", session}},
                 [&](ZRMMobileService& service, Handler handler) {
                     service.sendSessionId(session, std::move(handler));
                 });
            break;
        }
        case 2: {
            const auto point = token(kLongestPoint);
            call("navigation", "UINavigationEvent/" + point, {{"navigationPoint", point}},
                 [&](ZRMMobileService& service, Handler handler) {
                     service.sendUINavigationEvent(point, std::move(handler));
                 });
            break;
        }
        default: {
            const auto date = zrm_stringFromDate(device_.now()).value_or("");
            if (logouts_.insert(date).second) {
                call("logout", "UserLogoutEvent/" + date, {{"eventDateTime", date}},
                     [](ZRMMobileService& service, Handler handler) {
                         service.sendLogoutWithCompletionHandler(std::move(handler));
                     });
            }
            break;
        }
    }
}

void ZRMSimulation::reportFromSomeThread() {
    const int kind = static_cast<int>(random_.below(4));
    if (random_.oneIn(2) || threads_.empty()) {
        report(kind);
        return;
    }
    const auto thread = random_.below(threads_.size());
    happen("thread " + std::to_string(thread));
    threads_[thread]->post([this, kind] { report(kind); });
}

// One code unit too many, or bytes that are no text: refused whatever the service's state.
void ZRMSimulation::reportTooMuch() {
    const auto user =
        random_.oneIn(2) ? token(20) + std::string(kLongestId, 'y') : token(20) + "\xC3\x28";
    call("refused login", "UserLoginEvent/" + user, {{"userId", user}},
         [&](ZRMMobileService& service, Handler handler) {
             service.sendLogin(user, ZRMLoginResult::Success,
                               [this, handler](const std::optional<ZRMError>& error) {
                                   if (!error) {
                                       ledger_.fail("a value was taken that must be refused");
                                   }
                                   handler(error);
                               });
         });
}

// More than the queue may hold, without a network to empty it.
void ZRMSimulation::flood() {
    constexpr int kMostEvents = 5000;
    constexpr std::size_t kIdeographs = 1000;
    setConnected(false);
    for (int number = 0; number < kMostEvents && ledger_.totals().purged == 0; ++number) {
        auto session = "t" + std::to_string(++reports_) + "-";
        for (std::size_t letter = 0; letter < kIdeographs; ++letter) {
            const auto point = 0x4E00U + static_cast<std::uint32_t>(random_.below(20000));
            session += static_cast<char>(0xE0U | (point >> 12U));
            session += static_cast<char>(0x80U | ((point >> 6U) & 0x3FU));
            session += static_cast<char>(0x80U | (point & 0x3FU));
        }
        stepRunsNoTask_ = true;
        call("flood", "SessionIdEvent/" + session, {{"sessionId", session}},
             [&](ZRMMobileService& service, Handler handler) {
                 service.sendSessionId(session, std::move(handler));
             });
        afterStep();
        stepRunsNoTask_ = false;
        device_.runUntilIdle();
        afterStep();
    }
    setConnected(true);
}
