#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMSqliteError.h"

#include <sqlite3.h>

ZRMError zrm_errorFromSqlite(const SQLite::Exception& exception) {
    const int code = exception.getExtendedErrorCode() > 0 ? exception.getExtendedErrorCode()
                                                          : exception.getErrorCode();
    return ZRMError::withDescription(kZRMSqliteErrorDomain, code, exception.what());
}

bool zrm_isStoreDamage(const ZRMError& error) {
    // The extended code's low byte is the kind of failure.
    const auto kind = error.code() & 0xff;
    return error.domain() == kZRMSqliteErrorDomain &&
           (kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB);
}
