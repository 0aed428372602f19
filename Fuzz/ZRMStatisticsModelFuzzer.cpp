// The store's data model: what reads has names that are safe in SQL, and merges with itself.
#include <algorithm>
#include <array>
#include <cctype>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMManagedObjectModel.h"

namespace {

bool isSafe(const std::string& name) {
    return !name.empty() && std::ranges::all_of(name, [](unsigned char letter) {
        return letter < 0x80 && (std::isalnum(letter) != 0 || letter == '_');
    });
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto model = zrm_managedObjectModelFromJson(input);
    if (!model) {
        return;
    }
    ZRM_FUZZ_ASSERT(model.value().version >= 1);
    for (const auto& entity : model.value().entities) {
        ZRM_FUZZ_ASSERT(isSafe(entity.name));
        for (const auto& attribute : entity.attributes) {
            ZRM_FUZZ_ASSERT(isSafe(attribute.name));
        }
    }
    const std::array twice = {model.value(), model.value()};
    const auto merged = zrm_modelByMergingModels(twice);
    ZRM_FUZZ_ASSERT(merged && merged.value() == model.value());
}
