// Learns how uploads end.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsData.h"

class ZRMStatisticsSender;

// Called on the sender's queue, once for each upload.
class ZRMStatisticsSenderObserver {
  public:
    virtual ~ZRMStatisticsSenderObserver() = default;
    // The server answered, with whatever status.
    virtual void statisticsSenderDidSendData(ZRMStatisticsSender& sender,
                                             const std::shared_ptr<ZRMStatisticsData>& data) = 0;
    virtual void statisticsSenderDidFailToSendData(ZRMStatisticsSender& sender,
                                                   const std::shared_ptr<ZRMStatisticsData>& data,
                                                   const ZRMError& error) = 0;
};
