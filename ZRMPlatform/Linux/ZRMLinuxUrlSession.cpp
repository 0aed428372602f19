#include "ZRMPlatform/Linux/ZRMLinuxUrlSession.h"

#include "ZRMPlatform/Linux/ZRMLinuxUrlLoader.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

class Session : public ZRMUrlSession {
  public:
    Session(const ZRMUrlSessionConfiguration& configuration,
            std::shared_ptr<const ZRMLinuxUrlTrust> trust, std::shared_ptr<ZRMQueue> deliveryQueue)
        : configuration_(configuration),
          trust_(std::move(trust)),
          deliveryQueue_(std::move(deliveryQueue)) {}
    ~Session() override { cancelJob(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void start(const ZRMUrlRequest& request, Completion completion) override {
        auto job = std::make_shared<ZRMLinuxUrlJob>();
        job->request = request;
        job->configuration = configuration_;
        job->trust = trust_;
        job->deliveryQueue = deliveryQueue_;
        job->completion = std::move(completion);
        {
            const ZRMLockGuard lock(mutex_);
            job->isCancelled = isInvalid_;
            job_ = job;
        }
        ZRMLinuxUrlLoader::shared().start(std::move(job));
    }

    void invalidateAndCancel() override { cancelJob(); }

  private:
    void cancelJob() {
        std::shared_ptr<ZRMLinuxUrlJob> job;
        {
            const ZRMLockGuard lock(mutex_);
            isInvalid_ = true;
            job.swap(job_);
        }
        if (job) {
            ZRMLinuxUrlLoader::shared().cancel(std::move(job));
        }
    }

    const ZRMUrlSessionConfiguration configuration_;
    const std::shared_ptr<const ZRMLinuxUrlTrust> trust_;
    const std::shared_ptr<ZRMQueue> deliveryQueue_;
    ZRMMutex mutex_;
    bool isInvalid_ ZRM_GUARDED_BY(mutex_) = false;
    std::shared_ptr<ZRMLinuxUrlJob> job_ ZRM_GUARDED_BY(mutex_);
};

// As libcurl takes them: connect to this address instead, for every transfer on its own, so that
// factories with other overrides are not touched.
ZRMLinuxCurlList connectToList(const std::vector<ZRMLinuxResolveOverride>& overrides) {
    ZRMLinuxCurlList list(nullptr, &curl_slist_free_all);
    for (const auto& entry : overrides) {
        const bool isV6 = entry.address.find(':') != std::string::npos;
        const auto address = isV6 ? "[" + entry.address + "]" : entry.address;
        const auto line = entry.host + ":" + entry.port + ":" + address + ":" + entry.toPort;
        if (auto* const longer = curl_slist_append(list.get(), line.c_str())) {
            static_cast<void>(list.release());
            list.reset(longer);
        }
    }
    return list;
}

}  // namespace

ZRMLinuxUrlSessionFactory::ZRMLinuxUrlSessionFactory(
    std::shared_ptr<ZRMExecutor> executor, std::string certificateAuthorityFile,
    const std::vector<ZRMLinuxResolveOverride>& resolveOverrides,
    std::shared_ptr<const ZRMLinuxRoutes> routes)
    : executor_(std::move(executor)),
      trust_(std::make_shared<ZRMLinuxUrlTrust>(
          ZRMLinuxUrlTrust{certificateAuthorityFile.empty()
                               ? zrm_systemAuthorities()
                               : ZRMLinuxAuthorities{std::move(certificateAuthorityFile), {}},
                           connectToList(resolveOverrides), std::move(routes)})) {}

std::shared_ptr<ZRMUrlSession> ZRMLinuxUrlSessionFactory::makeSession(
    const ZRMUrlSessionConfiguration& configuration) {
    return std::make_shared<Session>(configuration, trust_,
                                     executor_->concurrentQueue(ZRMQualityOfService::Default));
}
