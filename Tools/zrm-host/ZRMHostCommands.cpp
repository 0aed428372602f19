#include "Tools/zrm-host/ZRMHostCommands.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>

#include "Tools/zrm-host/ZRMHostArguments.h"
#include "Tools/zrm-host/ZRMHostSignalCommands.h"

namespace {

using Words = std::vector<std::string>;
using Handler = ZRMMobileService::CompletionHandler;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kAnswerLimit{120};
constexpr std::chrono::seconds kStoringLimit{10};
constexpr std::chrono::microseconds kShortestPause{100};
constexpr std::chrono::microseconds kLongestPause{20000};

ZRMHostAnswer failed(ZRMHostErrorCode code, const std::string& message) {
    return {{}, zrm_hostError(code, message), {}};
}

// Calls the operation and waits for its handler.
ZRMHostAnswer await(const std::function<void(const Handler&)>& operation) {
    const auto outcome = std::make_shared<std::promise<std::optional<ZRMError>>>();
    auto answered = outcome->get_future();
    operation([outcome](const std::optional<ZRMError>& error) { outcome->set_value(error); });
    if (answered.wait_for(kAnswerLimit) != std::future_status::ready) {
        return failed(ZRMHostErrorNoAnswer, "the library did not call its handler");
    }
    return {{}, answered.get(), {}};
}

// Looks at the count, ever less often, until it is 0 or the time is over. Returns the last count.
std::size_t waitForNone(const std::function<std::size_t()>& count, Clock::duration limit) {
    const auto end = Clock::now() + limit;
    auto pause = kShortestPause;
    auto left = count();
    while (left > 0 && Clock::now() < end) {
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, kLongestPause);
        left = count();
    }
    return left;
}

// A report: completed once the event is in the store too, so that ending the host, however it is
// done, loses nothing that was answered.
ZRMHostAnswer report(ZRMHostContext& context,
                     const std::function<void(const Handler&)>& operation) {
    auto answer = await(operation);
    waitForNone([&] { return context.service.unstoredEventCount(); }, kStoringLimit);
    return answer;
}

ZRMHostAnswer activate(ZRMHostContext& context, const Words&) {
    return await([&](const Handler& done) { context.service.activateWithCompletionHandler(done); });
}

ZRMHostAnswer start(ZRMHostContext& context, const Words&) {
    return await([&](const Handler& done) { context.service.startWithCompletionHandler(done); });
}

ZRMHostAnswer analyze(ZRMHostContext& context, const Words&) {
    return await([&](const Handler& done) {
        context.service.analyzeEnvironmentWithCompletionHandler(done);
    });
}

ZRMHostAnswer login(ZRMHostContext& context, const Words& arguments) {
    const auto result = zrm_loginResultFromText(arguments[1]);
    if (!result) {
        return failed(ZRMHostErrorWrongArguments,
                      "RESULT is neither 0 to 6 nor one of their texts");
    }
    const auto name = arguments.size() > 2 ? std::optional(arguments[2]) : std::nullopt;
    return report(context, [&](const Handler& done) {
        context.service.sendLogin(arguments[0], *result, name, done);
    });
}

ZRMHostAnswer logout(ZRMHostContext& context, const Words&) {
    return report(context, [&](const Handler& done) {
        context.service.sendLogoutWithCompletionHandler(done);
    });
}

ZRMHostAnswer navigate(ZRMHostContext& context, const Words& arguments) {
    return report(context, [&](const Handler& done) {
        context.service.sendUINavigationEvent(arguments[0], done);
    });
}

ZRMHostAnswer session(ZRMHostContext& context, const Words& arguments) {
    return report(context,
                  [&](const Handler& done) { context.service.sendSessionId(arguments[0], done); });
}

// Completed once the request is taken: the position comes later, or not at all.
ZRMHostAnswer location(ZRMHostContext& context, const Words&) {
    return await(
        [&](const Handler& done) { context.service.sendGeoLocationWithCompletionHandler(done); });
}

ZRMHostAnswer tag(ZRMHostContext& context, const Words&) {
    const auto text = context.service.deviceTag();
    return {{}, {}, text ? boost::json::value(*text) : boost::json::value(nullptr)};
}

ZRMHostAnswer version(ZRMHostContext& context, const Words&) {
    return {{}, {}, boost::json::value(context.service.version())};
}

ZRMHostAnswer signal(ZRMHostContext&, const Words& arguments) {
    const auto problem = zrm_feedHostSignal(arguments);
    return problem ? failed(ZRMHostErrorWrongArguments, *problem) : ZRMHostAnswer();
}

ZRMHostAnswer wait(ZRMHostContext&, const Words& arguments) {
    const auto time = zrm_secondsFromText(arguments[0]);
    if (!time) {
        return failed(ZRMHostErrorWrongArguments, "SECONDS is no number from 0 to 86400");
    }
    std::this_thread::sleep_for(*time);
    return {};
}

ZRMHostAnswer drain(ZRMHostContext& context, const Words& arguments) {
    const auto time = zrm_secondsFromText(arguments[0]);
    if (!time) {
        return failed(ZRMHostErrorWrongArguments, "SECONDS is no number from 0 to 86400");
    }
    const auto pending = waitForNone([&] { return context.service.pendingEventCount(); }, *time);
    return {{}, {}, boost::json::value(pending)};
}

ZRMHostAnswer help(ZRMHostContext& context, const Words&) {
    context.dialogue << zrm_hostCommandsHelp() << std::flush;
    return {};
}

ZRMHostAnswer quit(ZRMHostContext&, const Words&) {
    return {};
}

constexpr std::array kCommands{
    ZRMHostCommand{"activate", 0, 0, "activate", "activate the library", activate},
    ZRMHostCommand{"start", 0, 0, "start", "activate, then analyze", start},
    ZRMHostCommand{"analyze", 0, 0, "analyze", "analyze the environment", analyze},
    ZRMHostCommand{"login", 2, 3, "login USER RESULT [NAME]",
                   "report a login; RESULT is 0 to 6 or its text, such as SUCCESS", login},
    ZRMHostCommand{"logout", 0, 0, "logout", "report a logout", logout},
    ZRMHostCommand{"navigate", 1, 1, "navigate POINT", "report a place in the application",
                   navigate},
    ZRMHostCommand{"session", 1, 1, "session ID", "report the session's identifier", session},
    ZRMHostCommand{"location", 0, 0, "location",
                   "ask for a report of where the device is; the answer does not wait for it",
                   location},
    ZRMHostCommand{"tag", 0, 0, "tag", "the device tag as \"value\"", tag},
    ZRMHostCommand{"version", 0, 0, "version", "the library's version as \"value\"", version},
    ZRMHostCommand{"signal", 1, ZRMHostSignal::kAny, "signal NAME [ARGS]",
                   "tell the library of the device; the signals are below", signal},
    ZRMHostCommand{"wait", 1, 1, "wait SECONDS", "do nothing", wait},
    ZRMHostCommand{
        "drain", 1, 1, "drain SECONDS",
        "wait until every queued event was answered or the time is over; \"value\" is the "
        "number still queued",
        drain},
    ZRMHostCommand{"help", 0, 0, "help", "print this page on standard error", help},
    ZRMHostCommand{kZRMHostQuitCommand, 0, 0, "quit", "end, as the end of the input does", quit},
};

}  // namespace

const ZRMHostCommand* zrm_hostCommandNamed(std::string_view name) {
    const auto* found = std::find_if(kCommands.begin(), kCommands.end(),
                                     [name](const auto& known) { return known.name == name; });
    return found == kCommands.end() ? nullptr : found;
}

std::string zrm_hostCommandsHelp() {
    constexpr std::size_t column = 28;
    std::string help =
        "Reads one command a line from standard input, words quoted as a shell would. Commands run "
        "one after another; for each completed one a JSON line is printed:\n"
        "  {\"op\":\"login\",\"error\":null}\n"
        "  {\"op\":\"login\",\"error\":{\"domain\":...,\"code\":...,\"message\":...}}\n"
        "Commands:\n";
    for (const auto& command : kCommands) {
        auto line = "  " + std::string(command.usage);
        line.resize(std::max(column, line.size() + 2), ' ');
        help += line + std::string(command.meaning) + "\n";
    }
    return help + "Signals:\n" + zrm_hostSignalsHelp();
}
