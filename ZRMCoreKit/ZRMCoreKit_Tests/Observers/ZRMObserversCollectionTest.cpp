#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Observers/ZRMObserversCollection.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct Observer {
    explicit Observer(int theNumber) : number(theNumber) {}
    int number;
};

class ZRMObserversCollectionTest : public testing::Test {
  protected:
    std::vector<int> notified() {
        std::vector<int> numbers;
        collection_.notifyWithBlock(
            [&](Observer& observer) { numbers.push_back(observer.number); });
        return numbers;
    }

    ZRMSimulatedDevice device_;
    ZRMObserversCollection<Observer> collection_{device_.platform()->consoleLog};
    const std::shared_ptr<Observer> first_ = std::make_shared<Observer>(1);
    const std::shared_ptr<Observer> second_ = std::make_shared<Observer>(2);
};

TEST_F(ZRMObserversCollectionTest, IsEmptyAtFirst) {
    EXPECT_THAT(notified(), ElementsAre());
}

TEST_F(ZRMObserversCollectionTest, CallsBackOnceWithEachMember) {
    collection_.addObserver(first_);
    collection_.addObserver(second_);
    EXPECT_THAT(notified(), UnorderedElementsAre(1, 2));
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMObserversCollectionTest, AddingAMemberAgainKeepsOneMembershipAndWarns) {
    collection_.addObserver(first_);
    collection_.addObserver(first_);
    EXPECT_THAT(notified(), ElementsAre(1));
    EXPECT_EQ(device_.console().text(),
              "<WARNING>: Attempt to add observer which had been added already\n");
}

TEST_F(ZRMObserversCollectionTest, RemovesAMember) {
    collection_.addObserver(first_);
    collection_.addObserver(second_);
    collection_.removeObserver(first_.get());
    EXPECT_THAT(notified(), ElementsAre(2));
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMObserversCollectionTest, RemovingAStrangerWarns) {
    collection_.addObserver(first_);
    collection_.removeObserver(second_.get());
    EXPECT_THAT(notified(), ElementsAre(1));
    EXPECT_EQ(device_.console().text(),
              "<WARNING>: Attempt to remove observer which hasn't been added yet\n");
}

TEST_F(ZRMObserversCollectionTest, RemovesAllWithoutAWarning) {
    collection_.addObserver(first_);
    collection_.addObserver(second_);
    collection_.removeAll();
    collection_.removeAll();
    EXPECT_THAT(notified(), ElementsAre());
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMObserversCollectionTest, DoesNotKeepItsMembersAlive) {
    auto observer = std::make_shared<Observer>(3);
    const std::weak_ptr<Observer> weak = observer;
    collection_.addObserver(observer);
    observer.reset();
    EXPECT_TRUE(weak.expired());
}

TEST_F(ZRMObserversCollectionTest, ADestroyedMemberDropsOut) {
    auto observer = std::make_shared<Observer>(3);
    const Observer* address = observer.get();
    collection_.addObserver(observer);
    collection_.addObserver(first_);
    observer.reset();
    EXPECT_THAT(notified(), ElementsAre(1));
    collection_.removeObserver(address);
    EXPECT_TRUE(device_.console().contains("hasn't been added yet"));
}

struct LeavingObserver {
    explicit LeavingObserver(ZRMObserversCollection<LeavingObserver>& theCollection)
        : collection(theCollection) {}
    ~LeavingObserver() { collection.removeObserver(this); }
    ZRMObserversCollection<LeavingObserver>& collection;
};

TEST_F(ZRMObserversCollectionTest, AMemberMayLeaveInItsOwnDestructor) {
    ZRMObserversCollection<LeavingObserver> collection(device_.platform()->consoleLog);
    auto observer = std::make_shared<LeavingObserver>(collection);
    collection.addObserver(observer);
    observer.reset();
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMObserversCollectionTest, AMemberMayLoseItsLastReferenceWhileItIsNotified) {
    ZRMObserversCollection<LeavingObserver> collection(device_.platform()->consoleLog);
    auto observer = std::make_shared<LeavingObserver>(collection);
    collection.addObserver(observer);
    int calls = 0;
    const auto count = [&](LeavingObserver&) {
        ++calls;
        observer.reset();
    };
    collection.notifyWithBlock(count);
    collection.notifyWithBlock(count);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMObserversCollectionTest, AddsAMemberAgainAfterItLeft) {
    collection_.addObserver(first_);
    collection_.removeObserver(first_.get());
    collection_.addObserver(first_);
    EXPECT_THAT(notified(), ElementsAre(1));
    EXPECT_EQ(device_.console().text(), "");
}

}  // namespace
