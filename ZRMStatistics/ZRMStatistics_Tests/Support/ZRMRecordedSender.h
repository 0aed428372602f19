// A sender that keeps what it is given until a test says how the upload ends.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSender.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMTestEvent.h"

class ZRMRecordedSender final : public ZRMStatisticsSender {
  public:
    using Data = std::shared_ptr<ZRMStatisticsData>;

    void sendStatisticsData(const Data& data) override {
        if (data->beginUpload()) {
            sent_.push_back(data);
        }
    }
    void addObserver(const std::shared_ptr<ZRMStatisticsSenderObserver>& observer) override {
        observers_.push_back(observer.get());
    }
    void removeObserver(const ZRMStatisticsSenderObserver* observer) override {
        std::erase(observers_, observer);
    }

    // What was handed over and has not ended, in its order.
    [[nodiscard]] const std::vector<Data>& sent() const { return sent_; }
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> found;
        for (const auto& data : sent_) {
            found.push_back(zrm_textFromData(*data->bytes()));
        }
        return found;
    }
    // The names of the test events among it; "" for other bytes.
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& data : sent_) {
            const auto bytes = data->bytes();
            const bool isEvent = bytes->size() > 2 && (*bytes)[0] == 0x1f;
            found.push_back(isEvent ? zrm_testEventName(*bytes) : "");
        }
        return found;
    }
    [[nodiscard]] std::size_t observerCount() const { return observers_.size(); }

    void answer(std::size_t index) {
        const auto data = take(index);
        for (auto* observer : std::vector(observers_)) {
            observer->statisticsSenderDidSendData(*this, data);
        }
    }
    void fail(std::size_t index, const ZRMError& error) {
        const auto data = take(index);
        data->abandonUpload();
        for (auto* observer : std::vector(observers_)) {
            observer->statisticsSenderDidFailToSendData(*this, data, error);
        }
    }

  private:
    Data take(std::size_t index) {
        auto data = sent_.at(index);
        sent_.erase(sent_.begin() + static_cast<std::ptrdiff_t>(index));
        return data;
    }

    std::vector<Data> sent_;
    std::vector<ZRMStatisticsSenderObserver*> observers_;
};
