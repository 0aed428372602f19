#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMRegularExpression.h"

#include <string>

#include <unicode/regex.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMUnicodeString.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

// `attempt` makes the matcher look; its match is the result.
template <class Attempt>
std::optional<ZRMTextRange> match(const icu::RegexPattern& pattern, std::string_view text,
                                  Attempt attempt) {
    if (!zrm_isValidUtf8(text)) {
        return std::nullopt;
    }
    const auto unicode = zrm_unicodeString(text);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(unicode, status));
    if (U_FAILURE(status) || !attempt(*matcher, status) || U_FAILURE(status)) {
        return std::nullopt;
    }
    const auto start = static_cast<std::size_t>(matcher->start(status));
    return ZRMTextRange{start, static_cast<std::size_t>(matcher->end(status)) - start};
}

}  // namespace

class ZRMRegularExpression::Pattern {
  public:
    Pattern(std::string_view pattern, std::uint32_t flags) {
        UErrorCode status = U_ZERO_ERROR;
        UParseError where{};
        compiled_.reset(
            icu::RegexPattern::compile(zrm_unicodeString(pattern), flags, where, status));
        if (U_FAILURE(status)) {
            throw ZRMInvalidArgument(std::string("Invalid regular expression: ") +
                                     u_errorName(status));
        }
    }

    [[nodiscard]] const icu::RegexPattern& compiled() const { return *compiled_; }

  private:
    std::unique_ptr<icu::RegexPattern> compiled_;
};

ZRMRegularExpression::ZRMRegularExpression(std::string_view pattern, CaseSensitivity sensitivity)
    : pattern_(std::make_unique<Pattern>(
          pattern, sensitivity == CaseSensitivity::Insensitive ? UREGEX_CASE_INSENSITIVE : 0)) {}

ZRMRegularExpression::~ZRMRegularExpression() = default;

std::optional<ZRMTextRange> ZRMRegularExpression::firstMatch(std::string_view text) const {
    return match(pattern_->compiled(), text, [](icu::RegexMatcher& matcher, UErrorCode& status) {
        return matcher.find(status) != 0;
    });
}

std::optional<ZRMTextRange> ZRMRegularExpression::matchAtStart(std::string_view text) const {
    return match(pattern_->compiled(), text, [](icu::RegexMatcher& matcher, UErrorCode& status) {
        return matcher.lookingAt(status) != 0;
    });
}
