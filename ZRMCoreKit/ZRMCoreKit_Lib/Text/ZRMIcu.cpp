#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMIcu.h"

#include <optional>

#include <dlfcn.h>

namespace {

// Absent where a function is missing. What is opened is never closed.
std::optional<ZRMIcu> openIcu() {
    // It brings ICU's other libraries along.
    void* const library = ::dlopen("libicui18n.so." U_ICU_VERSION_SHORT, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        return std::nullopt;
    }
    ZRMIcu icu;
    bool isComplete = true;
    const auto find = [&](const char* name, auto& function) {
        using Function = std::remove_reference_t<decltype(function)>;
        function = reinterpret_cast<Function>(::dlsym(library, name));
        isComplete = isComplete && function != nullptr;
    };
// ICU's headers append the release to every function's name.
#define ZRM_ICU_TEXT(name) #name
#define ZRM_ICU_FIND(name) find(ZRM_ICU_TEXT(name), icu.name)
    ZRM_ICU_FUNCTIONS(ZRM_ICU_FIND);
#undef ZRM_ICU_FIND
#undef ZRM_ICU_TEXT
    return isComplete ? std::optional(icu) : std::nullopt;
}

}  // namespace

const ZRMIcu* ZRMIcu::shared() {
    static const auto icu = openIcu();
    return icu ? &*icu : nullptr;
}
