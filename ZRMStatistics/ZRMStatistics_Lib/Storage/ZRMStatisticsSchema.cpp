#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsSchema.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticEntity.h"

namespace {

// Kept beside the model's attributes so that sizes are known without reading the bytes.
constexpr const char* kLengthColumn = "jwsLength";

const char* columnType(ZRMAttributeType type) {
    switch (type) {
        case ZRMAttributeType::Binary:
            return "BLOB";
        case ZRMAttributeType::Double:
            return "REAL";
        case ZRMAttributeType::Integer16:
            return "INTEGER";
    }
    throw ZRMAssertionFailure("Unsupported attribute type");
}

int storedVersion(SQLite::Database& database) {
    return database.execAndGet("PRAGMA user_version").getInt();
}

std::vector<std::string> columnsOf(SQLite::Database& database, const std::string& table) {
    std::vector<std::string> names;
    SQLite::Statement columns(database, "SELECT name FROM pragma_table_info(?)");
    columns.bind(1, table);
    while (columns.executeStep()) {
        names.push_back(columns.getColumn(0).getString());
    }
    return names;
}

bool holds(const std::vector<std::string>& names, const std::string& name) {
    return std::ranges::find(names, name) != names.end();
}

void addColumn(SQLite::Database& database, const std::string& table, const std::string& column,
               const char* type) {
    database.exec("ALTER TABLE " + table + " ADD COLUMN " + column + " " + type);
}

void bringTableUpTo(SQLite::Database& database, const ZRMEntityDescription& entity) {
    database.exec("CREATE TABLE IF NOT EXISTS " + entity.name + " (id INTEGER PRIMARY KEY)");
    const auto present = columnsOf(database, entity.name);
    // The bytes come last in a row, behind what is read without them.
    for (const bool isBinaryTurn : {false, true}) {
        for (const auto& attribute : entity.attributes) {
            const bool isBinary = attribute.type == ZRMAttributeType::Binary;
            if (isBinary == isBinaryTurn && !holds(present, attribute.name)) {
                addColumn(database, entity.name, attribute.name, columnType(attribute.type));
            }
        }
        if (!isBinaryTurn && entity.name == ZRMStatisticEntity::kEntityName &&
            !holds(present, kLengthColumn)) {
            addColumn(database, entity.name, kLengthColumn, "INTEGER");
        }
    }
}

void indexQueue(SQLite::Database& database) {
    const std::string table = ZRMStatisticEntity::kEntityName;
    database.exec("UPDATE " + table + " SET jwsLength = length(jws) WHERE jwsLength IS NULL");
    // Everything about the queue but the bytes, in the queue's order.
    database.exec("CREATE INDEX IF NOT EXISTS " + table + "_queue ON " + table +
                  " (storeTimestamp, id, lastTryTimestamp, activeDays, priority, jwsLength)");
    // The last eight bytes of gzip data are a checksum and a length: a short key that hardly any
    // two events share.
    database.exec("CREATE INDEX IF NOT EXISTS " + table + "_trailer ON " + table +
                  " (substr(jws, -8))");
}

bool isUpTo(SQLite::Database& database, const ZRMManagedObjectModel& model) {
    return storedVersion(database) == model.version &&
           std::ranges::all_of(model.entities, [&](const auto& entity) {
               const auto present = columnsOf(database, entity.name);
               return std::ranges::all_of(entity.attributes, [&](const auto& attribute) {
                   return holds(present, attribute.name);
               });
           });
}

}  // namespace

bool zrm_modelHoldsStatistics(const ZRMManagedObjectModel& model) {
    static const std::array<ZRMAttributeDescription, 5> kRead = {{
        {"jws", ZRMAttributeType::Binary},
        {"storeTimestamp", ZRMAttributeType::Double},
        {"lastTryTimestamp", ZRMAttributeType::Double},
        {"activeDays", ZRMAttributeType::Integer16},
        {"priority", ZRMAttributeType::Integer16},
    }};
    const auto* entity = model.entityNamed(ZRMStatisticEntity::kEntityName);
    return entity != nullptr && std::ranges::all_of(kRead, [entity](const auto& attribute) {
               const auto* found = entity->attributeNamed(attribute.name);
               return found != nullptr && found->type == attribute.type;
           });
}

std::optional<ZRMError> zrm_refuseNewerStore(SQLite::Database& database,
                                             const ZRMManagedObjectModel& model) {
    const int version = storedVersion(database);
    if (version <= model.version) {
        return std::nullopt;
    }
    return ZRMError::withDescription(kZRMStoreErrorDomain, ZRMStoreErrorNewerVersion,
                                     "The store has version " + std::to_string(version) +
                                         ", newer than the model's " +
                                         std::to_string(model.version));
}

void zrm_migrateStore(SQLite::Database& database, const ZRMManagedObjectModel& model) {
    if (isUpTo(database, model)) {
        return;
    }
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    for (const auto& entity : model.entities) {
        bringTableUpTo(database, entity);
    }
    indexQueue(database);
    database.exec("PRAGMA user_version = " + std::to_string(model.version));
    transaction.commit();
}
