// Asks responders and lists about the certificates of one path.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "ZRMPlatform/Linux/ZRMLinuxOcsp.h"
#include "ZRMPlatform/Linux/ZRMLinuxRevocationCache.h"
#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"

// One question after the other: for each certificate below the anchor the kept answer, else its
// responders, else its lists, until one answers. A question waits ten seconds at most, all of them
// thirty. Whoever starts a check keeps it until it has ended; dropped before, it ends the exchange
// under way and says nothing.
class ZRMLinuxRevocationCheck : public std::enable_shared_from_this<ZRMLinuxRevocationCheck> {
  public:
    static constexpr double kSecondsPerQuestion = 10;
    static constexpr double kSecondsAltogether = 30;

    // Told once: the place in the path of a certificate that was revoked, or nothing.
    using Completion = std::function<void(std::optional<std::size_t> revoked)>;

    // `methods` are bits of ZRMTrustRevocationMethods.
    ZRMLinuxRevocationCheck(std::shared_ptr<ZRMClock> clock,
                            std::shared_ptr<ZRMUrlSessionFactory> urlSessions,
                            std::shared_ptr<ZRMLinuxRevocationCache> cache,
                            std::vector<ZRMLinuxX509> path, std::uint32_t methods);

    // Once. May complete before it returns.
    void start(Completion completion);

  private:
    struct Question {
        std::string url;
        bool isOcsp;
    };

    // Goes on with the next certificate or question; one step at a time, each begun by the end of
    // the one before.
    void proceed();
    void prepareQuestions();
    void ask(const Question& question);
    void answered(const ZRMUrlExchange& exchange,
                  const std::shared_ptr<ZRMLinuxOcspQuestion>& ocsp);
    // Whether the answer settles the certificate.
    bool settle(const ZRMLinuxRevocationAnswer& answer);
    void complete(std::optional<std::size_t> revoked);

    const std::shared_ptr<ZRMClock> clock_;
    const std::shared_ptr<ZRMUrlSessionFactory> urlSessions_;
    const std::shared_ptr<ZRMLinuxRevocationCache> cache_;
    const std::vector<ZRMLinuxX509> path_;
    const std::uint32_t methods_;
    double endUptimeSeconds_ = 0;
    Completion completion_;
    std::size_t index_ = 0;
    bool isPrepared_ = false;  // whether the questions are those about the certificate at index_
    std::deque<Question> questions_;
    std::shared_ptr<ZRMUrlSession> session_;
};
