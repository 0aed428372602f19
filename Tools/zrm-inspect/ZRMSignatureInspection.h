// Looks into the code signature of an executable file.
#pragma once

#include <string>

#include "Tools/zrm-inspect/ZRMInspection.h"

// {"slices":[{"offset":0,"signatures":[{"hashType":1,…},{"hashType":2,…}]}],"error":null}: both
// descriptors of the file's image, or of each slice of a universal file; hashes that are absent are
// null. An empty `infoPlistPath` means none. Good where every slice is an executable of the format.
ZRMInspection zrm_inspectSignature(const std::string& path, const std::string& infoPlistPath);
