#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMRegularExpression.h"

#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMIcu.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMUtf16.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

struct Close {
    void operator()(URegularExpression* expression) const {
        ZRMIcu::shared()->uregex_close(expression);
    }
};
using Expression = std::unique_ptr<URegularExpression, Close>;

}  // namespace

class ZRMRegularExpression::Pattern {
  public:
    Pattern(std::string_view pattern, std::uint32_t flags) : icu_(ZRMIcu::shared()) {
        if (icu_ == nullptr) {
            return;
        }
        const auto units = zrm_utf16FromUtf8(pattern);
        UErrorCode status = U_ZERO_ERROR;
        UParseError where{};
        compiled_.reset(icu_->uregex_open(units.data(), static_cast<std::int32_t>(units.size()),
                                          flags, &where, &status));
        if (U_FAILURE(status)) {
            throw ZRMInvalidArgument(std::string("Invalid regular expression: ") +
                                     icu_->u_errorName(status));
        }
    }

    // `attempt` is the function that looks for the match. It looks with a copy, which is what
    // threads may not share.
    std::optional<ZRMTextRange> match(std::string_view text,
                                      decltype(&::uregex_find) ZRMIcu::*attempt) const {
        constexpr std::int32_t kFromTheStart = -1;
        constexpr std::int32_t kWholeMatch = 0;
        if (!compiled_ || !zrm_isValidUtf8(text)) {
            return std::nullopt;
        }
        const auto units = zrm_utf16FromUtf8(text);
        UErrorCode status = U_ZERO_ERROR;
        const Expression matcher(icu_->uregex_clone(compiled_.get(), &status));
        icu_->uregex_setText(matcher.get(), units.data(), static_cast<std::int32_t>(units.size()),
                             &status);
        if (!(icu_->*attempt)(matcher.get(), kFromTheStart, &status) || U_FAILURE(status)) {
            return std::nullopt;
        }
        const auto start = icu_->uregex_start(matcher.get(), kWholeMatch, &status);
        const auto end = icu_->uregex_end(matcher.get(), kWholeMatch, &status);
        return ZRMTextRange{static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)};
    }

  private:
    const ZRMIcu* const icu_;
    Expression compiled_;
};

ZRMRegularExpression::ZRMRegularExpression(std::string_view pattern, CaseSensitivity sensitivity)
    : pattern_(std::make_unique<Pattern>(
          pattern, sensitivity == CaseSensitivity::Insensitive ? UREGEX_CASE_INSENSITIVE : 0)) {}

ZRMRegularExpression::~ZRMRegularExpression() = default;

std::optional<ZRMTextRange> ZRMRegularExpression::firstMatch(std::string_view text) const {
    return pattern_->match(text, &ZRMIcu::uregex_find);
}

std::optional<ZRMTextRange> ZRMRegularExpression::matchAtStart(std::string_view text) const {
    return pattern_->match(text, &ZRMIcu::uregex_lookingAt);
}
