#include <cerrno>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using Operation = ZRMSimulatedDiskOperation;

namespace {

const std::string kDirectory = "/device/home";
const std::string kPath = kDirectory + "/store.sqlite";

class Connection {
  public:
    explicit Connection(const ZRMPlatform& platform) {
        const std::string layer = platform.directories->databaseFileLayer();
        opened_ = sqlite3_open_v2(kPath.c_str(), &database_,
                                  SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, layer.c_str());
    }
    ~Connection() { sqlite3_close_v2(database_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] int opened() const { return opened_; }
    int run(const std::string& sql) {
        return sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr);
    }
    // The first column of the first row; -1 on failure.
    std::int64_t number(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        std::int64_t value = -1;
        if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK &&
            sqlite3_step(statement) == SQLITE_ROW) {
            value = sqlite3_column_int64(statement, 0);
        }
        sqlite3_finalize(statement);
        return value;
    }
    bool isSound() {
        return number("SELECT count(*) FROM pragma_integrity_check WHERE integrity_check='ok'") ==
               1;
    }

  private:
    sqlite3* database_ = nullptr;
    int opened_ = SQLITE_ERROR;
};

class ZRMSimulatedSqlite : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        ASSERT_FALSE(device.platform()->fileManager->createDirectory(kDirectory));
    }

    std::unique_ptr<Connection> open() {
        auto connection = std::make_unique<Connection>(*device.platform());
        EXPECT_EQ(connection->opened(), SQLITE_OK);
        connection->run("PRAGMA journal_mode=" + GetParam());
        connection->run("PRAGMA synchronous=FULL");
        return connection;
    }
    std::unique_ptr<Connection> openWithTable() {
        auto connection = open();
        EXPECT_EQ(connection->run("CREATE TABLE IF NOT EXISTS t(n INTEGER, b BLOB)"), SQLITE_OK);
        return connection;
    }

    ZRMSimulatedDevice device;
};

}  // namespace

TEST_P(ZRMSimulatedSqlite, StoresOnTheSimulatedDiskAcrossProcesses) {
    openWithTable()->run("INSERT INTO t VALUES(1, zeroblob(10000))");
    EXPECT_TRUE(device.disk().holdsFile(kPath));
    device.restartProcess();
    const auto connection = open();
    EXPECT_EQ(connection->number("SELECT count(*) FROM t"), 1);
    EXPECT_TRUE(connection->isSound());
}

TEST_P(ZRMSimulatedSqlite, TwoConnectionsSeeEachOthersCommits) {
    const auto first = openWithTable();
    const auto second = open();
    EXPECT_EQ(first->run("INSERT INTO t VALUES(1, NULL)"), SQLITE_OK);
    EXPECT_EQ(second->number("SELECT count(*) FROM t"), 1);
    EXPECT_EQ(second->run("INSERT INTO t VALUES(2, NULL)"), SQLITE_OK);
    EXPECT_EQ(first->number("SELECT count(*) FROM t"), 2);
}

TEST_P(ZRMSimulatedSqlite, ASecondWriterIsBusyUntilTheFirstIsDone) {
    const auto first = openWithTable();
    const auto second = open();
    EXPECT_EQ(first->run("BEGIN IMMEDIATE"), SQLITE_OK);
    EXPECT_EQ(second->run("BEGIN IMMEDIATE"), SQLITE_BUSY);
    EXPECT_EQ(first->run("COMMIT"), SQLITE_OK);
    EXPECT_EQ(second->run("BEGIN IMMEDIATE"), SQLITE_OK);
    EXPECT_EQ(second->run("ROLLBACK"), SQLITE_OK);
}

TEST_P(ZRMSimulatedSqlite, ACommitSurvivesALostPower) {
    auto connection = openWithTable();
    EXPECT_EQ(connection->run("INSERT INTO t VALUES(1, zeroblob(5000))"), SQLITE_OK);
    device.restartProcess(ZRMSimulatedLoss::All);
    EXPECT_EQ(open()->number("SELECT count(*) FROM t"), 1);
}

TEST_P(ZRMSimulatedSqlite, TheOldProcessesConnectionFailsAndTheNewOneIsNotLockedOut) {
    const auto old = openWithTable();
    EXPECT_EQ(old->run("BEGIN IMMEDIATE; INSERT INTO t VALUES(1, NULL)"), SQLITE_OK);
    device.restartProcess();
    EXPECT_NE(old->run("COMMIT"), SQLITE_OK);
    const auto connection = open();
    EXPECT_EQ(connection->run("INSERT INTO t VALUES(2, NULL)"), SQLITE_OK);
    EXPECT_EQ(connection->number("SELECT sum(n) FROM t"), 2);
}

TEST_P(ZRMSimulatedSqlite, KilledAtAnyDiskOperationItRecoversEveryCommitAndNoHalfOne) {
    int completed = 0;
    for (std::uint64_t step = 1; completed < 2; ++step) {
        ASSERT_LT(step, 500u);
        ASSERT_FALSE(device.platform()->fileManager->removeItem(kDirectory));
        ASSERT_FALSE(device.platform()->fileManager->createDirectory(kDirectory));
        auto connection = openWithTable();
        connection->run("INSERT INTO t VALUES(1, zeroblob(9000))");
        device.killAtDiskOperation(device.disk().faults().operationCount() + step);
        const bool committed =
            connection->run(
                "BEGIN; UPDATE t SET n=2; INSERT INTO t VALUES(5, zeroblob(20000));"
                "INSERT INTO t VALUES(5, zeroblob(100)); COMMIT") == SQLITE_OK;
        completed += device.isProcessAlive() ? 1 : 0;
        device.restartProcess(step % 2 == 0 ? ZRMSimulatedLoss::All : ZRMSimulatedLoss::Some);
        connection.reset();
        device.disk().faults().setHook({});
        const auto again = open();
        const auto sum = again->number("SELECT sum(n) FROM t");
        EXPECT_TRUE(sum == 12 || (sum == 1 && !committed)) << "step " << step << " sum " << sum;
        EXPECT_TRUE(again->isSound()) << "step " << step;
    }
}

TEST_P(ZRMSimulatedSqlite, AFullDiskFailsTheCommitAndKeepsTheStoreSound) {
    const auto connection = openWithTable();
    EXPECT_EQ(connection->run("INSERT INTO t VALUES(1, NULL)"), SQLITE_OK);
    device.disk().setCapacity(device.disk().usedBytes() + 8192);
    EXPECT_EQ(connection->run("INSERT INTO t VALUES(2, zeroblob(100000))"), SQLITE_FULL);
    device.disk().setCapacity(1U << 30);
    EXPECT_EQ(connection->number("SELECT sum(n) FROM t"), 1);
    EXPECT_EQ(connection->run("INSERT INTO t VALUES(4, zeroblob(100000))"), SQLITE_OK);
    EXPECT_TRUE(connection->isSound());
}

TEST_P(ZRMSimulatedSqlite, EveryDeniedOperationIsAnErrorAndLosesNothing) {
    for (const auto operation : {Operation::Write, Operation::Read, Operation::Synchronize}) {
        const auto connection = openWithTable();
        connection->run("DELETE FROM t");
        EXPECT_EQ(connection->run("INSERT INTO t VALUES(1, NULL)"), SQLITE_OK);
        const auto fresh = open();
        device.disk().faults().add({.operation = operation, .pathPattern = "*store.sqlite*"});
        EXPECT_NE(fresh->run("UPDATE t SET n=2"), SQLITE_OK);
        device.disk().faults().clear();
        EXPECT_TRUE(open()->isSound());
    }
}

TEST_P(ZRMSimulatedSqlite, AnOpenThatIsDeniedCannotOpen) {
    device.disk().faults().add({.pathPattern = kPath, .errorNumber = EACCES});
    EXPECT_EQ(Connection(*device.platform()).opened(), SQLITE_CANTOPEN);
}

TEST_P(ZRMSimulatedSqlite, AMissingDirectoryCannotOpen) {
    ASSERT_FALSE(device.platform()->fileManager->removeItem(kDirectory));
    EXPECT_EQ(Connection(*device.platform()).opened(), SQLITE_CANTOPEN);
}

TEST_P(ZRMSimulatedSqlite, TakesItsTimeFromTheVirtualClock) {
    const auto connection = open();
    device.advanceBy(90);
    EXPECT_EQ(connection->number("SELECT strftime('%s', 'now')"),
              static_cast<std::int64_t>(ZRMSimulatedTime::kStartSecondsSince1970) + 90);
}

TEST_P(ZRMSimulatedSqlite, EachDeviceHasALayerOfItsOwn) {
    openWithTable()->run("INSERT INTO t VALUES(1, NULL)");
    ZRMSimulatedDevice other;
    ASSERT_FALSE(other.platform()->fileManager->createDirectory(kDirectory));
    EXPECT_NE(other.platform()->directories->databaseFileLayer(),
              device.platform()->directories->databaseFileLayer());
    Connection connection(*other.platform());
    EXPECT_EQ(connection.number("SELECT count(*) FROM sqlite_master"), 0);
}

TEST_P(ZRMSimulatedSqlite, AConnectionMayOutliveItsDevice) {
    std::unique_ptr<Connection> connection;
    {
        ZRMSimulatedDevice other;
        ASSERT_FALSE(other.platform()->fileManager->createDirectory(kDirectory));
        connection = std::make_unique<Connection>(*other.platform());
        EXPECT_EQ(connection->run("CREATE TABLE t(n)"), SQLITE_OK);
    }
    EXPECT_NE(connection->run("INSERT INTO t VALUES(1)"), SQLITE_OK);
}

INSTANTIATE_TEST_SUITE_P(Journals, ZRMSimulatedSqlite, testing::Values("WAL", "DELETE"),
                         [](const auto& parameters) { return parameters.param; });
