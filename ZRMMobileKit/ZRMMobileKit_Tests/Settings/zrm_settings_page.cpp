// Prints docs/formats/settings.md.
#include <cstdio>

#include "ZRMMobileKit/ZRMMobileKit_Tests/Settings/ZRMSettingsPage.h"

int main() {
    return std::fputs(zrm_settingsPage().c_str(), stdout) == EOF ? 1 : 0;
}
