#include <atomic>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include <gmock/gmock.h>

#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestWaiting.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsPipeline.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMTestEvent.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kMaxWaiting = ZRMStatisticsPipeline::kMaxWaiting;

// A queue whose tasks run when the test says so.
class HeldQueue final : public ZRMQueue {
  public:
    [[nodiscard]] const std::string& label() const override { return label_; }
    void post(ZRMTask task) override { tasks_.push_back(std::move(task)); }
    std::shared_ptr<ZRMTimerHandle> postAfter(double /*seconds*/, ZRMTask /*task*/) override {
        return nullptr;
    }
    std::shared_ptr<ZRMTimerHandle> postEvery(double /*seconds*/, ZRMTask /*task*/) override {
        return nullptr;
    }
    [[nodiscard]] bool isCurrent() const override { return false; }

    [[nodiscard]] std::size_t taskCount() const { return tasks_.size(); }
    void runOne() {
        const auto task = std::move(tasks_.front());
        tasks_.pop_front();
        task();
    }
    void dropAll() { tasks_.clear(); }
    void runAll() {
        while (!tasks_.empty()) {
            runOne();
        }
    }

  private:
    std::string label_ = "held";
    std::deque<ZRMTask> tasks_;
};

std::shared_ptr<const ZRMStatisticsEvent> eventOf(int number) {
    return std::make_shared<ZRMTestEvent>(ZRMDictionary{{"number", number}});
}

int numberOf(const ZRMStatisticsEvent& event) {
    return static_cast<int>(event.parameters().at("number").as_int64());
}

class ZRMStatisticsPipelineTest : public ZRMStatisticsDeviceTest {
  protected:
    // A task that was not run holds the pipeline, which holds the queue.
    ~ZRMStatisticsPipelineTest() override { queue_->dropAll(); }

    void put(int number) { pipeline_->put(eventOf(number), static_cast<std::int16_t>(number % 3)); }
    void putUpTo(int end) {
        for (; next_ < end; ++next_) {
            put(next_);
        }
    }
    ZRMSharedData encode(const ZRMStatisticsEvent& event) {
        const auto number = numberOf(event);
        encoded_.push_back(number);
        if (whileEncoding_) {
            whileEncoding_(number);
        }
        return zrm_sharedData(std::to_string(number));
    }
    static std::vector<int> numbersUpTo(int end) {
        std::vector<int> numbers;
        for (int number = 0; number < end; ++number) {
            numbers.push_back(number);
        }
        return numbers;
    }

    std::shared_ptr<HeldQueue> queue_ = std::make_shared<HeldQueue>();
    std::vector<int> encoded_;
    std::vector<int> delivered_;  // -1 for an event that was dropped
    std::size_t deliveries_ = 0;
    std::function<void(int number)> whileEncoding_;
    int next_ = 0;
    std::shared_ptr<ZRMStatisticsPipeline> pipeline_ = std::make_shared<ZRMStatisticsPipeline>(
        queue_, [this](const ZRMStatisticsEvent& event) { return encode(event); },
        [this](const std::vector<ZRMStatisticsPipeline::Encoded>& events) {
            ++deliveries_;
            for (const auto& [body, priority] : events) {
                const int number = body ? std::stoi(zrm_textFromData(*body)) : -1;
                EXPECT_TRUE(number < 0 || priority == number % 3);
                delivered_.push_back(number);
            }
        });
};

}  // namespace

TEST_F(ZRMStatisticsPipelineTest, HandsEventsOnInTheOrderOfTheirReports) {
    putUpTo(10);
    queue_->runAll();
    EXPECT_EQ(delivered_, numbersUpTo(10));
    EXPECT_EQ(encoded_, numbersUpTo(10));
}

TEST_F(ZRMStatisticsPipelineTest, ReportersEncodeNothingWhileFewWait) {
    putUpTo(kMaxWaiting);
    EXPECT_THAT(encoded_, IsEmpty());
    EXPECT_THAT(delivered_, IsEmpty());
}

TEST_F(ZRMStatisticsPipelineTest, ReporterBeyondTheBoundEncodesWhatHasWaitedLongest) {
    putUpTo(kMaxWaiting + 1);
    EXPECT_THAT(encoded_, ElementsAre(0));
    putUpTo(kMaxWaiting + 3);
    EXPECT_THAT(encoded_, ElementsAre(0, 1, 2));
    // Handing on is left to the queue.
    EXPECT_THAT(delivered_, IsEmpty());
}

TEST_F(ZRMStatisticsPipelineTest, OrderIsKeptWhereReportersHelp) {
    putUpTo(10 * kMaxWaiting);
    queue_->runAll();
    EXPECT_EQ(delivered_, numbersUpTo(10 * kMaxWaiting));
}

TEST_F(ZRMStatisticsPipelineTest, ManyReportsCostOneTask) {
    putUpTo(1);
    EXPECT_EQ(queue_->taskCount(), 1U);
    putUpTo(3 * kMaxWaiting);
    EXPECT_EQ(queue_->taskCount(), 1U);
    queue_->runAll();
    putUpTo(3 * kMaxWaiting + 1);
    EXPECT_EQ(queue_->taskCount(), 1U);
}

TEST_F(ZRMStatisticsPipelineTest, EventsThatWaitAreHandedOnTogetherAndATaskEndsAfterABatch) {
    putUpTo(kMaxWaiting);
    queue_->runOne();
    EXPECT_EQ(deliveries_, 1U);
    EXPECT_EQ(delivered_.size(),
              std::min(ZRMStatisticsPipeline::kMaxBatch, std::size_t{kMaxWaiting}));
    putUpTo(2 * kMaxWaiting);
    queue_->runOne();
    EXPECT_EQ(delivered_.size(), 2 * ZRMStatisticsPipeline::kMaxBatch);
    queue_->runAll();
    EXPECT_EQ(delivered_, numbersUpTo(2 * kMaxWaiting));
}

TEST_F(ZRMStatisticsPipelineTest, WhatIsReportedWhileTheTaskEncodesIsEncodedToo) {
    whileEncoding_ = [this](int number) {
        if (number == 0) {
            putUpTo(3);
        }
    };
    putUpTo(1);
    queue_->runAll();
    EXPECT_EQ(delivered_, numbersUpTo(3));
}

TEST_F(ZRMStatisticsPipelineTest, EventThatAReporterStillEncodesHoldsBackThoseBehindIt) {
    whileEncoding_ = [this](int number) {
        if (number == 0) {
            queue_->runAll();
            EXPECT_THAT(delivered_, IsEmpty());
            EXPECT_EQ(encoded_.size(), std::size_t{kMaxWaiting} + 1);
        }
    };
    putUpTo(kMaxWaiting + 1);
    // The reporter was last to encode, and nobody else would hand on what it encoded.
    EXPECT_EQ(queue_->taskCount(), 1U);
    queue_->runAll();
    EXPECT_EQ(delivered_, numbersUpTo(kMaxWaiting + 1));
}

TEST_F(ZRMStatisticsPipelineTest, EventThatCannotBeEncodedIsHandedOnAsDroppedInItsTurn) {
    pipeline_ = std::make_shared<ZRMStatisticsPipeline>(
        queue_,
        [this](const ZRMStatisticsEvent& event) {
            return numberOf(event) == 1 ? nullptr : encode(event);
        },
        [this](const std::vector<ZRMStatisticsPipeline::Encoded>& events) {
            for (const auto& event : events) {
                delivered_.push_back(event.body ? 1 : -1);
            }
        });
    putUpTo(3);
    queue_->runAll();
    EXPECT_THAT(delivered_, ElementsAre(1, -1, 1));
}

TEST_F(ZRMStatisticsPipelineTest, ExceptionWhileEncodingDropsThatEventWithALogLine) {
    whileEncoding_ = [](int number) {
        if (number == 1) {
            throw std::runtime_error("no room");
        }
    };
    putUpTo(3);
    queue_->runAll();
    EXPECT_THAT(delivered_, ElementsAre(0, -1, 2));
    EXPECT_THAT(errors(), ElementsAre("An event cannot be encoded: no room"));
}

TEST_F(ZRMStatisticsPipelineTest, ExceptionOfAnotherEventDoesNotReachTheReporterThatHelps) {
    whileEncoding_ = [](int number) {
        if (number == 0) {
            throw std::runtime_error("no room");
        }
    };
    EXPECT_NO_THROW(putUpTo(kMaxWaiting + 1));
    queue_->runAll();
    EXPECT_EQ(delivered_.size(), std::size_t{kMaxWaiting} + 1);
    EXPECT_EQ(delivered_.front(), -1);
}

TEST_F(ZRMStatisticsPipelineTest, QueueEncodesNothingWhileWhatWasHandedOnPilesUp) {
    ZRMTask goOn;
    bool isPiledUp = false;
    pipeline_ = std::make_shared<ZRMStatisticsPipeline>(
        queue_, [this](const ZRMStatisticsEvent& event) { return encode(event); },
        [this](const std::vector<ZRMStatisticsPipeline::Encoded>& events) {
            delivered_.insert(delivered_.end(), events.size(), 1);
        },
        [&](ZRMTask task) {
            goOn = isPiledUp ? std::move(task) : nullptr;
            return isPiledUp;
        });
    isPiledUp = true;
    putUpTo(kMaxWaiting + 4);
    queue_->runAll();
    // Four were encoded by their reporters and handed on.
    EXPECT_EQ(encoded_, numbersUpTo(4));
    EXPECT_EQ(delivered_.size(), 4U);
    putUpTo(kMaxWaiting + 6);
    EXPECT_EQ(queue_->taskCount(), 0U);
    EXPECT_EQ(encoded_, numbersUpTo(6));
    isPiledUp = false;
    std::exchange(goOn, nullptr)();
    queue_->runAll();
    EXPECT_EQ(encoded_, numbersUpTo(kMaxWaiting + 6));
    EXPECT_EQ(delivered_.size(), std::size_t{kMaxWaiting} + 6);
}

TEST_F(ZRMStatisticsPipelineTest, WhatWasPutIsHandedOnAfterTheOwnerLetGo) {
    putUpTo(kMaxWaiting + 5);
    pipeline_.reset();
    queue_->runAll();
    EXPECT_EQ(delivered_, numbersUpTo(kMaxWaiting + 5));
}

TEST_F(ZRMStatisticsPipelineTest, ThreadsThatReportAtOnceKeepEachItsOrder) {
    constexpr int kThreads = 4;
    constexpr int kEvents = 500;
    ZRMAwaited<std::vector<int>> delivered;
    std::atomic<int> deliveriesUnderWay{0};
    const auto pipeline = std::make_shared<ZRMStatisticsPipeline>(
        ZRMLinuxExecutor().makeSerialQueue("pipeline", ZRMQualityOfService::Default),
        [](const ZRMStatisticsEvent& event) {
            return zrm_sharedData(std::to_string(numberOf(event)));
        },
        [&](const std::vector<ZRMStatisticsPipeline::Encoded>& events) {
            EXPECT_EQ(++deliveriesUnderWay, 1);
            std::vector<int> numbers;
            for (const auto& event : events) {
                numbers.push_back(std::stoi(zrm_textFromData(*event.body)));
            }
            --deliveriesUnderWay;
            delivered.change(
                [&](auto& all) { all.insert(all.end(), numbers.begin(), numbers.end()); });
        });
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int number = 0; number < kEvents; ++number) {
                pipeline->put(eventOf(thread * kEvents + number), 1);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    ASSERT_TRUE(
        delivered.waitUntil([](const auto& all) { return all.size() == kThreads * kEvents; }));
    std::map<int, int> next;
    for (const int number : delivered.value()) {
        EXPECT_EQ(number % kEvents, next[number / kEvents]++);
    }
}
