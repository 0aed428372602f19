// A loop that carries timers and other sources on one serial queue.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMExecutor.h"

// Work on a run loop never overlaps. A run loop costs no thread: it is a serial queue of the
// executor with an end. May be used from any thread.
class ZRMRunLoop {
  public:
    // The loop whose work the caller runs in; the main loop where there is none.
    static std::shared_ptr<ZRMRunLoop> currentRunLoop(const std::shared_ptr<ZRMExecutor>& executor);
    static std::shared_ptr<ZRMRunLoop> mainRunLoop(const std::shared_ptr<ZRMExecutor>& executor);

    explicit ZRMRunLoop(std::shared_ptr<ZRMQueue> queue);

    [[nodiscard]] const std::shared_ptr<ZRMQueue>& queue() const { return queue_; }

  private:
    std::shared_ptr<ZRMQueue> queue_;
};
