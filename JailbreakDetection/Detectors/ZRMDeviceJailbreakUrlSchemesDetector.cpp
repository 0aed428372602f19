#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakUrlSchemesDetector.h"

#include <atomic>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMManualResetEvent.h"

namespace {

constexpr const char* kPackageManagerUrl = "cydia://package";

// Shared with the main queue, which may get to it after its asker is gone.
struct Question {
    std::shared_ptr<ZRMManualResetEvent> answered;
    std::atomic<bool> isAnswered{false};
    bool answer = false;
};

}  // namespace

ZRMDeviceJailbreakUrlSchemesDetector::ZRMDeviceJailbreakUrlSchemesDetector(
    std::shared_ptr<ZRMUrlOpener> urlOpener, std::shared_ptr<ZRMExecutor> executor,
    std::shared_ptr<ZRMClock> clock)
    : urlOpener_(std::move(urlOpener)), executor_(std::move(executor)), clock_(std::move(clock)) {}

bool ZRMDeviceJailbreakUrlSchemesDetector::isJailbroken() {
    const auto mainQueue = executor_->mainQueue();
    if (mainQueue->isCurrent()) {
        return urlOpener_->canOpenUrl(kPackageManagerUrl);
    }
    const auto question = std::make_shared<Question>();
    question->answered = ZRMManualResetEvent::manualResetEvent(*executor_, clock_);
    mainQueue->post([question, opener = urlOpener_] {
        question->answer = opener->canOpenUrl(kPackageManagerUrl);
        question->isAnswered = true;
        question->answered->signal();
    });
    // The event may wake for nothing.
    while (!question->isAnswered) {
        question->answered->wait();
    }
    return question->answer;
}

ZRMDeviceJailbreakDetectorType ZRMDeviceJailbreakUrlSchemesDetector::detectorType() const {
    return ZRMDeviceJailbreakDetectorUrlSchemes;
}
