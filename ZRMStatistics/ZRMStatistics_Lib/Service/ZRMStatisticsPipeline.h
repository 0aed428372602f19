// Events between their report and the store: encoded in the background, handed on in their order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsEvent.h"

// Owned by shared_ptr; what was put into it is handed on even when the owner lets go. A caller pays
// for a task only when none is under way, and for encoding only when it reports faster than the
// queue encodes: then it encodes the event that has waited longest, so that few events wait and
// none is dropped.
class ZRMStatisticsPipeline final : public std::enable_shared_from_this<ZRMStatisticsPipeline> {
  public:
    // So many events may wait to be encoded before their reporters help.
    static constexpr std::size_t kMaxWaiting = 32;
    // So many events are encoded before those in front are handed on.
    static constexpr std::size_t kMaxBatch = 32;

    struct Encoded {
        ZRMSharedData body;  // null for an event that could not be encoded
        std::int16_t priority = 0;
    };
    // Several at a time, on the queue and on threads that report. Null, or an exception, drops the
    // event.
    using Encode = std::function<ZRMSharedData(const ZRMStatisticsEvent& event)>;
    // One call at a time, on the queue, in the order of put().
    using Deliver = std::function<void(const std::vector<Encoded>& events)>;
    // True where what was handed on piles up; the task is then called once it does no longer. Until
    // then the queue encodes nothing, which leaves the processor to those behind it, and reporters
    // encode all there is.
    using AwaitRoom = std::function<bool(ZRMTask goOn)>;

    // `awaitRoom` may be absent.
    ZRMStatisticsPipeline(std::shared_ptr<ZRMQueue> serialQueue, Encode encode, Deliver deliver,
                          AwaitRoom awaitRoom = {});

    // From any thread.
    void put(std::shared_ptr<const ZRMStatisticsEvent> event, std::int16_t priority);

  private:
    enum class Phase { Waiting, Encoding, Done };
    struct Slot {
        std::shared_ptr<const ZRMStatisticsEvent> event;
        Encoded encoded;
        Phase phase = Phase::Waiting;
    };

    void run();
    void encodeBatch();
    void handOn();
    // Null when none waits.
    Slot* takeWaiting() ZRM_REQUIRES(mutex_);
    std::vector<Encoded> takeDone() ZRM_REQUIRES(mutex_);
    // True when the queue has to be woken for what is in front.
    bool encode(Slot& slot);
    bool finish(Slot& slot, ZRMSharedData body);
    void post();

    const std::shared_ptr<ZRMQueue> queue_;
    const Encode encode_;
    const Deliver deliver_;
    const AwaitRoom awaitRoom_;

    ZRMMutex mutex_;  // guards what follows; nothing is called with it held
    std::deque<Slot> slots_ ZRM_GUARDED_BY(mutex_);
    std::size_t waiting_ ZRM_GUARDED_BY(mutex_) = 0;  // the last so many slots
    bool isPosted_ ZRM_GUARDED_BY(mutex_) = false;    // a task is on the queue or runs
};
