#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMMemoryLoggerMonitor.h"

std::shared_ptr<ZRMMemoryLoggerMonitor> ZRMMemoryLoggerMonitor::initWithMemoryLoggger(
    std::shared_ptr<ZRMMemoryLogger> memoryLogger, std::int64_t memoryLimit, double timeInterval,
    std::shared_ptr<ZRMExecutor> executor) {
    return std::shared_ptr<ZRMMemoryLoggerMonitor>(new ZRMMemoryLoggerMonitor(
        std::move(memoryLogger), memoryLimit, timeInterval, std::move(executor)));
}

ZRMMemoryLoggerMonitor::ZRMMemoryLoggerMonitor(std::shared_ptr<ZRMMemoryLogger> memoryLogger,
                                               std::int64_t memoryLimit, double timeInterval,
                                               std::shared_ptr<ZRMExecutor> executor)
    : memoryLogger_(std::move(memoryLogger)),
      memoryLimit_(memoryLimit),
      timeInterval_(timeInterval),
      executor_(std::move(executor)) {}

// The logger, which holds its observers weakly, may be notifying at this moment and must not be
// asked to forget this one; only the timer needs to end.
ZRMMemoryLoggerMonitor::~ZRMMemoryLoggerMonitor() {
    stopTimer();
}

void ZRMMemoryLoggerMonitor::startWithNotifyBlock(NotifyBlock notifyBlock) {
    {
        const ZRMLockGuard lock(mutex_);
        notifyBlock_ = std::move(notifyBlock);
        runLoop_ = ZRMRunLoop::currentRunLoop(executor_);
    }
    memoryLogger_->addObserver(shared_from_this());
    if (isMemoryLimitReached()) {
        notify();
    }
    restartTimer();
}

void ZRMMemoryLoggerMonitor::stop() {
    memoryLogger_->removeObserver(this);
    stopTimer();
    const ZRMLockGuard lock(mutex_);
    notifyBlock_ = nullptr;
    runLoop_ = nullptr;
}

void ZRMMemoryLoggerMonitor::memoryLogger(ZRMMemoryLogger& /*logger*/,
                                          const std::string& /*didReceiveLog*/) {
    if (isMemoryLimitReached()) {
        stopTimer();
        notify();
        restartTimer();
    }
}

bool ZRMMemoryLoggerMonitor::isMemoryLimitReached() const {
    return memoryLogger_->logsSizeInBytes() >= memoryLimit_;
}

void ZRMMemoryLoggerMonitor::notify() {
    NotifyBlock notifyBlock;
    {
        const ZRMLockGuard lock(mutex_);
        notifyBlock = notifyBlock_;
    }
    if (notifyBlock) {
        notifyBlock(memoryLogger_->takeLogs());
    }
}

void ZRMMemoryLoggerMonitor::restartTimer() {
    const auto timer = std::make_shared<ZRMTimer>(
        timeInterval_, true, ZRMBlockHolder::holderWithBlock([weakSelf = weak_from_this()] {
            if (const auto self = weakSelf.lock()) {
                self->notify();
            }
        }));
    const ZRMLockGuard lock(mutex_);
    if (runLoop_ == nullptr) {
        return;  // stopped meanwhile
    }
    if (timer_ != nullptr) {
        timer_->invalidate();
    }
    timer_ = timer;
    runLoop_->addTimer(timer_);
}

void ZRMMemoryLoggerMonitor::stopTimer() {
    const ZRMLockGuard lock(mutex_);
    if (timer_ != nullptr) {
        timer_->invalidate();
        timer_ = nullptr;
    }
}
