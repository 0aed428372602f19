// What ZRMLocationServices.h promises.
#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;

namespace {

class NotingDelegate final : public ZRMLocationManagerDelegate {
  public:
    NotingDelegate(std::shared_ptr<ZRMContractNotes> notes, std::shared_ptr<ZRMQueue> mainQueue)
        : notes_(std::move(notes)), mainQueue_(std::move(mainQueue)) {}

    void locationsUpdated(const std::vector<ZRMLocation>& locations) override {
        std::string text = "at";
        for (const auto& location : locations) {
            text += " " + std::to_string(static_cast<int>(location.latitude));
        }
        add(text);
    }
    void locationFailed(const ZRMError& error) override {
        add("failed " + std::to_string(error.code()));
    }
    void authorizationChanged(int status) override { add("status " + std::to_string(status)); }

  private:
    void add(const std::string& text) {
        notes_->add(mainQueue_->isCurrent() ? text : text + " elsewhere");
    }

    std::shared_ptr<ZRMContractNotes> notes_;
    std::shared_ptr<ZRMQueue> mainQueue_;
};

class ZRMLocationContract : public ZRMContract {
  protected:
    ZRMLocationContract() {
        onMain([this] { manager_ = platform()->locationServices->makeLocationManager(10); });
    }
    ~ZRMLocationContract() override {
        onMain([this] { manager_.reset(); });
    }

    [[nodiscard]] std::shared_ptr<ZRMQueue> mainQueue() {
        return platform()->executor->mainQueue();
    }
    // Runs the task on the main queue, after all that was posted to it before.
    void onMain(ZRMTask task) {
        const auto done = std::make_shared<ZRMContractNotes>();
        mainQueue()->post([task = std::move(task), done] {
            task();
            done->add("done");
        });
        EXPECT_TRUE(body_->waitFor(*done, [](const auto& all) { return !all.empty(); }));
    }
    void setDelegate() {
        onMain([this] { manager_->setDelegate(delegate_); });
    }
    void start() {
        onMain([this] { manager_->startUpdatingLocation(); });
    }
    void stop() {
        onMain([this] { manager_->stopUpdatingLocation(); });
    }
    void deliver(double latitude) { body_->deliverLocations({{.latitude = latitude}}); }
    bool waitForEnd() { return waitForEndOf(*mainQueue()); }

    std::shared_ptr<ZRMLocationManager> manager_;
    std::shared_ptr<NotingDelegate> delegate_ =
        std::make_shared<NotingDelegate>(notes_, mainQueue());
};

}  // namespace

TEST_P(ZRMLocationContract, NobodyWasAskedAtFirst) {
    EXPECT_EQ(platform()->locationAuthorization->status(), ZRMLocationAuthorizationNotDetermined);
    onMain([this] {
        EXPECT_EQ(manager_->authorizationStatus(), ZRMLocationAuthorizationNotDetermined);
    });
}

TEST_P(ZRMLocationContract, TellsWhetherTheServicesAreOn) {
    body_->setLocationServicesEnabled(true);
    EXPECT_TRUE(platform()->locationServices->locationServicesEnabled());
    body_->setLocationServicesEnabled(false);
    EXPECT_FALSE(platform()->locationServices->locationServicesEnabled());
}

TEST_P(ZRMLocationContract, KeepsTheAccuracyItWasMadeWith) {
    onMain([this] { EXPECT_EQ(manager_->desiredAccuracy(), 10); });
}

TEST_P(ZRMLocationContract, TellsChangesOfTheAuthorizationEvenWithoutUpdates) {
    setDelegate();
    body_->setLocationAuthorization(ZRMLocationAuthorizationWhenInUse);
    body_->setLocationAuthorization(ZRMLocationAuthorizationWhenInUse);
    body_->setLocationAuthorization(ZRMLocationAuthorizationDenied);
    ASSERT_TRUE(waitForNotes(2));
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("status 4", "status 2", "end"));
    EXPECT_EQ(platform()->locationAuthorization->status(), ZRMLocationAuthorizationDenied);
    onMain([this] { EXPECT_EQ(manager_->authorizationStatus(), ZRMLocationAuthorizationDenied); });
}

TEST_P(ZRMLocationContract, TellsFixesAndFailuresInOrderWhileUpdating) {
    setDelegate();
    start();
    deliver(1);
    body_->failLocation(ZRMError(kZRMLocationErrorDomain, ZRMLocationErrorDenied));
    body_->deliverLocations({{.latitude = 2}, {.latitude = 3}});
    ASSERT_TRUE(waitForNotes(3));
    EXPECT_THAT(notes(), ElementsAre("at 1", "failed 1", "at 2 3"));
}

TEST_P(ZRMLocationContract, AFixThatComesBeforeUpdatesIsNotKept) {
    setDelegate();
    deliver(1);
    start();
    deliver(2);
    ASSERT_TRUE(waitForNotes(1));
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("at 2", "end"));
}

TEST_P(ZRMLocationContract, NothingIsToldAfterUpdatesWereStopped) {
    setDelegate();
    start();
    stop();
    deliver(1);
    body_->failLocation(ZRMError(kZRMLocationErrorDomain, ZRMLocationErrorLocationUnknown));
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("end"));
}

TEST_P(ZRMLocationContract, AFixOnItsWayIsDroppedWhenUpdatesStop) {
    setDelegate();
    start();
    onMain([this] {
        deliver(1);
        manager_->stopUpdatingLocation();
    });
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("end"));
}

TEST_P(ZRMLocationContract, StartingTwiceTellsOnceAndOneStopEndsIt) {
    setDelegate();
    start();
    start();
    deliver(1);
    ASSERT_TRUE(waitForNotes(1));
    stop();
    deliver(2);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("at 1", "end"));
}

TEST_P(ZRMLocationContract, ADelegateThatIsGoneIsNotTold) {
    setDelegate();
    start();
    delegate_.reset();
    deliver(1);
    body_->setLocationAuthorization(ZRMLocationAuthorizationAlways);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), ElementsAre("end"));
}

TEST_P(ZRMLocationContract, ManagersUpdateByThemselves) {
    std::shared_ptr<ZRMLocationManager> other;
    setDelegate();
    onMain([&] {
        other = platform()->locationServices->makeLocationManager(10);
        other->setDelegate(delegate_);
        other->startUpdatingLocation();
    });
    deliver(1);
    ASSERT_TRUE(waitForNotes(1));
    start();
    deliver(2);
    ASSERT_TRUE(waitForNotes(3));
    onMain([&] { other.reset(); });
    EXPECT_THAT(notes(), ElementsAre("at 1", "at 2", "at 2"));
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMLocationContract, zrm_contractBodies(), zrm_contractBodyName);
