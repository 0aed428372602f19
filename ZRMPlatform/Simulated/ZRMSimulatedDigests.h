// Real digests that can be made to fail.
#pragma once

#include <memory>
#include <optional>
#include <set>

#include "ZRMPlatform/Ports/ZRMDigests.h"

class ZRMSimulatedDigests final : public ZRMDigests {
  public:
    std::unique_ptr<ZRMDigestContext> makeContext(ZRMDigestAlgorithm algorithm) override;

    // The algorithm is not to be had, as MD5 in a hardened library.
    void setAvailable(ZRMDigestAlgorithm algorithm, bool available);
    // While set, every finish() answers absent.
    void setFinishFails(bool fails) { *finishFails_ = fails; }

  private:
    std::set<ZRMDigestAlgorithm> missing_;
    std::shared_ptr<bool> finishFails_ = std::make_shared<bool>(false);
};
