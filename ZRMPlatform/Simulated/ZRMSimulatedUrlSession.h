// URL sessions over the simulated network.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/ZRMUrlSession.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedNetwork.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedQueue.h"

class ZRMSimulatedUrlSession final : public ZRMUrlSession {
  public:
    class Exchange;

    ZRMSimulatedUrlSession(std::shared_ptr<ZRMSimulatedNetwork> network,
                           std::shared_ptr<ZRMSimulatedProcess> process,
                           std::shared_ptr<ZRMSimulatedQueue> queue,
                           const ZRMUrlSessionConfiguration& configuration);
    ~ZRMSimulatedUrlSession() override;

    // The shortest of the session's request time-out, its resource time-out and the request's own
    // time-out bounds the wait for the headers; the resource time-out bounds the whole.
    void start(const ZRMUrlRequest& request, Completion completion) override;
    void invalidateAndCancel() override;

  private:
    std::shared_ptr<ZRMSimulatedNetwork> network_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMSimulatedQueue> queue_;
    ZRMUrlSessionConfiguration configuration_;
    std::shared_ptr<Exchange> exchange_;
};

// Completions run on one concurrent queue of its own.
class ZRMSimulatedUrlSessionFactory final : public ZRMUrlSessionFactory {
  public:
    ZRMSimulatedUrlSessionFactory(std::shared_ptr<ZRMSimulatedNetwork> network,
                                  std::shared_ptr<ZRMSimulatedProcess> process);

    std::shared_ptr<ZRMUrlSession> makeSession(
        const ZRMUrlSessionConfiguration& configuration) override;

  private:
    std::shared_ptr<ZRMSimulatedNetwork> network_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMSimulatedQueue> queue_;
};
