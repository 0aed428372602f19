// Property lists as the Linux body reads them: whatever passes the look over the bytes is read in
// bounded time and memory, and what is written of it reads as the same kind of list or, where a
// text is no UTF-8, as none.
#include "Fuzz/ZRMFuzz.h"
#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto list = zrm_readPropertyList(input);
    if (!list) {
        return;
    }
    const auto type = plist_get_node_type(list.get());
    const auto bytes = zrm_writeBinaryPropertyList(list.get());
    const auto again = zrm_readPropertyList(bytes);
    ZRM_FUZZ_ASSERT(!again || plist_get_node_type(again.get()) == type);
}
