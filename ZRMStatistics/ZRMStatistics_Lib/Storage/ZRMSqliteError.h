// Database failures as errors.
#pragma once

#include <SQLiteCpp/Exception.h>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

// The code is SQLite's extended result code.
inline constexpr const char* kZRMSqliteErrorDomain = "NSSQLiteErrorDomain";

ZRMError zrm_errorFromSqlite(const SQLite::Exception& exception);

// Whether the error says that the file's content is broken (not that it cannot be had now).
[[nodiscard]] bool zrm_isStoreDamage(const ZRMError& error);
