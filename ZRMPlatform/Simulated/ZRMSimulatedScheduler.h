// Runs the tasks and timers of one simulated process, one after the other, in the calling thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedTime.h"

class ZRMSimulatedQueue;
class ZRMSimulatedTimer;

// Thrown out of a wait inside a process that was killed meanwhile; it unwinds what is left of the
// process. The scheduler catches it around every task.
struct ZRMSimulatedProcessEnded {};

// Tasks run in the order of their posting over all queues, save that a serial queue whose task
// waits runs nothing else meanwhile. With a seed, the next task is drawn among those that may run
// instead: the first of each idle serial queue and all of the concurrent ones. One thread alone.
class ZRMSimulatedScheduler : public std::enable_shared_from_this<ZRMSimulatedScheduler> {
  public:
    explicit ZRMSimulatedScheduler(std::shared_ptr<ZRMSimulatedTime> time);
    ~ZRMSimulatedScheduler();

    void post(const std::shared_ptr<ZRMSimulatedQueue>& queue, ZRMTask task);
    // Due at the moment; then, with a period above 0, every period on the same clock.
    std::shared_ptr<ZRMTimerHandle> addTimer(const std::shared_ptr<ZRMSimulatedQueue>& queue,
                                             ZRMSimulatedMoment due, double periodSeconds,
                                             ZRMTask task);

    // Runs one task that is due now. False when there is none or the process is dead.
    bool runOne();
    // Runs until `done` says true or the moment has come; time passes only while nothing is due.
    // Returns the last word of `done`. Throws ZRMSimulatedProcessEnded when the process dies
    // meanwhile and `done` still says false.
    bool runUntil(const std::function<bool()>& done, ZRMSimulatedMoment deadline);
    // As runUntil without a condition; ends at once in a dead process and never throws.
    void runUntilMoment(ZRMSimulatedMoment deadline);

    // The queue whose task runs now; nullptr outside every task.
    [[nodiscard]] const ZRMSimulatedQueue* currentQueue() const;
    [[nodiscard]] bool isIdle() const;
    // The uptime at which the next timer is due.
    [[nodiscard]] std::optional<std::int64_t> nextTimerUptime() const;
    [[nodiscard]] std::uint64_t tasksRun() const { return tasksRun_; }
    [[nodiscard]] const std::shared_ptr<ZRMSimulatedTime>& time() const { return time_; }

    void setSeed(std::optional<std::uint64_t> seed);

    // From now on nothing is posted and nothing runs.
    void stop() { stopped_ = true; }
    [[nodiscard]] bool isStopped() const { return stopped_; }
    // Lets go of every task and timer. Outside every task, after stop().
    void dropEverything();

  private:
    friend class ZRMSimulatedTimer;

    struct Ready {
        std::shared_ptr<ZRMSimulatedQueue> queue;
        ZRMTask task;
    };
    // By moment, then by the order of making.
    using TimerKey = std::pair<std::int64_t, std::uint64_t>;
    using Timers = std::map<TimerKey, std::shared_ptr<ZRMSimulatedTimer>>;

    Timers& timersOf(ZRMSimulatedMoment::Clock clock);
    void schedule(const std::shared_ptr<ZRMSimulatedTimer>& timer);
    void unschedule(const ZRMSimulatedTimer& timer);
    void fireDueTimers();
    bool fireNextDueTimer();
    void offerNextOf(const std::shared_ptr<ZRMSimulatedQueue>& queue);
    Ready takeReady();
    void run(Ready ready);

    std::shared_ptr<ZRMSimulatedTime> time_;
    std::map<std::uint64_t, Ready> ready_;
    Timers wallTimers_;
    Timers uptimeTimers_;
    std::vector<const ZRMSimulatedQueue*> running_;
    std::optional<std::mt19937_64> shuffle_;
    std::uint64_t nextSequence_ = 0;
    std::uint64_t tasksRun_ = 0;
    bool stopped_ = false;
};
