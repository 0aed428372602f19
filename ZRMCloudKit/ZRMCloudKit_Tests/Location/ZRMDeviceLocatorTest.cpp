#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMDeviceLocator.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const ZRMLocation kNear{48.2, 16.4, 8};
const ZRMLocation kFar{48.3, 16.5, 50};
const ZRMLocation kFarther{48.4, 16.6, 60};
const ZRMError kUnknown(kZRMLocationErrorDomain, 0);
const ZRMError kDenied(kZRMLocationErrorDomain, 1);
const ZRMError kNetwork(kZRMLocationErrorDomain, 2);
const ZRMError kHeading(kZRMLocationErrorDomain, 3);

// What a handler received, as a text.
std::string told(const ZRMResult<ZRMLocation>& result) {
    return result ? "within " + std::to_string(static_cast<int>(result.value().horizontalAccuracy))
                  : result.error().domain() + " " + std::to_string(result.error().code());
}

// A locator for 10 metres and 10 seconds. Whatever a test does is on the main queue.
class ZRMDeviceLocatorTest : public testing::Test {
  protected:
    ZRMDeviceLocatorTest() {
        device_.location().setStatus(ZRMLocationAuthorizationWhenInUse);
        onMain([this] {
            locator_ = ZRMDeviceLocator::deviceLocatorWithLocationManager(
                device_.platform(), device_.platform()->locationServices->makeLocationManager(10),
                10);
        });
    }
    void onMain(ZRMTask task) {
        device_.platform()->executor->mainQueue()->post(std::move(task));
        device_.runUntilIdle();
    }
    // Its answer is noted after the name.
    void request(const std::string& name = "") {
        onMain([this, name] {
            locator_->currentLocationWithCompletionHandler([this, name](const auto& result) {
                EXPECT_TRUE(device_.platform()->executor->mainQueue()->isCurrent());
                answers_.push_back(name + told(result));
            });
        });
    }
    void deliver(std::vector<ZRMLocation> locations) {
        device_.location().deliver(std::move(locations));
        device_.runUntilIdle();
    }
    void fail(const ZRMError& error) {
        device_.location().fail(error);
        device_.runUntilIdle();
    }
    void setStatus(int status) {
        device_.location().setStatus(status);
        device_.runUntilIdle();
    }
    [[nodiscard]] bool isIdle() {
        return !locator_->isDetectingLocation() && device_.location().updatingManagers() == 0;
    }

    ZRMSimulatedDevice device_;
    std::vector<std::string> answers_;
    std::shared_ptr<ZRMDeviceLocator> locator_;
};

TEST_F(ZRMDeviceLocatorTest, IsIdleUntilItIsAsked) {
    EXPECT_TRUE(isIdle());
    EXPECT_EQ(locator_->maxLocationDetectDuration(), 10);
    request();
    EXPECT_TRUE(locator_->isDetectingLocation());
    EXPECT_EQ(device_.location().updatingManagers(), 1U);
    EXPECT_THAT(answers_, IsEmpty());
}

TEST_F(ZRMDeviceLocatorTest, EndsAtOnceWithAFixThatIsAccurateEnough) {
    request();
    deliver({kNear});
    EXPECT_THAT(answers_, ElementsAre("within 8"));
    EXPECT_TRUE(isIdle());
    device_.advanceBy(60);
    EXPECT_EQ(answers_.size(), 1U);
}

TEST_F(ZRMDeviceLocatorTest, AFixOfJustTheDesiredAccuracyIsEnough) {
    request();
    deliver({{1, 2, 10}});
    EXPECT_THAT(answers_, ElementsAre("within 10"));
}

TEST_F(ZRMDeviceLocatorTest, HandsOverTheFixItself) {
    std::optional<ZRMLocation> fix;
    onMain([&] {
        locator_->currentLocationWithCompletionHandler(
            [&fix](const auto& result) { fix = result.value(); });
    });
    deliver({kNear});
    EXPECT_EQ(fix, kNear);
}

TEST_F(ZRMDeviceLocatorTest, OfSeveralFixesTheLastCounts) {
    request();
    deliver({kNear, kFar});
    EXPECT_THAT(answers_, IsEmpty());
    deliver({kFarther, kNear});
    EXPECT_THAT(answers_, ElementsAre("within 8"));
}

TEST_F(ZRMDeviceLocatorTest, AtTheLimitTheLastFixIsTheAnswer) {
    request();
    deliver({kFar});
    device_.advanceBy(9);
    deliver({kFarther});
    EXPECT_THAT(answers_, IsEmpty());
    device_.advanceBy(1);
    EXPECT_THAT(answers_, ElementsAre("within 60"));
    EXPECT_TRUE(isIdle());
}

TEST_F(ZRMDeviceLocatorTest, AtTheLimitAFixComesBeforeAnError) {
    request();
    deliver({kFar});
    fail(kNetwork);
    device_.advanceBy(10);
    EXPECT_THAT(answers_, ElementsAre("within 50"));
}

TEST_F(ZRMDeviceLocatorTest, AtTheLimitWithoutAFixTheLastErrorIsTheAnswer) {
    request();
    fail(kNetwork);
    EXPECT_THAT(answers_, IsEmpty());
    fail(kHeading);
    device_.advanceBy(10);
    EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 3"));
}

TEST_F(ZRMDeviceLocatorTest, AtTheLimitWithNothingTheLocationIsUnknown) {
    request();
    device_.advanceBy(9.5);
    EXPECT_THAT(answers_, IsEmpty());
    device_.advanceBy(0.5);
    EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 0"));
    EXPECT_TRUE(isIdle());
}

TEST_F(ZRMDeviceLocatorTest, AFailureDoesNotEndTheDetection) {
    request();
    fail(kNetwork);
    deliver({kNear});
    EXPECT_THAT(answers_, ElementsAre("within 8"));
}

TEST_F(ZRMDeviceLocatorTest, ForgetsFixAndErrorOfTheDetectionBefore) {
    request();
    deliver({kFar});
    fail(kNetwork);
    device_.advanceBy(10);
    request();
    device_.advanceBy(10);
    EXPECT_THAT(answers_, ElementsAre("within 50", "kCLErrorDomain 0"));
}

TEST_F(ZRMDeviceLocatorTest, RefusesAtOnceWhereItIsNotAuthorized) {
    for (const int status : {ZRMLocationAuthorizationRestricted, ZRMLocationAuthorizationDenied}) {
        answers_.clear();
        setStatus(status);
        request();
        EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 1")) << status;
        EXPECT_TRUE(isIdle());
    }
    // Nothing was kept that a later authorization could wake.
    setStatus(ZRMLocationAuthorizationAlways);
    device_.advanceBy(60);
    EXPECT_EQ(answers_.size(), 1U);
}

TEST_F(ZRMDeviceLocatorTest, BothKindsOfAuthorizationAreEnough) {
    for (const int status : {ZRMLocationAuthorizationAlways, ZRMLocationAuthorizationWhenInUse}) {
        answers_.clear();
        setStatus(status);
        request();
        deliver({kNear});
        EXPECT_THAT(answers_, ElementsAre("within 8")) << status;
    }
}

TEST_F(ZRMDeviceLocatorTest, WaitsForTheUsersDecisionWithoutALimit) {
    setStatus(ZRMLocationAuthorizationNotDetermined);
    request();
    EXPECT_TRUE(locator_->isDetectingLocation());
    EXPECT_EQ(device_.location().updatingManagers(), 0U);
    device_.advanceBy(100000);
    EXPECT_THAT(answers_, IsEmpty());
    setStatus(ZRMLocationAuthorizationAlways);
    EXPECT_EQ(device_.location().updatingManagers(), 1U);
    device_.advanceBy(9);
    EXPECT_THAT(answers_, IsEmpty());  // the time runs since the authorization
    device_.advanceBy(1);
    EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 0"));
}

TEST_F(ZRMDeviceLocatorTest, EndsWhenTheUserRefuses) {
    setStatus(ZRMLocationAuthorizationNotDetermined);
    request();
    setStatus(ZRMLocationAuthorizationDenied);
    EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 0"));
    EXPECT_TRUE(isIdle());
}

TEST_F(ZRMDeviceLocatorTest, WithdrawnAuthorizationEndsWithTheLastFix) {
    request();
    deliver({kFar});
    fail(kNetwork);
    setStatus(ZRMLocationAuthorizationDenied);
    EXPECT_THAT(answers_, ElementsAre("within 50"));
    EXPECT_TRUE(isIdle());
    device_.advanceBy(60);
    EXPECT_EQ(answers_.size(), 1U);
}

TEST_F(ZRMDeviceLocatorTest, WithdrawnAuthorizationEndsWithTheLastErrorWhereThereIsNoFix) {
    request();
    fail(kNetwork);
    setStatus(ZRMLocationAuthorizationRestricted);
    EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 2"));
}

TEST_F(ZRMDeviceLocatorTest, WithdrawnAuthorizationEndsWithAnUnknownLocationWhereThereIsNothing) {
    request();
    setStatus(ZRMLocationAuthorizationNotDetermined);
    EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 0"));
}

TEST_F(ZRMDeviceLocatorTest, AnotherKindOfAuthorizationDoesNotStartTheTimeAnew) {
    request();
    device_.advanceBy(6);
    setStatus(ZRMLocationAuthorizationAlways);
    device_.advanceBy(4);
    EXPECT_THAT(answers_, ElementsAre("kCLErrorDomain 0"));
}

TEST_F(ZRMDeviceLocatorTest, ANewerRequestEndsTheOneBefore) {
    request("first ");
    deliver({kFar});
    device_.advanceBy(6);
    request("second ");
    EXPECT_THAT(answers_, ElementsAre("first kCLErrorDomain 0"));
    device_.advanceBy(6);  // the first one's time would be over
    EXPECT_EQ(answers_.size(), 1U);
    deliver({kNear});
    EXPECT_THAT(answers_, ElementsAre("first kCLErrorDomain 0", "second within 8"));
}

TEST_F(ZRMDeviceLocatorTest, ANewerRequestTakesNothingFromTheOneBefore) {
    request();
    deliver({kFar});
    request("second ");
    device_.advanceBy(10);
    EXPECT_EQ(answers_.back(), "second kCLErrorDomain 0");
}

TEST_F(ZRMDeviceLocatorTest, ANewerRequestEndsOneThatWaitsForTheUsersDecision) {
    setStatus(ZRMLocationAuthorizationNotDetermined);
    request("first ");
    request("second ");
    EXPECT_THAT(answers_, ElementsAre("first kCLErrorDomain 0"));
    setStatus(ZRMLocationAuthorizationWhenInUse);
    deliver({kNear});
    EXPECT_THAT(answers_, ElementsAre("first kCLErrorDomain 0", "second within 8"));
}

TEST_F(ZRMDeviceLocatorTest, AnswersAfterTheEndAreIgnored) {
    request();
    onMain([this] {
        for (int round = 0; round < 2; ++round) {
            locator_->locationsUpdated({kNear});
            locator_->locationFailed(kNetwork);
            locator_->authorizationChanged(ZRMLocationAuthorizationDenied);
            locator_->authorizationChanged(ZRMLocationAuthorizationAlways);
        }
    });
    EXPECT_THAT(answers_, ElementsAre("within 8"));
    EXPECT_TRUE(isIdle());
    device_.advanceBy(60);
    EXPECT_EQ(answers_.size(), 1U);
    request();
    device_.advanceBy(10);
    EXPECT_THAT(answers_, ElementsAre("within 8", "kCLErrorDomain 0"));
}

TEST_F(ZRMDeviceLocatorTest, AnEmptyListOfFixesChangesNothing) {
    request();
    onMain([this] { locator_->locationsUpdated({}); });
    EXPECT_THAT(answers_, IsEmpty());
    EXPECT_TRUE(locator_->isDetectingLocation());
}

TEST_F(ZRMDeviceLocatorTest, AHandlerMayAskAgain) {
    onMain([this] {
        locator_->currentLocationWithCompletionHandler([this](const auto& first) {
            answers_.push_back(told(first));
            EXPECT_FALSE(locator_->isDetectingLocation());
            locator_->currentLocationWithCompletionHandler(
                [this](const auto& second) { answers_.push_back("again " + told(second)); });
        });
    });
    deliver({kNear});
    EXPECT_THAT(answers_, ElementsAre("within 8"));
    deliver({{1, 2, 3}});
    EXPECT_THAT(answers_, ElementsAre("within 8", "again within 3"));
}

TEST_F(ZRMDeviceLocatorTest, ASupersededHandlerThatAsksAgainIsTheNewestRequest) {
    onMain([this] {
        locator_->currentLocationWithCompletionHandler([this](const auto& first) {
            answers_.push_back("first " + told(first));
            locator_->currentLocationWithCompletionHandler(
                [this](const auto& again) { answers_.push_back("again " + told(again)); });
        });
    });
    request("second ");
    EXPECT_THAT(answers_, ElementsAre("first kCLErrorDomain 0", "second kCLErrorDomain 0"));
    deliver({kNear});
    EXPECT_EQ(answers_.back(), "again within 8");
}

TEST_F(ZRMDeviceLocatorTest, AskedFromElsewhereItWorksOnTheMainQueue) {
    locator_->currentLocationWithCompletionHandler([this](const auto& result) {
        EXPECT_TRUE(device_.platform()->executor->mainQueue()->isCurrent());
        answers_.push_back(told(result));
    });
    EXPECT_FALSE(locator_->isDetectingLocation());
    device_.runUntilIdle();
    EXPECT_TRUE(locator_->isDetectingLocation());
    deliver({kNear});
    EXPECT_THAT(answers_, ElementsAre("within 8"));
}

TEST_F(ZRMDeviceLocatorTest, ALocatorThatIsDroppedCallsNobodyAnyMore) {
    request();
    locator_.reset();
    deliver({kNear});
    setStatus(ZRMLocationAuthorizationDenied);
    device_.advanceBy(60);
    EXPECT_THAT(answers_, IsEmpty());
}

}  // namespace
