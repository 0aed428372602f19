// Queues and retrying requests on the real executor, from many threads at once. The thread
// sanitizer is the second reader of these tests.
#include <latch>
#include <random>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"

namespace {

constexpr int kThreads = 8;

void onEachThread(const std::function<void(int thread)>& work) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&work, thread] { work(thread); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

void countDownWhenFinished(ZRMOperation& operation, std::latch& latch) {
    operation.addChangeObserver([&latch](const std::string& key, bool isPrior) {
        if (key == "isFinished" && !isPrior) {
            latch.count_down();
        }
    });
}

class ZRMOperationsStressTest : public testing::Test {
  protected:
    const std::shared_ptr<const ZRMPlatform> linux_ = zrm_makeLinuxPlatform({});
};

TEST_F(ZRMOperationsStressTest, EveryOperationRunsOnceAndNeverMoreThanTheLimitAtATime) {
    constexpr int kEach = 400;
    for (const int limit : {1, 4, ZRMOperationQueue::kUnlimited}) {
        ZRMOperationQueue queue(linux_->executor, "stress.queue", limit);
        std::vector<std::atomic<int>> runs(kThreads * kEach);
        std::atomic<int> running = 0;
        std::atomic<int> mostRunning = 0;
        std::latch finished(kThreads * kEach);
        onEachThread([&](int thread) {
            std::shared_ptr<ZRMOperation> previous;
            for (int index = 0; index < kEach; ++index) {
                auto operation = ZRMBlockOperation::blockOperationWithBlock([&, thread, index] {
                    const int now = ++running;
                    for (int most = mostRunning; most < now;) {
                        mostRunning.compare_exchange_weak(most, now);
                    }
                    ++runs[static_cast<std::size_t>(thread * kEach + index)];
                    --running;
                });
                countDownWhenFinished(*operation, finished);
                if (previous && index % 3 == 0) {
                    operation->addDependency(previous);
                }
                queue.addOperation(operation);
                queue.setSuspended(index % 5 == 0);
                previous = std::move(operation);
            }
        });
        queue.setSuspended(false);
        finished.wait();
        EXPECT_THAT(runs, testing::Each(testing::ResultOf(
                              [](const std::atomic<int>& count) { return count.load(); }, 1)));
        if (limit > 0) {
            EXPECT_LE(mostRunning, limit);
        }
    }
}

TEST_F(ZRMOperationsStressTest, ASerialQueueNeedsNoLockForWhatItsOperationsShare) {
    constexpr int kEach = 1000;
    ZRMOperationQueue queue(linux_->executor, "stress.queue", 1);
    int shared = 0;
    std::latch finished(1);
    onEachThread([&](int) {
        for (int index = 0; index < kEach; ++index) {
            queue.addOperationWithBlock([&] { ++shared; });
        }
    });
    queue.addOperationWithBlock([&] { finished.count_down(); });
    finished.wait();
    EXPECT_EQ(shared, kThreads * kEach);
}

TEST_F(ZRMOperationsStressTest, CancelledOperationsFinishWhoeverCancelsThemWhenever) {
    constexpr int kEach = 300;
    auto queue = std::make_unique<ZRMOperationQueue>(linux_->executor, "stress.queue", 3);
    std::latch finished(kThreads * kEach);
    onEachThread([&](int thread) {
        for (int index = 0; index < kEach; ++index) {
            const auto operation = ZRMBlockOperation::blockOperationWithBlock([] {});
            countDownWhenFinished(*operation, finished);
            queue->addOperation(operation);
            if (index % 2 == 0) {
                operation->cancel();
            }
            if (index % 100 == thread) {
                queue->cancelAllOperations();
            }
        }
    });
    queue.reset();
    finished.wait();
}

// Answers the first two attempts of a URL with 503 and the third with 200, on the concurrent queue,
// unless it is cancelled before.
class AnsweringSessions final : public ZRMUrlSessionFactory,
                                public std::enable_shared_from_this<AnsweringSessions> {
  public:
    explicit AnsweringSessions(std::shared_ptr<ZRMQueue> queue) : queue_(std::move(queue)) {}

    std::shared_ptr<ZRMUrlSession> makeSession(const ZRMUrlSessionConfiguration&) override {
        return std::make_shared<Session>(shared_from_this());
    }

    void watch(const std::string& url, const std::shared_ptr<ZRMOperation>& operation) {
        const std::lock_guard lock(mutex_);
        operations_[url] = operation;
    }

    std::atomic<int> startsOfFinished = 0;

  private:
    class Session final : public ZRMUrlSession {
      public:
        explicit Session(std::shared_ptr<AnsweringSessions> sessions)
            : sessions_(std::move(sessions)) {}
        ~Session() override { invalidateAndCancel(); }

        void start(const ZRMUrlRequest& request, Completion completion) override {
            ZRMUrlExchange exchange;
            exchange.response.emplace();
            exchange.response->statusCode = sessions_->statusOfNextAttempt(request.url);
            *completion_ = std::move(completion);
            post(std::move(exchange));
        }
        void invalidateAndCancel() override {
            ZRMUrlExchange exchange;
            exchange.error.emplace(kZRMUrlErrorDomain, ZRMUrlErrorCancelled);
            post(std::move(exchange));
        }

      private:
        // The first outcome counts.
        void post(ZRMUrlExchange exchange) {
            sessions_->queue_->post(
                [done = done_, completion = completion_, exchange = std::move(exchange)] {
                    if (!done->exchange(true) && *completion) {
                        (*completion)(exchange);
                        *completion = nullptr;
                    }
                });
        }

        const std::shared_ptr<AnsweringSessions> sessions_;
        const std::shared_ptr<std::atomic<bool>> done_ = std::make_shared<std::atomic<bool>>(false);
        const std::shared_ptr<Completion> completion_ = std::make_shared<Completion>();
    };

    int statusOfNextAttempt(const std::string& url) {
        std::shared_ptr<ZRMOperation> operation;
        const std::lock_guard lock(mutex_);
        operation = operations_[url].lock();
        startsOfFinished += operation && operation->isFinished() ? 1 : 0;
        return ++attempts_[url] < 3 ? 503 : 200;
    }

    const std::shared_ptr<ZRMQueue> queue_;
    std::mutex mutex_;
    std::map<std::string, int> attempts_;
    std::map<std::string, std::weak_ptr<ZRMOperation>> operations_;
};

TEST_F(ZRMOperationsStressTest, RetryingRequestsFinishWhileTheQueueIsSuspendedAndTheyAreCancelled) {
    constexpr int kEach = 40;
    constexpr double kMinSeconds = 0.0005;
    const auto sessions = std::make_shared<AnsweringSessions>(
        linux_->executor->concurrentQueue(ZRMQualityOfService::Default));
    const auto platform = std::make_shared<ZRMPlatform>(*linux_);
    platform->urlSessions = sessions;
    auto queue = std::make_unique<ZRMOperationQueue>(platform->executor, "stress.queue", 4);
    std::latch finished(kThreads * kEach);
    std::atomic<int> answered = 0;
    onEachThread([&](int thread) {
        std::minstd_rand random(static_cast<unsigned>(thread + 1));
        std::vector<std::weak_ptr<ZRMOperation>> mine;
        for (int index = 0; index < kEach; ++index) {
            ZRMUrlRequest request;
            request.url = "https://" + std::to_string(thread) + "/" + std::to_string(index);
            const auto operation =
                std::make_shared<ZRMUrlRequestOperation>(platform, request, true, kMinSeconds, 1.0);
            sessions->watch(request.url, operation);
            const auto completion =
                ZRMBlockOperation::blockOperationWithBlock([&answered, operation] {
                    const auto response = operation->response();
                    answered += response && response->statusCode == 200 ? 1 : 0;
                });
            completion->addDependency(operation);
            countDownWhenFinished(*completion, finished);
            mine.push_back(operation);
            queue->addOperations({operation, completion});
            queue->setSuspended(random() % 4 == 0);
            if (const auto other = mine[random() % mine.size()].lock(); other && index % 2 == 0) {
                other->cancel();
            }
            // Dropped while it executes, with no queue that holds it.
            request.url = "https://dropped";
            const auto dropped =
                std::make_shared<ZRMUrlRequestOperation>(platform, request, true, kMinSeconds, 1.0);
            dropped->start();
        }
    });
    queue->setSuspended(false);
    finished.wait();
    EXPECT_GT(answered, 0);
    EXPECT_EQ(sessions->startsOfFinished, 0);
}

}  // namespace
