#include "Fuzz/ZRMFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    zrm_fuzz({bytes, length});
    return 0;
}
