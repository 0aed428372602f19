// The queue's table: every statement the library runs on it, prepared once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// Used by one thread at a time. Everything throws SQLite::Exception.
class ZRMStatisticsTable {
  public:
    // A record without its bytes.
    struct Row {
        std::int64_t id = 0;
        double storeTimestamp = 0;
        double lastTryTimestamp = 0;
        std::int16_t activeDays = 0;
        std::int16_t priority = 0;
        std::size_t length = 0;  // of the bytes
    };

    static const char* const kSelectAll;
    static const char* const kSelectWithBytes;
    static const char* const kSelectTotals;

    // The row in the first six columns of a statement that stands on one, in kSelectAll's order.
    static Row rowAt(SQLite::Statement& statement);

    // The table must be there; the database outlives this.
    explicit ZRMStatisticsTable(SQLite::Database& database);

    // What follows is one change of the store, until the commit has put it on stable storage.
    void beginTransaction();
    void commitTransaction();

    // Returns the new record's number; the row's own number and length do not count.
    std::int64_t insert(const Row& row, const ZRMData& jws);
    // Everything but the bytes.
    void update(const Row& row);
    void remove(std::int64_t id);

    std::optional<Row> withId(std::int64_t id);
    // Oldest first, those stored at the same moment in the order of their storing.
    std::vector<Row> all(std::size_t limit);
    // The same, of the records with exactly these bytes.
    std::vector<Row> withBytes(const ZRMData& jws, std::size_t limit);
    std::optional<ZRMData> bytes(std::int64_t id);
    struct Totals {
        std::int64_t count = 0;
        std::int64_t length = 0;  // the bytes of all records together
    };
    Totals totals();

  private:
    SQLite::Database& database_;
    SQLite::Statement begin_;
    SQLite::Statement commit_;
    SQLite::Statement insert_;
    SQLite::Statement update_;
    SQLite::Statement remove_;
    SQLite::Statement withId_;
    SQLite::Statement all_;
    SQLite::Statement withBytes_;
    SQLite::Statement bytes_;
    SQLite::Statement totals_;
};
