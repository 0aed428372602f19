#include "ZRMPlatform/Simulated/ZRMSimulatedDiskFaults.h"

#include <cstddef>

void ZRMSimulatedDiskFaults::failOperation(std::uint64_t number, int errorNumber) {
    numbered_.push_back({number, errorNumber});
}

int ZRMSimulatedDiskFaults::judge(ZRMSimulatedDiskOperation operation, const std::string& path) {
    const std::uint64_t number = ++count_;
    if (hook_) {
        const Hook hook = hook_;
        hook(number, operation, path);
    }
    for (const auto& fault : numbered_) {
        if (fault.number == number) {
            return fault.errorNumber;
        }
    }
    for (auto& rule : rules_) {
        if ((rule.operation && *rule.operation != operation) || rule.times == 0 ||
            !matches(rule.pathPattern, path)) {
            continue;
        }
        if (rule.skip > 0) {
            --rule.skip;
            continue;
        }
        --rule.times;
        return rule.errorNumber;
    }
    return 0;
}

bool ZRMSimulatedDiskFaults::matches(std::string_view pattern, std::string_view path) {
    std::size_t inPattern = 0;
    std::size_t inPath = 0;
    std::size_t star = std::string_view::npos;
    std::size_t afterStar = 0;
    while (inPath < path.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == '*') {
            star = inPattern++;
            afterStar = inPath;
        } else if (inPattern < pattern.size() && pattern[inPattern] == path[inPath]) {
            ++inPattern;
            ++inPath;
        } else if (star != std::string_view::npos) {
            inPattern = star + 1;
            inPath = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}
