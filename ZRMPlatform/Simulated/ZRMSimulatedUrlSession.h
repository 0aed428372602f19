// URL sessions over the simulated network.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/ZRMUrlSession.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedNetwork.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedQueue.h"

// Time-outs are those of the session's configuration (ZRMSimulatedTransfer). A session that was
// invalidated before its start answers ZRMUrlErrorCancelled.
class ZRMSimulatedUrlSession final : public ZRMUrlSession {
  public:
    class Exchange;

    ZRMSimulatedUrlSession(std::shared_ptr<ZRMSimulatedNetwork> network,
                           std::shared_ptr<ZRMSimulatedProcess> process,
                           std::shared_ptr<ZRMSimulatedQueue> queue,
                           const ZRMUrlSessionConfiguration& configuration);
    ~ZRMSimulatedUrlSession() override;

    void start(const ZRMUrlRequest& request, Completion completion) override;
    void invalidateAndCancel() override;

  private:
    ZRMSimulatedAnswer answerTo(const ZRMUrlRequest& request);

    std::shared_ptr<ZRMSimulatedNetwork> network_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMSimulatedQueue> queue_;
    ZRMUrlSessionConfiguration configuration_;
    bool isInvalidated_ = false;
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
