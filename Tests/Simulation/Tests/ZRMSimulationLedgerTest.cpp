// The book notices every broken promise it is there for.
#include <gtest/gtest.h>

#include "Tests/Simulation/ZRMSimulationLedger.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"

namespace {

constexpr double kNow = 1'800'000'000;
constexpr double kDay = 86400;

class ZRMSimulationLedgerTest : public testing::Test {
  protected:
    ZRMSimulationLedgerTest() { begin({}); }

    static ZRMDictionary body(const std::string& user) { return {{"userId", user}}; }
    static ZRMSimulationRecord record(const std::string& user, int priority = 2,
                                      double storedAt = kNow) {
        const ZRMDictionary event{{"UserLoginEvent", body(user)}};
        return {storedAt, 1, priority, *ZRMStatisticsBodyMaker().bodyWithParameters(event)};
    }
    static ZRMSimulationReply answered(int status = 200) { return {true, true, status, 0}; }

    void begin(const std::vector<ZRMSimulationRecord>& stored) {
        ledger_.lifeBegan(stored);
        ledger_.clockReads(kNow);
        ledger_.queueStarted();
    }
    std::size_t call(const std::string& user) {
        return ledger_.callMade("login", "UserLoginEvent/" + user, body(user));
    }
    void report(const std::string& user) { ledger_.handlerCalled(call(user), std::nullopt); }
    void storeAll() {
        ledger_.nothingUnstored([] { return std::vector<ZRMSimulationRecord>(); });
    }
    void upload(const std::string& user, const ZRMSimulationReply& reply = {}) {
        ledger_.uploadBegan(record(user).bytes, reply, ++uptime_);
    }
    std::string failure() const { return ledger_.failure().value_or(""); }

    ZRMSimulationLedger ledger_{[](const std::string&) {}};
    double uptime_ = 100;
};

}  // namespace

TEST_F(ZRMSimulationLedgerTest, AReportThatIsStoredSentAndGoneIsGood) {
    report("ann");
    storeAll();
    ledger_.storeSeen({record("ann")}, true, uptime_);
    upload("ann", answered());
    ledger_.storeSeen({}, true, uptime_);
    begin({});
    EXPECT_EQ(failure(), "");
}

TEST_F(ZRMSimulationLedgerTest, AStoredReportThatIsGoneUnansweredIsLost) {
    report("ann");
    storeAll();
    begin({});
    EXPECT_EQ(failure(), "lost: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, AnAnswerThatBrokeOffDoesNotLetAReportGo) {
    report("ann");
    storeAll();
    upload("ann", {true, false, 200, 0});
    begin({});
    EXPECT_EQ(failure(), "lost: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, AServerErrorDoesNotLetAReportGoBeforeTheLastAttempt) {
    report("ann");
    storeAll();
    for (int attempt = 1; attempt < ZRMSimulationLedger::kMaxAttempts; ++attempt) {
        upload("ann", answered(503));
    }
    EXPECT_EQ(failure(), "");
    begin({});
    EXPECT_EQ(failure(), "lost: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, AReportThatTheProcessTookWithItIsNotLost) {
    report("ann");
    begin({});
    EXPECT_EQ(failure(), "");
    EXPECT_EQ(ledger_.totals().lostWithProcess, 1U);
}

TEST_F(ZRMSimulationLedgerTest, AsManyReportsMayBeMissingAsTheLogNames) {
    report("ann");
    ledger_.couldNotStore();
    storeAll();
    EXPECT_EQ(failure(), "");
    report("bob");
    report("cid");
    ledger_.couldNotStore();
    storeAll();
    EXPECT_EQ(failure(), "2 events were not stored, and the log names 1");
}

TEST_F(ZRMSimulationLedgerTest, AnEventThatNobodyReportedIsNoticed) {
    upload("eve");
    EXPECT_EQ(failure(), "an event that the host did not report: 'UserLoginEvent/eve'");
}

TEST_F(ZRMSimulationLedgerTest, ARefusedReportMustNotArrive) {
    ledger_.handlerCalled(call("ann"), 9);
    upload("ann");
    EXPECT_EQ(failure(), "an event that the host did not report: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, AReportThatIsRefusedAfterItsUploadIsNoticed) {
    const auto login = call("ann");
    upload("ann");
    ledger_.handlerCalled(login, 12);
    EXPECT_EQ(failure(), "refused with error 12, and yet sent or stored: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, AnotherContentThanReportedIsNoticed) {
    ledger_.callMade("login", "UserLoginEvent/ann", {{"userId", "ann"}, {"result", "SUCCESS"}});
    upload("ann");
    EXPECT_EQ(failure(), "not what was reported: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, BytesThatAreNoEventAreNoticed) {
    ledger_.uploadBegan(zrm_dataFromText("noise"), {}, uptime_);
    EXPECT_TRUE(failure().starts_with("an event that cannot be read"));
}

TEST_F(ZRMSimulationLedgerTest, AnAnsweredEventMustNotBeSentAgain) {
    report("ann");
    upload("ann", answered());
    upload("ann");
    EXPECT_EQ(failure(), "sent again after its answer: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, ALostConnectionAllowsTheNextAttempt) {
    report("ann");
    upload("ann", answered());
    ledger_.connectionLost();
    upload("ann");
    EXPECT_EQ(failure(), "");
}

TEST_F(ZRMSimulationLedgerTest, AnEventThatWasGoneMustNotComeBack) {
    report("ann");
    storeAll();
    upload("ann", answered());
    begin({});
    upload("ann");
    EXPECT_EQ(failure(), "an event came back that was gone");
}

TEST_F(ZRMSimulationLedgerTest, MoreAttemptsThanThePolicyHasAreNoticed) {
    report("ann");
    for (int attempt = 0; attempt <= ZRMSimulationLedger::kMaxAttempts; ++attempt) {
        upload("ann");
    }
    EXPECT_EQ(failure(), "sent more than 18 times in one life: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, AnAnsweredEventMustNotStayInTheStore) {
    report("ann");
    storeAll();
    upload("ann", answered());
    ledger_.storeSeen({record("ann")}, true, uptime_);
    EXPECT_EQ(failure(), "still stored after its answer: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, StartSendsByPriorityWithRoomForFourAtATime) {
    std::vector<ZRMSimulationRecord> stored;
    for (const auto* user : {"a", "b", "c", "d", "e"}) {
        report(user);
        stored.push_back(record(user, 3));
    }
    report("first");
    stored.push_back(record("first", 1));
    begin(stored);
    upload("c");  // before first, a and b, which may run beside it
    EXPECT_EQ(failure(), "");
    upload("e");  // before d as well
    EXPECT_EQ(failure(), "sent before others of a higher priority or age: 'UserLoginEvent/e'");
}

TEST_F(ZRMSimulationLedgerTest, ExpiredEventsMustNotBeSent) {
    report("ann");
    ledger_.lifeBegan(std::vector{record("ann", 2, kNow - 31 * kDay)});
    ledger_.clockReads(kNow);
    ledger_.dropped(1);
    ledger_.queueStarted();
    EXPECT_EQ(failure(), "");
    upload("ann");
    EXPECT_EQ(failure(), "sent although it had expired: 'UserLoginEvent/ann'");
}

TEST_F(ZRMSimulationLedgerTest, ExpiredEventsThatTheLogDoesNotNameAreNoticed) {
    report("ann");
    begin({record("ann", 2, kNow - 31 * kDay)});
    EXPECT_EQ(failure(), "the log names 0 expired events of 1");
}

TEST_F(ZRMSimulationLedgerTest, AQueueThatIsEmptiedBeforeItIsFullIsNoticed) {
    report("ann");
    storeAll();
    ledger_.queueEmptied(std::vector{record("ann")}, 10'000);
    EXPECT_TRUE(failure().starts_with("the queue was emptied at "));
}

TEST_F(ZRMSimulationLedgerTest, AFullQueueLetsItsEventsGo) {
    report("ann");
    storeAll();
    ledger_.queueEmptied(std::vector{record("ann")}, 10);
    begin({});
    EXPECT_EQ(failure(), "");
}

TEST_F(ZRMSimulationLedgerTest, HandlersAreCalledOnce) {
    const auto login = call("ann");
    ledger_.handlerCalled(login, std::nullopt);
    ledger_.checkHandlers();
    EXPECT_EQ(failure(), "");
    const auto next = call("bob");
    ledger_.handlerCalled(next, std::nullopt);
    ledger_.handlerCalled(next, std::nullopt);
    EXPECT_EQ(failure(), "the handler of login was called twice");
}

TEST_F(ZRMSimulationLedgerTest, AHandlerThatWasNotCalledIsNoticed) {
    call("ann");
    ledger_.checkHandlers();
    EXPECT_EQ(failure(), "the handler of login was called 0 times");
}
