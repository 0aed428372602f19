#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMInternalServices.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMFakeInternalService.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMHandlerRecord.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

ZRMError error(int code) {
    return ZRMError::withDescription("test", code, "error " + std::to_string(code));
}

class ZRMInternalServicesTest : public testing::Test {
  protected:
    ZRMInternalServicesTest() {
        first_->running = true;
        second_->running = true;
    }

    [[nodiscard]] ZRMInternalServices services() const {
        return {device_.platform()->executor->mainQueue(), {first_, second_}};
    }
    void send() {
        services().sendEvent(ZRMMobileServiceEventType::UserLogout, std::nullopt, std::nullopt,
                             std::nullopt, record_.handler());
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::shared_ptr<ZRMFakeTaggedService> first_ = std::make_shared<ZRMFakeTaggedService>();
    std::shared_ptr<ZRMFakeTaggedService> second_ = std::make_shared<ZRMFakeTaggedService>();
    ZRMHandlerRecord record_;
};

}  // namespace

TEST_F(ZRMInternalServicesTest, AsksEveryServiceInOrderAndAnswersOnceOnTheMainQueue) {
    send();
    EXPECT_EQ(record_.count(), 0u);
    EXPECT_EQ(first_->calls, std::vector<std::string>{"send 1 absent absent absent"});
    EXPECT_EQ(second_->calls, std::vector<std::string>{"send 1 absent absent absent"});
    device_.runUntilIdle();
    EXPECT_TRUE(record_.succeededOnMain());
}

TEST_F(ZRMInternalServicesTest, AnswersOnlyWhenEveryServiceHas) {
    first_->holdsBack = true;
    second_->holdsBack = true;
    send();
    device_.runUntilIdle();
    EXPECT_EQ(record_.count(), 0u);
    second_->giveAnswers();
    device_.runUntilIdle();
    EXPECT_EQ(record_.count(), 0u);
    first_->giveAnswers();
    device_.runUntilIdle();
    EXPECT_TRUE(record_.succeededOnMain());
}

TEST_F(ZRMInternalServicesTest, FailureHandlerLearnsOfAFailureOnTheMainQueueAndOfNothingElse) {
    std::vector<std::int64_t> failures;
    const auto sendAndRun = [&] {
        services().sendEvent(
            ZRMMobileServiceEventType::UserLogout, std::nullopt, std::nullopt, std::nullopt,
            ZRMFailureHandler{[&](const ZRMError& failure) {
                EXPECT_TRUE(device_.platform()->executor->mainQueue()->isCurrent());
                failures.push_back(failure.code());
            }});
        const auto failuresAtOnce = failures.size();
        const bool wasTaskPosted = device_.runOneTask();
        EXPECT_EQ(failuresAtOnce + (wasTaskPosted ? 1 : 0), failures.size());
        return wasTaskPosted;
    };
    EXPECT_FALSE(sendAndRun());
    second_->eventError = error(7);
    EXPECT_TRUE(sendAndRun());
    EXPECT_EQ(failures, std::vector<std::int64_t>{7});
}

TEST_F(ZRMInternalServicesTest, FirstErrorInTimeWins) {
    first_->eventError = error(21);
    second_->eventError = error(22);
    first_->holdsBack = true;
    send();
    first_->giveAnswers();
    device_.runUntilIdle();
    EXPECT_EQ(record_.code(), 22);
}

TEST_F(ZRMInternalServicesTest, ErrorOfOneServiceIsNotUndoneByAnothersSuccess) {
    first_->eventError = error(21);
    send();
    device_.runUntilIdle();
    EXPECT_EQ(record_.code(), 21);
}

TEST_F(ZRMInternalServicesTest, ServiceThatIsNotRunningIsNotAskedToSendOrAnalyze) {
    first_->running = false;
    send();
    device_.runUntilIdle();
    EXPECT_EQ(record_.code(), 3);
    EXPECT_TRUE(record_.onMainQueue());
    EXPECT_THAT(first_->calls, testing::IsEmpty());
    EXPECT_EQ(second_->calls.size(), 1u);

    ZRMHandlerRecord analysis;
    services().analyzeEnvironmentWithCompletionHandler(analysis.handler());
    device_.runUntilIdle();
    EXPECT_EQ(analysis.code(), 3);
    EXPECT_THAT(first_->calls, testing::IsEmpty());
    EXPECT_THAT(second_->calls, testing::Contains("analyze"));
}

TEST_F(ZRMInternalServicesTest, ErrorBeforeAServiceThatIsNotRunningWins) {
    first_->eventError = error(21);
    second_->running = false;
    send();
    device_.runUntilIdle();
    EXPECT_EQ(record_.code(), 21);
}

TEST_F(ZRMInternalServicesTest, ActivationAsksServicesThatAreNotRunning) {
    first_->running = false;
    second_->running = false;
    second_->activationError = error(5);
    services().activateWithCompletionHandler(record_.handler());
    device_.runUntilIdle();
    EXPECT_EQ(record_.code(), 5);
    EXPECT_EQ(first_->calls, std::vector<std::string>{"activate"});
    EXPECT_EQ(second_->calls, std::vector<std::string>{"activate"});
}

TEST_F(ZRMInternalServicesTest, AfterStartActionsReportEachFailureByItself) {
    first_->afterStartError = error(1);
    second_->afterStartError = error(2);
    std::vector<std::int64_t> codes;
    services().performAfterStartActions(
        [&codes](const ZRMError& failure) { codes.push_back(failure.code()); });
    EXPECT_EQ(codes, (std::vector<std::int64_t>{1, 2}));
}

TEST_F(ZRMInternalServicesTest, DeviceTagIsOfTheFirstRunningServiceThatKnowsIt) {
    first_->tag = "a";
    first_->secureTag = "b";
    second_->tag = "c";
    second_->secureTag = "";
    EXPECT_EQ(services().deviceTag(), "a_b");
    first_->running = false;
    EXPECT_EQ(services().deviceTag(), "c_");
    second_->running = false;
    EXPECT_EQ(services().deviceTag(), std::nullopt);
}

TEST_F(ZRMInternalServicesTest, ServiceWithoutTagsIsPassedOver) {
    const auto plain = std::make_shared<ZRMFakeInternalService>();
    plain->running = true;
    const ZRMInternalServices mixed(device_.platform()->executor->mainQueue(), {plain, second_});
    EXPECT_EQ(mixed.deviceTag(), "tag_secure");
    const ZRMInternalServices only(device_.platform()->executor->mainQueue(), {plain});
    EXPECT_EQ(only.deviceTag(), std::nullopt);
}

TEST_F(ZRMInternalServicesTest, PendingEventsOfAllServicesAreAdded) {
    first_->pendingEvents = 2;
    second_->pendingEvents = 3;
    EXPECT_EQ(services().pendingEventCount(), 5u);
    first_->unstoredEvents = 1;
    second_->unstoredEvents = 2;
    EXPECT_EQ(services().unstoredEventCount(), 3u);
}

TEST_F(ZRMInternalServicesTest, EmptyListSucceedsOnTheMainQueue) {
    const ZRMInternalServices none(device_.platform()->executor->mainQueue(), {});
    EXPECT_TRUE(none.isEmpty());
    none.activateWithCompletionHandler(record_.handler());
    EXPECT_EQ(record_.count(), 0u);
    device_.runUntilIdle();
    EXPECT_TRUE(record_.succeededOnMain());
}
