// Trust over OpenSSL.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Ports/ZRMTrust.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"

// Works over whatever executor, clock and network it is given. Answers about revocation are kept in
// memory as long as they hold. A chain or a set of anchors with more than 64 elements is not
// trusted. Dropped while an evaluation waits for the network, it calls no completion any more.
class ZRMLinuxTrust final : public ZRMTrust {
  public:
    static constexpr std::size_t kMaximumCertificates = 64;

    ZRMLinuxTrust(std::shared_ptr<ZRMExecutor> executor, std::shared_ptr<ZRMClock> clock,
                  std::shared_ptr<ZRMUrlSessionFactory> urlSessions);
    ~ZRMLinuxTrust() override;
    ZRMLinuxTrust(const ZRMLinuxTrust&) = delete;
    ZRMLinuxTrust& operator=(const ZRMLinuxTrust&) = delete;

    void evaluate(ZRMTrustRequest request, Completion completion) override;

  private:
    class Evaluations;
    const std::shared_ptr<Evaluations> evaluations_;
};
