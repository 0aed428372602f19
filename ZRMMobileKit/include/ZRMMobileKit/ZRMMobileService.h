// The service through which a host application reports to the risk server.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ZRMMobileKit/ZRMLoginResult.h"
#include "ZRMMobileKit/ZRMMobileKitErrorCode.h"
#include "ZRMMobileKit/ZRMMobileKitInfo.h"
#include "ZRMMobileKit/ZRMMobileServiceConfiguration.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/Values/ZRMExport.h"

class ZRMMobileServiceImpl;

// Reports user actions and the state of the device and the application:
//
//     auto configuration = ZRMMobileServiceConfiguration::configuration();
//     configuration.setStatisticsUrl("https://risk.example.com/stat?cid=mybank");
//     auto service = ZRMMobileService::createServiceWithConfiguration(configuration);
//     service->startWithCompletionHandler([service](const auto& error) {
//         if (!error) {
//             service->sendLogin("user-1", ZRMLoginResult::Success);
//         }
//     });
//
// Make one service, activate it once and keep it as long as the application runs; there is no stop.
//
// Threads: every operation may be called from any thread and returns without waiting for the
// network. Failed checks of arguments, error 3 before activation, and repeated activation or
// analysis call the handler before the operation returns, on the caller's thread; all else calls it
// on the main queue.
//
// Handlers: each is called exactly once, with an error or without one. An empty handler is allowed.
// A handler runs without any lock held: it may call the service, and it may let go of it. An
// operation without a handler logs the error instead.
//
// "Without an error" means that the library took the report over: it is stored on the device within
// milliseconds (see unstoredEventCount()) and uploaded as soon as the server can be reached, by a
// later run of the application if need be.
//
// Text is UTF-8. Text that is not valid UTF-8 is refused with the error of its argument. Lengths
// are counted in UTF-16 code units.
class ZRM_EXPORT ZRMMobileService {
  public:
    using CompletionHandler = std::function<void(const std::optional<ZRMError>& error)>;

    // A new service, not yet activated; never null. The configuration is copied.
    static std::shared_ptr<ZRMMobileService> createServiceWithConfiguration(
        const ZRMMobileServiceConfiguration& configuration);

    // Logs the advice and throws ZRMInvalidArgument.
    [[deprecated(
        "Don't use this initializer, use +(instancetype)createServiceWithConfiguration: "
        "instead")]] ZRMMobileService();
    ~ZRMMobileService();
    ZRMMobileService(const ZRMMobileService&) = delete;
    ZRMMobileService& operator=(const ZRMMobileService&) = delete;

    // Reads the settings and starts the library. Error 8: the configuration's statistics URL is no
    // HTTP URL. Other errors: the stored settings cannot be trusted. A failed activation may be
    // repeated; a repeated successful one does nothing and succeeds; one that is called while
    // another is under way shares its outcome.
    void activateWithCompletionHandler(CompletionHandler completionHandler);

    // Activates and then analyzes the environment; the handler gets the first error.
    void startWithCompletionHandler(CompletionHandler completionHandler);

    // Gathers what the settings allow about the device and the application and begins watching it.
    // Once per service: a repeated call succeeds at once, one after a failure tries again. Error 3:
    // not activated.
    void analyzeEnvironment();
    void analyzeEnvironmentWithCompletionHandler(CompletionHandler completionHandler);

    // Reports the outcome of a login. `userId` has 1 to 255 code units; `userName`, where there is
    // one, at most 255. Error 3: not activated; 9: an argument is refused; 12: the settings switch
    // the event off. A `result` outside the enumeration throws ZRMAssertionFailure.
    void sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result);
    void sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result,
                   CompletionHandler completionHandler);
    void sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result,
                   const std::optional<std::string>& userName);
    void sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result,
                   const std::optional<std::string>& userName, CompletionHandler completionHandler);

    // Reports that the user left. Errors 3 and 12 as for the login.
    void sendLogout();
    void sendLogoutWithCompletionHandler(CompletionHandler completionHandler);

    // Reports the place in the application that the user went to; at most 2048 code units, empty
    // and absent are allowed. Error 10: refused; errors 3 and 12 as for the login. The event is
    // switched off unless the server's settings switch it on.
    void sendUINavigationEvent(const std::optional<std::string>& navigationPoint);
    void sendUINavigationEvent(const std::optional<std::string>& navigationPoint,
                               CompletionHandler completionHandler);

    // Reports the host's identifier of the user's session; at most 1024 code units, empty and
    // absent are allowed. Error 11: refused; errors 3 and 12 as for the login.
    void sendSessionId(const std::optional<std::string>& sessionId);
    void sendSessionId(const std::optional<std::string>& sessionId,
                       CompletionHandler completionHandler);

    // Asks for one report of where the device is; the handler does not wait for the position.
    // Errors 3 and 12 as for the login.
    void sendGeoLocation();
    void sendGeoLocationWithCompletionHandler(CompletionHandler completionHandler);

    // The device's tag and the tag that the server issued (empty until it did), joined by "_".
    // Absent before activation.
    [[nodiscard]] std::optional<std::string> deviceTag() const;

    // How many reports the library has taken over that the server has not answered yet, those of
    // earlier runs of the application and the library's own included; a location or a signal of the
    // device that is still being looked for counts as one. 0 before activation.
    [[nodiscard]] std::size_t pendingEventCount() const;

    // How many of them are still on their way into the device's store, which takes milliseconds. An
    // application that ends itself waits for 0; what it leaves behind then goes out at its next
    // start.
    [[nodiscard]] std::size_t unstoredEventCount() const;

    // kZRMMobileKitVersion.
    [[nodiscard]] std::string version() const;

  private:
    explicit ZRMMobileService(std::shared_ptr<ZRMMobileServiceImpl> impl);

    std::shared_ptr<ZRMMobileServiceImpl> impl_;
};
