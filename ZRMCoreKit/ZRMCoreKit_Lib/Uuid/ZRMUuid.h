// Random identifiers.
#pragma once

#include <string>

#include "ZRMPlatform/Ports/ZRMRandom.h"

// The text of a new random (version 4) UUID: 36 characters, upper case, with hyphens.
[[nodiscard]] std::string zrm_makeUuidText(ZRMRandom& random);
