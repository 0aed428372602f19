// Golden/ holds one event of each type and an archive as the library writes them.
#pragma once

#include <string>

// Absolute path of Golden/.
std::string zrm_goldenDirectory();
// The content of a file there; empty where there is none.
std::string zrm_goldenFile(const std::string& name);
// The content of docs/formats/events.md in the source tree.
std::string zrm_eventsPageInSourceTree();
