// The page about the events, made from the tables that the library writes them by.
#pragma once

#include <string>

// The whole of docs/formats/events.md.
std::string zrm_eventsPage();
