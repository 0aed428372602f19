// What stands behind the facade.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

// The kinds of reports that the facade passes on.
enum class ZRMMobileServiceEventType : int {
    UserLogin = 0,
    UserLogout = 1,
    UINavigation = 2,
    SessionId = 3,
    GeoLocation = 4,
};

// May be used from any thread. Every completion handler is called exactly once, on any thread.
class ZRMInternalService {
  public:
    using CompletionHandler = std::function<void(std::optional<ZRMError>)>;

    virtual ~ZRMInternalService() = default;

    virtual void activateWithCompletionHandler(const CompletionHandler& completionHandler) = 0;
    [[nodiscard]] virtual bool isRunning() const = 0;
    virtual void analyzeEnvironmentWithCompletionHandler(
        const CompletionHandler& completionHandler) = 0;
    // Which of the three texts are there depends on the kind of the event.
    virtual void sendEvent(ZRMMobileServiceEventType event, const std::optional<std::string>& value,
                           const std::optional<std::string>& result,
                           const std::optional<std::string>& userId,
                           const CompletionHandler& completionHandler) = 0;
    virtual void performAfterStartActionsWithCompletionHandler(
        const CompletionHandler& completionHandler) = 0;
    // Events that were taken over and that the server has not answered yet; a request that has not
    // made its event yet counts as one.
    [[nodiscard]] virtual std::size_t pendingEventCount() const = 0;
    // Those of them that would be lost if the process ended now.
    [[nodiscard]] virtual std::size_t unstoredEventCount() const = 0;
};
