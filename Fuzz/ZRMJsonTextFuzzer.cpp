// JSON: what reads can be written, reads back the same in both layouts, and keeps the reader's
// limits.
#include <algorithm>
#include <cmath>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

constexpr int kMaximumDepth = 32;

double numberOf(const ZRMJsonValue& value) {
    if (const auto* number = value.if_int64()) {
        return static_cast<double>(*number);
    }
    if (const auto* number = value.if_uint64()) {
        return static_cast<double>(*number);
    }
    return value.get_double();
}

// Reading rounds a decimal fraction to one of the doubles around it, not always the nearest, and
// a double that is whole may read back as an integer.
bool isSameNumber(const ZRMJsonValue& left, const ZRMJsonValue& right) {
    if (!left.is_double() && !right.is_double()) {
        return left == right;
    }
    const double tolerance = std::abs(numberOf(left)) * 1e-14 + 1e-307;
    return std::abs(numberOf(left) - numberOf(right)) <= tolerance;
}

bool isSame(const ZRMJsonValue& left, const ZRMJsonValue& right) {
    if (left.is_number() && right.is_number()) {
        return isSameNumber(left, right);
    }
    if (left.is_array() && right.is_array()) {
        return std::ranges::equal(left.get_array(), right.get_array(), isSame);
    }
    if (left.is_object() && right.is_object()) {
        return std::ranges::equal(
            left.get_object(), right.get_object(), [](const auto& one, const auto& other) {
                return one.key() == other.key() && isSame(one.value(), other.value());
            });
    }
    return left == right;
}

int depthOf(const ZRMJsonValue& value) {
    int deepest = 0;
    if (const auto* array = value.if_array()) {
        for (const auto& element : *array) {
            deepest = std::max(deepest, depthOf(element));
        }
        return deepest + 1;
    }
    if (const auto* object = value.if_object()) {
        for (const auto& member : *object) {
            deepest = std::max(deepest, depthOf(member.value()));
        }
        return deepest + 1;
    }
    return 0;
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto value = zrm_jsonFromData(input);
    const auto withoutDuplicates = zrm_jsonFromData(input, {.refusesDuplicateNames = true});
    if (!value) {
        ZRM_FUZZ_ASSERT(!withoutDuplicates);
        ZRM_FUZZ_ASSERT(value.error().code() == kZRMJsonErrorCode);
        return;
    }
    ZRM_FUZZ_ASSERT(zrm_isValidUtf8(zrm_textOfInput(input)));
    ZRM_FUZZ_ASSERT(depthOf(value.value()) <= kMaximumDepth);
    ZRM_FUZZ_ASSERT(!withoutDuplicates || withoutDuplicates.value() == value.value());
    ZRM_FUZZ_ASSERT(!zrm_jsonFromData(input, {.maximumBytes = input.size() - 1}));

    const auto compact = zrm_compactJsonText(value.value());
    const auto pretty = zrm_prettyJsonText(value.value());
    ZRM_FUZZ_ASSERT(compact && pretty);
    const ZRMJsonReadingOptions strictly{.refusesDuplicateNames = true};
    const auto fromCompact = zrm_jsonFromText(compact.value(), strictly);
    const auto fromPretty = zrm_jsonFromText(pretty.value(), strictly);
    ZRM_FUZZ_ASSERT(fromCompact && isSame(fromCompact.value(), value.value()));
    ZRM_FUZZ_ASSERT(fromPretty && fromPretty.value() == fromCompact.value());
}
