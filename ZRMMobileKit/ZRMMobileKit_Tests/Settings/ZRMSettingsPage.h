// The page about the settings document, made from the table that the library works by.
#pragma once

#include <string>

// The whole of docs/formats/settings.md.
std::string zrm_settingsPage();
