#include <algorithm>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRegularExpression/NSRegularExpression+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

// "&amp;" is part of the agreed expression: it admits "&", "a", "m", "p" and ";".
constexpr std::string_view kHttpUrlPattern =
    R"re(((http|https)\:\/\/)?[a-zA-Z0-9\-\.]+\.[a-zA-Z]{2,3}(:[a-zA-Z0-9]*)?/?([a-zA-Z0-9\-\._\?\,\'/\\\+&amp;%\$#\=~])*)re";

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isAlphanumeric(char character) {
    return isLetter(character) || (character >= '0' && character <= '9');
}

bool isOfHost(char character) {
    return isAlphanumeric(character) || character == '-' || character == '.';
}

bool isOfPath(char character) {
    return isOfHost(character) ||
           std::string_view("_?,'/\\+&;%$#=~").find(character) != std::string_view::npos;
}

template <class IsOne>
std::size_t runLength(std::string_view text, IsOne isOne) {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isOne) - text.begin());
}

// Of a scheme with its colon and slashes, or 0.
std::size_t schemeLength(std::string_view text) {
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (zrm_lowercasedText(text.substr(0, scheme.size())) == scheme) {
            return scheme.size();
        }
    }
    return 0;
}

// Where the host that the text begins with ends, or 0 without one: behind the last dot that has
// letters behind it, with three of them if there are as many.
std::size_t hostEnd(std::string_view text) {
    constexpr std::size_t kFewestLetters = 2;
    constexpr std::size_t kMostLetters = 3;
    // The run of a host's characters holds all dots in question and the letters behind them.
    const auto host = text.substr(0, runLength(text, isOfHost));
    for (auto dot = host.rfind('.'); dot != std::string_view::npos && dot > 0;
         dot = host.rfind('.', dot - 1)) {
        const auto letters = runLength(host.substr(dot + 1, kMostLetters), isLetter);
        if (letters >= kFewestLetters) {
            return dot + 1 + letters;
        }
    }
    return 0;
}

// What the expression finds at the start of ASCII text, step by step as it would, if that is the
// whole text. It saves nearly every process from compiling the expression.
bool isWholeHttpUrl(std::string_view text) {
    const auto scheme = schemeLength(text);
    auto end = hostEnd(text.substr(scheme));
    if (end == 0) {
        // Without a scheme there can be a match only if the scheme's own letters were a host's,
        // which ends at the colon and so has no dot.
        return false;
    }
    auto rest = text.substr(scheme + end);
    if (rest.starts_with(':')) {
        rest.remove_prefix(1 + runLength(rest.substr(1), isAlphanumeric));
    }
    return runLength(rest, isOfPath) == rest.size();
}

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
    // Beyond ASCII a letter may fold to one of the expression's.
    return zrm_isAscii(text) ? isWholeHttpUrl(text)
                             : zrm_fullStringMatch(*zrm_httpUrlRegularExpression(), text);
}
