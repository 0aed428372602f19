// The statistics service over a store on the simulated disk.
#pragma once

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceImpl.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMRecordedSender.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMTestEvent.h"

// Its sender only records.
class ZRMStatisticsServiceFixture : public ZRMStatisticsDeviceTest {
  protected:
    static constexpr double kDay = 86400;

    void makeService(std::int64_t maxStorageSize = kZRMStatisticsMaxStorageSize) {
        service_.reset();
        storage_ = openStorage();
        service_ = std::make_shared<ZRMStatisticsServiceImpl>(device_.platform(), storage_, sender_,
                                                              time_, maxStorageSize);
    }
    void makeServiceWithoutStorage() {
        service_ =
            std::make_shared<ZRMStatisticsServiceImpl>(device_.platform(), nullptr, sender_, time_);
    }
    void start() {
        makeService();
        service_->start();
    }
    void send(const std::string& name, std::int16_t priority = 1) {
        service_->send(ZRMTestEvent(name), priority);
    }
    void sendAndStore(const std::string& name, std::int16_t priority = 1) {
        send(name, priority);
        device_.runUntilIdle();
    }
    ZRMStatisticEntity putRecord(std::string_view bytes, double ageSeconds,
                                 std::int16_t priority = 1, std::int16_t activeDays = 1) {
        return insert(*openContext(), bytes, device_.now().secondsSince1970 - ageSeconds, priority,
                      activeDays);
    }
    [[nodiscard]] std::size_t storedCount() { return records(*storage_->context()).size(); }

    std::shared_ptr<ZRMServerTimeProvider> time_ = unknownServerTime();
    std::shared_ptr<ZRMRecordedSender> sender_ = std::make_shared<ZRMRecordedSender>();
    std::shared_ptr<ZRMStatisticsStorage> storage_;
    std::shared_ptr<ZRMStatisticsServiceImpl> service_;
};
