// The sender: at most four uploads at a time, none begun while the server cannot be reached.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Observers/ZRMObserversCollection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Reachability/ZRMReachabilityInspector.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSender.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsCustomHeadersProvider.h"

// Headers are those of the moment of sendStatisticsData(). Only the uploads next in line are
// operations that hold their bytes; those behind them wait as a few words each, however many.
class ZRMStatisticsSenderImpl final : public ZRMStatisticsSender,
                                      public ZRMReachabilityInspectorObserver,
                                      public std::enable_shared_from_this<ZRMStatisticsSenderImpl> {
  public:
    static constexpr int kMaxUploads = 4;

    // The headers provider is kept weakly and may be absent. Follows the reachability of the
    // address's host, on the main run loop; where that host is out of reach, waits from the start.
    static std::shared_ptr<ZRMStatisticsSenderImpl> create(
        std::shared_ptr<const ZRMPlatform> platform, const std::string& url,
        const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);

    void sendStatisticsData(const std::shared_ptr<ZRMStatisticsData>& data) override;
    void addObserver(const std::shared_ptr<ZRMStatisticsSenderObserver>& observer) override;
    void removeObserver(const ZRMStatisticsSenderObserver* observer) override;

    [[nodiscard]] const ZRMOperationQueue& queue() const { return queue_; }

  private:
    using Headers = std::map<std::string, std::string>;

    struct Upload {
        std::shared_ptr<ZRMStatisticsData> data;
        std::int64_t serverTimeMilliseconds = 0;
        std::shared_ptr<const Headers> customHeaders;
    };

    ZRMStatisticsSenderImpl(
        std::shared_ptr<const ZRMPlatform> platform, const std::string& url,
        const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);

    void followReachability();
    void inspector(ZRMReachabilityInspector& inspector, ZRMNetworkStatus didChangeStatus) override;

    std::shared_ptr<const Headers> currentCustomHeaders();
    // Of uploads that are ready, with their bytes in memory, `limit` and no more.
    void fillQueue(std::size_t limit);
    // Absent at the end of the filling.
    [[nodiscard]] std::optional<Upload> takeNext(std::size_t limit);
    [[nodiscard]] bool isNextReady(std::size_t limit) const ZRM_REQUIRES(mutex_);
    void letGo(const ZRMStatisticsData& data) ZRM_REQUIRES(mutex_);
    bool enqueue(const Upload& upload);
    void completeUpload(const ZRMUrlRequestOperation& operation,
                        const std::shared_ptr<ZRMStatisticsData>& data);

    const std::shared_ptr<const ZRMPlatform> platform_;
    const std::string url_;
    const std::weak_ptr<ZRMStatisticsCustomHeadersProvider> customHeadersProvider_;
    const std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    std::shared_ptr<ZRMReachabilityInspector> reachabilityInspector_;
    ZRMObserversCollection<ZRMStatisticsSenderObserver> observers_;
    ZRMOperationQueue queue_;

    ZRMMutex mutex_;
    std::deque<Upload> waiting_ ZRM_GUARDED_BY(mutex_);
    std::size_t enqueued_ ZRM_GUARDED_BY(mutex_) = 0;
    std::size_t enqueuedBytes_ ZRM_GUARDED_BY(mutex_) = 0;
    bool isFilling_ ZRM_GUARDED_BY(mutex_) = false;
    std::shared_ptr<const Headers> lastCustomHeaders_ ZRM_GUARDED_BY(mutex_);
};
