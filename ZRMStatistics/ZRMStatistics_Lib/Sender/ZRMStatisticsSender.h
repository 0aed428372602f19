// Uploads events to the statistics endpoint, one a request.
#pragma once

#include <memory>

#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSenderObserver.h"

// May be used from any thread.
class ZRMStatisticsSender {
  public:
    virtual ~ZRMStatisticsSender() = default;

    // Uploads start in the order of the calls. Data whose upload is under way or was answered is
    // not sent again. The bytes are read when the upload's turn comes; where that fails, the data
    // is left for a later start, with a log line.
    virtual void sendStatisticsData(const std::shared_ptr<ZRMStatisticsData>& data) = 0;

    // Kept weakly. Not from inside a notification.
    virtual void addObserver(const std::shared_ptr<ZRMStatisticsSenderObserver>& observer) = 0;
    virtual void removeObserver(const ZRMStatisticsSenderObserver* observer) = 0;
};
