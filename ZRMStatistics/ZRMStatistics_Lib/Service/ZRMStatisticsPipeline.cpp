#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsPipeline.h"

#include <exception>
#include <string>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

ZRMStatisticsPipeline::ZRMStatisticsPipeline(std::shared_ptr<ZRMQueue> serialQueue, Encode encode,
                                             Deliver deliver, AwaitRoom awaitRoom)
    : queue_(std::move(serialQueue)),
      encode_(std::move(encode)),
      deliver_(std::move(deliver)),
      awaitRoom_(std::move(awaitRoom)) {}

void ZRMStatisticsPipeline::put(std::shared_ptr<const ZRMStatisticsEvent> event,
                                std::int16_t priority) {
    bool mustPost = false;
    Slot* oldest = nullptr;
    {
        const ZRMLockGuard lock(mutex_);
        slots_.push_back({std::move(event), {nullptr, priority}});
        ++waiting_;
        mustPost = !std::exchange(isPosted_, true);
        oldest = waiting_ > kMaxWaiting ? takeWaiting() : nullptr;
    }
    if (mustPost) {
        post();
    }
    if (oldest != nullptr && encode(*oldest)) {
        post();
    }
}

// A run ends after a batch, so that other work of the pool gets its turn.
void ZRMStatisticsPipeline::run() {
    handOn();
    if (awaitRoom_ && awaitRoom_([self = shared_from_this()] { self->post(); })) {
        return;
    }
    encodeBatch();
    handOn();
    bool goesOn = false;
    {
        const ZRMLockGuard lock(mutex_);
        // What a reporter still encodes is handed on by the task that it posts.
        goesOn = waiting_ > 0 || (!slots_.empty() && slots_.front().phase == Phase::Done);
        isPosted_ = goesOn;
    }
    if (goesOn) {
        post();
    }
}

void ZRMStatisticsPipeline::encodeBatch() {
    for (std::size_t encoded = 0; encoded < kMaxBatch; ++encoded) {
        Slot* slot = nullptr;
        {
            const ZRMLockGuard lock(mutex_);
            slot = takeWaiting();
        }
        if (slot == nullptr) {
            return;
        }
        encode(*slot);
    }
}

void ZRMStatisticsPipeline::handOn() {
    std::vector<Encoded> done;
    {
        const ZRMLockGuard lock(mutex_);
        done = takeDone();
    }
    if (!done.empty()) {
        deliver_(done);
    }
}

ZRMStatisticsPipeline::Slot* ZRMStatisticsPipeline::takeWaiting() {
    if (waiting_ == 0) {
        return nullptr;
    }
    auto& slot = slots_[slots_.size() - waiting_];
    --waiting_;
    slot.phase = Phase::Encoding;
    return &slot;
}

std::vector<ZRMStatisticsPipeline::Encoded> ZRMStatisticsPipeline::takeDone() {
    std::vector<Encoded> done;
    while (!slots_.empty() && slots_.front().phase == Phase::Done) {
        done.push_back(std::move(slots_.front().encoded));
        slots_.pop_front();
    }
    return done;
}

// Slots keep their place in memory while others come and go at the ends.
bool ZRMStatisticsPipeline::encode(Slot& slot) {
    ZRMSharedData body;
    try {
        body = encode_(*std::exchange(slot.event, nullptr));
    } catch (const std::exception& exception) {
        // One event must not hold up those behind it.
        zrm_logError(this, std::string("An event cannot be encoded: ") + exception.what());
    }
    return finish(slot, std::move(body));
}

bool ZRMStatisticsPipeline::finish(Slot& slot, ZRMSharedData body) {
    const ZRMLockGuard lock(mutex_);
    slot.encoded.body = std::move(body);
    slot.phase = Phase::Done;
    return slots_.front().phase == Phase::Done && !std::exchange(isPosted_, true);
}

void ZRMStatisticsPipeline::post() {
    queue_->post([self = shared_from_this()] { self->run(); });
}
