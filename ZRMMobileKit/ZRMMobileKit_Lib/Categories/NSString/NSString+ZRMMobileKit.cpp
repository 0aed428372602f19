#include <array>

#include "ZRMMobileKit/ZRMLoginResult.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

// By value of the result.
constexpr std::array<const char*, 7> kTexts = {
    "SUCCESS",           "INCORRECT_LOGIN", "INCORRECT_PASSWORD", "DROP_CONNECTION",
    "CLOSE_APPLICATION", "AUTH_TIMEOUT",    "UNKNOWN_ERROR",
};

}  // namespace

std::string zrm_stringFromLoginResult(ZRMLoginResult result) {
    const auto index = static_cast<unsigned>(result);
    if (index >= kTexts.size()) {
        throw ZRMAssertionFailure("Unsupported login result");
    }
    return kTexts[index];
}
