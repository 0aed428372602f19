#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMInternalServices.h"

#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

// Gathers the answers to one request. Whoever holds it has yet to answer: when the last one lets
// go, the continuation is posted.
class Gathering {
  public:
    Gathering(std::shared_ptr<ZRMQueue> mainQueue,
              ZRMInternalServices::CompletionHandler continuation)
        : mainQueue_(std::move(mainQueue)), continuation_(std::move(continuation)) {}
    Gathering(const Gathering&) = delete;
    Gathering& operator=(const Gathering&) = delete;

    ~Gathering() {
        if (!error_ && continuation_.target<ZRMFailureHandler>() != nullptr) {
            return;
        }
        mainQueue_->post([continuation = std::move(continuation_), error = std::move(error_)] {
            continuation(error);
        });
    }

    void add(std::optional<ZRMError> error) {
        const ZRMLockGuard lock(mutex_);
        if (!error_) {
            error_ = std::move(error);
        }
    }

  private:
    const std::shared_ptr<ZRMQueue> mainQueue_;
    ZRMInternalServices::CompletionHandler continuation_;
    ZRMMutex mutex_;  // guards the error
    std::optional<ZRMError> error_ ZRM_GUARDED_BY(mutex_);
};

}  // namespace

ZRMInternalServices::ZRMInternalServices(std::shared_ptr<ZRMQueue> mainQueue,
                                         std::vector<std::shared_ptr<ZRMInternalService>> services)
    : mainQueue_(std::move(mainQueue)), services_(std::move(services)) {}

void ZRMInternalServices::fanOut(Whom whom, const Request& request,
                                 CompletionHandler completionHandler) const {
    const auto gathering = std::make_shared<Gathering>(mainQueue_, std::move(completionHandler));
    for (const auto& service : services_) {
        if (whom == Whom::RunningOnes && !service->isRunning()) {
            gathering->add(
                ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorServiceNotReady));
            continue;
        }
        request(*service,
                [gathering](std::optional<ZRMError> error) { gathering->add(std::move(error)); });
    }
}

void ZRMInternalServices::activateWithCompletionHandler(CompletionHandler completionHandler) const {
    fanOut(
        Whom::Everyone,
        [](ZRMInternalService& service, const CompletionHandler& answer) {
            service.activateWithCompletionHandler(answer);
        },
        std::move(completionHandler));
}

void ZRMInternalServices::analyzeEnvironmentWithCompletionHandler(
    CompletionHandler completionHandler) const {
    fanOut(
        Whom::RunningOnes,
        [](ZRMInternalService& service, const CompletionHandler& answer) {
            service.analyzeEnvironmentWithCompletionHandler(answer);
        },
        std::move(completionHandler));
}

void ZRMInternalServices::sendEvent(ZRMMobileServiceEventType event,
                                    const std::optional<std::string>& value,
                                    const std::optional<std::string>& result,
                                    const std::optional<std::string>& userId,
                                    CompletionHandler completionHandler) const {
    fanOut(
        Whom::RunningOnes,
        [&](ZRMInternalService& service, const CompletionHandler& answer) {
            service.sendEvent(event, value, result, userId, answer);
        },
        std::move(completionHandler));
}

void ZRMInternalServices::performAfterStartActions(
    const std::function<void(const ZRMError&)>& failureHandler) const {
    for (const auto& service : services_) {
        service->performAfterStartActionsWithCompletionHandler(
            [failureHandler](const std::optional<ZRMError>& error) {
                if (error) {
                    failureHandler(*error);
                }
            });
    }
}

const ZRMDeviceTagProvider* ZRMInternalServices::runningTagProvider() const {
    for (const auto& service : services_) {
        const auto* const provider = dynamic_cast<const ZRMDeviceTagProvider*>(service.get());
        if (provider != nullptr && service->isRunning()) {
            return provider;
        }
    }
    return nullptr;
}

std::optional<std::string> ZRMInternalServices::deviceTag() const {
    const auto* const provider = runningTagProvider();
    return provider == nullptr
               ? std::nullopt
               : std::optional(provider->deviceTag() + "_" + provider->secureDeviceTag());
}

std::optional<std::string> ZRMInternalServices::secureDeviceTag() const {
    const auto* const provider = runningTagProvider();
    return provider == nullptr ? std::nullopt : std::optional(provider->secureDeviceTag());
}

std::size_t ZRMInternalServices::pendingEventCount() const {
    std::size_t count = 0;
    for (const auto& service : services_) {
        count += service->pendingEventCount();
    }
    return count;
}

std::size_t ZRMInternalServices::unstoredEventCount() const {
    std::size_t count = 0;
    for (const auto& service : services_) {
        count += service->unstoredEventCount();
    }
    return count;
}
