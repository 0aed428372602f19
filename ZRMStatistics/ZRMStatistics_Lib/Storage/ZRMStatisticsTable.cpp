#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsTable.h"

#include <algorithm>
#include <limits>

namespace {

// Leaves a kept statement ready for the next use, also when the use ends with an exception.
class StatementUse {
  public:
    explicit StatementUse(SQLite::Statement& statement) : statement_(statement) {}
    ~StatementUse() {
        static_cast<void>(statement_.tryReset());
        statement_.clearBindings();
    }
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;

  private:
    SQLite::Statement& statement_;
};

// The bytes must outlive the statement's use. No bytes are a value of their own, not "no value".
void bindBytes(SQLite::Statement& statement, int index, const ZRMData& bytes) {
    static constexpr std::uint8_t kNone = 0;
    statement.bindNoCopy(index, bytes.empty() ? &kNone : bytes.data(),
                         static_cast<int>(bytes.size()));
}

std::int64_t limitValue(std::size_t limit) {
    return limit == 0 ? -1 : static_cast<std::int64_t>(limit);
}

// A number that does not fit comes from a damaged or foreign store; the nearest one keeps its
// sense.
std::int16_t integer16(std::int64_t value) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

std::vector<ZRMStatisticsTable::Row> readRows(SQLite::Statement& statement) {
    std::vector<ZRMStatisticsTable::Row> rows;
    while (statement.executeStep()) {
        rows.push_back(ZRMStatisticsTable::rowAt(statement));
    }
    return rows;
}

}  // namespace

const char* const ZRMStatisticsTable::kSelectAll =
    "SELECT id, storeTimestamp, lastTryTimestamp, activeDays, priority, jwsLength "
    "FROM ZRMStatisticEntity ORDER BY storeTimestamp, id LIMIT ?";
const char* const ZRMStatisticsTable::kSelectWithBytes =
    "SELECT id, storeTimestamp, lastTryTimestamp, activeDays, priority, jwsLength "
    "FROM ZRMStatisticEntity WHERE substr(jws, -8) IS substr(?1, -8) AND jws = ?1 "
    "ORDER BY storeTimestamp, id LIMIT ?2";
const char* const ZRMStatisticsTable::kSelectTotals =
    "SELECT count(*), coalesce(sum(jwsLength), 0) FROM ZRMStatisticEntity";

ZRMStatisticsTable::ZRMStatisticsTable(SQLite::Database& database)
    : database_(database),
      begin_(database, "BEGIN IMMEDIATE"),
      commit_(database, "COMMIT"),
      insert_(database,
              "INSERT INTO ZRMStatisticEntity (storeTimestamp, lastTryTimestamp, activeDays, "
              "priority, jwsLength, jws) VALUES (?1, ?2, ?3, ?4, length(?5), ?5)"),
      update_(database,
              "UPDATE ZRMStatisticEntity SET storeTimestamp = ?1, lastTryTimestamp = ?2, "
              "activeDays = ?3, priority = ?4 WHERE id = ?5"),
      remove_(database, "DELETE FROM ZRMStatisticEntity WHERE id = ?"),
      withId_(database,
              "SELECT id, storeTimestamp, lastTryTimestamp, activeDays, priority, jwsLength "
              "FROM ZRMStatisticEntity WHERE id = ?"),
      all_(database, kSelectAll),
      withBytes_(database, kSelectWithBytes),
      bytes_(database, "SELECT jws FROM ZRMStatisticEntity WHERE id = ?"),
      totals_(database, kSelectTotals) {}

ZRMStatisticsTable::Row ZRMStatisticsTable::rowAt(SQLite::Statement& statement) {
    const auto length = std::max<std::int64_t>(0, statement.getColumn(5).getInt64());
    return {statement.getColumn(0).getInt64(),
            statement.getColumn(1).getDouble(),
            statement.getColumn(2).getDouble(),
            integer16(statement.getColumn(3).getInt64()),
            integer16(statement.getColumn(4).getInt64()),
            static_cast<std::size_t>(length)};
}

void ZRMStatisticsTable::beginTransaction() {
    const StatementUse use(begin_);
    begin_.exec();
}

void ZRMStatisticsTable::commitTransaction() {
    const StatementUse use(commit_);
    commit_.exec();
}

std::int64_t ZRMStatisticsTable::insert(const Row& row, const ZRMData& jws) {
    const StatementUse use(insert_);
    insert_.bind(1, row.storeTimestamp);
    insert_.bind(2, row.lastTryTimestamp);
    insert_.bind(3, row.activeDays);
    insert_.bind(4, row.priority);
    bindBytes(insert_, 5, jws);
    insert_.exec();
    return database_.getLastInsertRowid();
}

void ZRMStatisticsTable::update(const Row& row) {
    const StatementUse use(update_);
    update_.bind(1, row.storeTimestamp);
    update_.bind(2, row.lastTryTimestamp);
    update_.bind(3, row.activeDays);
    update_.bind(4, row.priority);
    update_.bind(5, row.id);
    update_.exec();
}

void ZRMStatisticsTable::remove(std::int64_t id) {
    const StatementUse use(remove_);
    remove_.bind(1, id);
    remove_.exec();
}

std::optional<ZRMStatisticsTable::Row> ZRMStatisticsTable::withId(std::int64_t id) {
    const StatementUse use(withId_);
    withId_.bind(1, id);
    return withId_.executeStep() ? std::optional(rowAt(withId_)) : std::nullopt;
}

std::vector<ZRMStatisticsTable::Row> ZRMStatisticsTable::all(std::size_t limit) {
    const StatementUse use(all_);
    all_.bind(1, limitValue(limit));
    return readRows(all_);
}

std::vector<ZRMStatisticsTable::Row> ZRMStatisticsTable::withBytes(const ZRMData& jws,
                                                                   std::size_t limit) {
    const StatementUse use(withBytes_);
    bindBytes(withBytes_, 1, jws);
    withBytes_.bind(2, limitValue(limit));
    return readRows(withBytes_);
}

std::optional<ZRMData> ZRMStatisticsTable::bytes(std::int64_t id) {
    const StatementUse use(bytes_);
    bytes_.bind(1, id);
    if (!bytes_.executeStep()) {
        return std::nullopt;
    }
    const auto column = bytes_.getColumn(0);
    const auto* start = static_cast<const std::uint8_t*>(column.getBlob());
    return start == nullptr ? ZRMData() : ZRMData(start, start + column.getBytes());
}

ZRMStatisticsTable::Totals ZRMStatisticsTable::totals() {
    const StatementUse use(totals_);
    totals_.executeStep();
    return {totals_.getColumn(0).getInt64(), totals_.getColumn(1).getInt64()};
}
