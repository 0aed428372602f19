// A measured figure with what it must reach, and the forms it is shown in.
#pragma once

#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

struct ZRMFigure {
    enum class Must { BeAtMost, BeAtLeast, BeKnown };  // the last without a target

    std::string name;
    double value = 0;
    std::string unit;
    double target = 0;
    Must must = Must::BeAtMost;

    // Never for a value that is no number.
    [[nodiscard]] bool isMet() const;
    // Such as "<= 2.5"; "-" without a target.
    [[nodiscard]] std::string targetText() const;
};

using ZRMFigures = std::vector<ZRMFigure>;

// One line of the table, with its line break.
[[nodiscard]] std::string zrm_tableLine(const ZRMFigure& figure);

// {"name","value","unit","target","met"}, the target as text; a value that is no number is null.
[[nodiscard]] ZRMDictionary zrm_jsonFromFigure(const ZRMFigure& figure);
