// Looks into a signed document.
#pragma once

#include <string>

#include "Tools/zrm-inspect/ZRMInspection.h"

// {"validity":2,"results":[null],"error":null}: the object's validity (2 is well formed; null where
// the file holds no JSON), null for each signature, which is looked at but not verified, and the
// error that a reader of the library gets.
ZRMInspection zrm_inspectJws(const std::string& path);
