// A statistics service that keeps what it is given.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsService.h"

class ZRMRecordingStatisticsService final : public ZRMStatisticsService {
  public:
    struct Sent {
        ZRMDictionary parameters;
        std::int16_t priority;
    };

    void start() override { ++starts; }
    void stop() override {}
    void send(const ZRMStatisticsEvent& event, std::int16_t priority) override {
        sent.push_back({event.parameters(), priority});
    }
    void send(std::shared_ptr<const ZRMStatisticsEvent> event, std::int16_t priority) override {
        sent.push_back({event->parameters(), priority});
    }
    [[nodiscard]] std::size_t pendingEventCount() const override { return sent.size(); }
    [[nodiscard]] std::size_t unstoredEventCount() const override { return unstored; }

    int starts = 0;
    std::size_t unstored = 0;
    std::vector<Sent> sent;
};
