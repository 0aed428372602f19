#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRegularExpression/NSRegularExpression+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

// "&amp;" is part of the agreed expression: it admits "&", "a", "m", "p" and ";".
constexpr std::string_view kHttpUrlPattern =
    R"re(((http|https)\:\/\/)?[a-zA-Z0-9\-\.]+\.[a-zA-Z]{2,3}(:[a-zA-Z0-9]*)?/?([a-zA-Z0-9\-\._\?\,\'/\\\+&amp;%\$#\=~])*)re";

}  // namespace

std::shared_ptr<const ZRMRegularExpression> zrm_httpUrlRegularExpression() {
    static const auto* const expression = new auto(std::make_shared<const ZRMRegularExpression>(
        kHttpUrlPattern, ZRMRegularExpression::CaseSensitivity::Insensitive));
    return *expression;
}

bool zrm_fullStringMatch(const ZRMRegularExpression& expression, std::string_view text) {
    const auto match = expression.matchAtStart(text);
    return match && match->length == zrm_utf16Length(text);
}

bool zrm_isValidHttpUrlString(std::string_view text) {
    return zrm_fullStringMatch(*zrm_httpUrlRegularExpression(), text);
}
