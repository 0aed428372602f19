// What ZRMApplicationNotifications.h promises.
#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;

namespace {

using enum ZRMApplicationNotification;

class ZRMNotificationsContract : public ZRMContract {
  protected:
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observe(ZRMApplicationNotification notification,
                                                           std::string text) {
        return platform()->notifications->observe(notification, note(std::move(text)));
    }
    bool waitForEnd() { return waitForEndOf(*platform()->executor->mainQueue()); }
};

}  // namespace

TEST_P(ZRMNotificationsContract, EachObserverHearsOfItsOwnNotification) {
    const auto foreground = observe(WillEnterForeground, "foreground");
    const auto connected = observe(ScreenDidConnect, "connected");
    const auto captured = observe(ScreenCapturedDidChange, "captured");
    const auto screenshot = observe(UserDidTakeScreenshot, "screenshot");
    std::size_t told = 0;
    for (const auto notification :
         {UserDidTakeScreenshot, ScreenCapturedDidChange, ScreenDidConnect, WillEnterForeground}) {
        body_->notify(notification);
        ASSERT_TRUE(waitForNotes(++told));
    }
    EXPECT_THAT(notes(), ElementsAre("screenshot", "captured", "connected", "foreground"));
}

TEST_P(ZRMNotificationsContract, EveryNotificationIsToldOnce) {
    const auto subscription = observe(UserDidTakeScreenshot, "screenshot");
    body_->notify(UserDidTakeScreenshot);
    body_->notify(UserDidTakeScreenshot);
    ASSERT_TRUE(waitForNotes(2));
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("screenshot", "screenshot", "end"));
}

TEST_P(ZRMNotificationsContract, EarlierNotificationsAreNotTold) {
    body_->notify(UserDidTakeScreenshot);
    const auto subscription = observe(UserDidTakeScreenshot, "screenshot");
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("end"));
}

TEST_P(ZRMNotificationsContract, TheCallbackRunsOnTheMainQueue) {
    const auto mainQueue = platform()->executor->mainQueue();
    const auto subscription =
        platform()->notifications->observe(WillEnterForeground, [mainQueue, notes = notes_] {
            notes->add(mainQueue->isCurrent() ? "on main" : "elsewhere");
        });
    body_->notify(WillEnterForeground);
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_THAT(notes(), ElementsAre("on main"));
}

TEST_P(ZRMNotificationsContract, ADroppedSubscriptionHearsNothing) {
    auto subscription = observe(ScreenDidConnect, "connected");
    subscription.reset();
    body_->notify(ScreenDidConnect);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("end"));
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMNotificationsContract, zrm_contractBodies(),
                         zrm_contractBodyName);
