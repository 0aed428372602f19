#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"

#include <map>
#include <set>
#include <span>
#include <utility>

#include <openssl/x509.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"
#include "ZRMPlatform/Linux/ZRMLinuxRevocationCheck.h"
#include "ZRMPlatform/Linux/ZRMLinuxRsaKeys.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrustPath.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

ZRMTrustEvaluation refusal(ZRMTrustResult result, std::string reason) {
    return {result, nullptr, std::move(reason)};
}

// Certificates of a request, each read once although it may stand among the anchors as well.
class Certificates {
  public:
    std::vector<ZRMLinuxX509> read(std::span<const ZRMData> encoded) {
        std::vector<ZRMLinuxX509> certificates;
        for (const auto& der : encoded) {
            const std::string_view bytes(reinterpret_cast<const char*>(der.data()), der.size());
            const auto [place, isNew] = known_.try_emplace(bytes);
            if (isNew) {
                place->second = zrm_x509FromDer(der);
            }
            if (place->second) {
                certificates.push_back(place->second);
            }
        }
        return certificates;
    }

  private:
    std::map<std::string_view, ZRMLinuxX509> known_;
};

// Absent when the request can be evaluated.
std::optional<ZRMTrustEvaluation> refusalOf(const ZRMTrustRequest& request) {
    if (request.certificates.size() > ZRMLinuxTrust::kMaximumCertificates ||
        request.anchors.size() > ZRMLinuxTrust::kMaximumCertificates) {
        return refusal(ZRMTrustResultRecoverableTrustFailure, "there are too many certificates");
    }
    if (request.certificates.empty()) {
        return refusal(ZRMTrustResultInvalid, "there is no certificate");
    }
    return std::nullopt;
}

}  // namespace

class ZRMLinuxTrust::Evaluations : public std::enable_shared_from_this<Evaluations> {
  public:
    Evaluations(std::shared_ptr<ZRMExecutor> executor, std::shared_ptr<ZRMClock> clock,
                std::shared_ptr<ZRMUrlSessionFactory> urlSessions)
        : executor_(std::move(executor)),
          clock_(std::move(clock)),
          urlSessions_(std::move(urlSessions)) {}

    void post(ZRMTrustRequest request, Completion completion) {
        executor_->concurrentQueue(ZRMQualityOfService::Default)
            ->post([self = shared_from_this(), request = std::move(request),
                    completion = std::move(completion)]() mutable {
                self->evaluate(request, std::move(completion));
            });
    }

  private:
    void evaluate(const ZRMTrustRequest& request, Completion completion) {
        const ZRMLinuxOpenSSLErrors errors;
        if (const auto refused = refusalOf(request)) {
            completion(*refused);
            return;
        }
        Certificates certificates;
        const std::span delivered(request.certificates);
        const auto leaf = certificates.read(delivered.first(1));
        if (leaf.empty()) {
            completion(refusal(ZRMTrustResultInvalid, "the leaf is no certificate"));
            return;
        }
        auto path = zrm_findTrustPath(leaf.front(), certificates.read(delivered.subspan(1)),
                                      certificates.read(request.anchors), clock_->now());
        if (path.certificates.empty()) {
            completion(refusal(ZRMTrustResultRecoverableTrustFailure, std::move(path.reason)));
            return;
        }
        checkRevocation(std::move(path.certificates), request.revocationMethods,
                        std::move(completion));
    }

    void checkRevocation(std::vector<ZRMLinuxX509> path, std::uint32_t methods,
                         Completion completion) {
        const auto leaf = path.front();
        const auto check = std::make_shared<ZRMLinuxRevocationCheck>(clock_, urlSessions_, cache_,
                                                                     std::move(path), methods);
        {
            const ZRMLockGuard lock(mutex_);
            running_.insert(check);
        }
        check->start([self = weak_from_this(), weakCheck = std::weak_ptr(check), leaf,
                      completion = std::move(completion)](std::optional<std::size_t> revoked) {
            if (const auto evaluations = self.lock()) {
                evaluations->forget(weakCheck.lock());
            }
            if (revoked) {
                completion(refusal(
                    ZRMTrustResultFatalTrustFailure,
                    "a certificate was revoked (certificate " + std::to_string(*revoked) + ")"));
                return;
            }
            completion(
                {ZRMTrustResultUnspecified, zrm_publicRsaKey(X509_get0_pubkey(leaf.get())), {}});
        });
    }

    void forget(const std::shared_ptr<ZRMLinuxRevocationCheck>& check) {
        const ZRMLockGuard lock(mutex_);
        running_.erase(check);
    }

    const std::shared_ptr<ZRMExecutor> executor_;
    const std::shared_ptr<ZRMClock> clock_;
    const std::shared_ptr<ZRMUrlSessionFactory> urlSessions_;
    const std::shared_ptr<ZRMLinuxRevocationCache> cache_ =
        std::make_shared<ZRMLinuxRevocationCache>();
    ZRMMutex mutex_;
    std::set<std::shared_ptr<ZRMLinuxRevocationCheck>> running_ ZRM_GUARDED_BY(mutex_);
};

ZRMLinuxTrust::ZRMLinuxTrust(std::shared_ptr<ZRMExecutor> executor, std::shared_ptr<ZRMClock> clock,
                             std::shared_ptr<ZRMUrlSessionFactory> urlSessions)
    : evaluations_(std::make_shared<Evaluations>(std::move(executor), std::move(clock),
                                                 std::move(urlSessions))) {}

ZRMLinuxTrust::~ZRMLinuxTrust() = default;

void ZRMLinuxTrust::evaluate(ZRMTrustRequest request, Completion completion) {
    evaluations_->post(std::move(request), std::move(completion));
}
