// Prints docs/formats/events.md.
#include <cstdio>

#include "ZRMCloudKit/ZRMCloudKit_Tests/Events/ZRMEventsPage.h"

int main() {
    return std::fputs(zrm_eventsPage().c_str(), stdout) == EOF ? 1 : 0;
}
