#include "Benchmarks/ZRMFigure.h"

#include <array>
#include <cmath>
#include <cstdio>

bool ZRMFigure::isMet() const {
    switch (must) {
        case Must::BeAtMost:
            return value <= target;
        case Must::BeAtLeast:
            return value >= target;
        case Must::BeKnown:
            break;
    }
    return std::isfinite(value);
}

std::string ZRMFigure::targetText() const {
    if (must == Must::BeKnown) {
        return "-";
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%s %.10g",
                  must == Must::BeAtMost ? "<=" : ">=", target);
    return text.data();
}

std::string zrm_tableLine(const ZRMFigure& figure) {
    const char* const met = figure.must == ZRMFigure::Must::BeKnown ? "-" : "met";
    std::array<char, 256> text{};
    std::snprintf(text.data(), text.size(), "  %-74.160s %12.3f %-8s %-10s %s\n",
                  figure.name.c_str(), figure.value, figure.unit.c_str(),
                  figure.targetText().c_str(), figure.isMet() ? met : "NOT MET");
    return text.data();
}

ZRMDictionary zrm_jsonFromFigure(const ZRMFigure& figure) {
    return {{"name", figure.name},
            {"value", std::isfinite(figure.value) ? ZRMJsonValue(figure.value) : nullptr},
            {"unit", figure.unit},
            {"target", figure.targetText()},
            {"met", figure.isMet()}};
}
