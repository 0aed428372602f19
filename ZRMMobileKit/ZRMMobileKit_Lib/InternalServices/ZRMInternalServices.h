// The internal services together, as the facade sees them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMDeviceTagProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMInternalService.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

// A completion handler to which only a failure is news. A success is not brought to it, which
// spares the caller the waking of the main queue's thread.
struct ZRMFailureHandler {
    std::function<void(const ZRMError& error)> failed;

    void operator()(const std::optional<ZRMError>& error) const {
        if (error) {
            failed(*error);
        }
    }
};

// An immutable list. A request goes to every service in the list's order; when all have answered,
// the handler gets the error that came first, on the main queue, exactly once (a ZRMFailureHandler
// only where there is one). May be used from any thread.
class ZRMInternalServices {
  public:
    using CompletionHandler = ZRMInternalService::CompletionHandler;

    // None of the services is null.
    ZRMInternalServices(std::shared_ptr<ZRMQueue> mainQueue,
                        std::vector<std::shared_ptr<ZRMInternalService>> services);

    [[nodiscard]] bool isEmpty() const { return services_.empty(); }

    void activateWithCompletionHandler(CompletionHandler completionHandler) const;
    // These two pass over a service that is not running: it counts as having answered error 3.
    void analyzeEnvironmentWithCompletionHandler(CompletionHandler completionHandler) const;
    void sendEvent(ZRMMobileServiceEventType event, const std::optional<std::string>& value,
                   const std::optional<std::string>& result,
                   const std::optional<std::string>& userId,
                   CompletionHandler completionHandler) const;

    // Each service's failure goes to the handler by itself, on the thread it comes on.
    void performAfterStartActions(const std::function<void(const ZRMError&)>& failureHandler) const;

    // "%@_%@" of the device tag and the secure device tag of the first running service that knows
    // them; absent without one.
    [[nodiscard]] std::optional<std::string> deviceTag() const;

    // The secure device tag of that service; absent without one.
    [[nodiscard]] std::optional<std::string> secureDeviceTag() const;

    // Of all services together.
    [[nodiscard]] std::size_t pendingEventCount() const;
    [[nodiscard]] std::size_t unstoredEventCount() const;

  private:
    using Request = std::function<void(ZRMInternalService&, const CompletionHandler&)>;
    enum class Whom { Everyone, RunningOnes };

    // The first running service that knows the tags; null without one.
    [[nodiscard]] const ZRMDeviceTagProvider* runningTagProvider() const;
    void fanOut(Whom whom, const Request& request, CompletionHandler completionHandler) const;

    const std::shared_ptr<ZRMQueue> mainQueue_;
    const std::vector<std::shared_ptr<ZRMInternalService>> services_;
};
