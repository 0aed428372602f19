// A compiled regular expression (ICU's syntax) over UTF-8 text.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

// Both in UTF-16 code units.
struct ZRMTextRange {
    std::size_t location = 0;
    std::size_t length = 0;

    friend bool operator==(const ZRMTextRange&, const ZRMTextRange&) = default;
};

// Immutable; may be used from any thread.
class ZRMRegularExpression {
  public:
    enum class CaseSensitivity { Sensitive, Insensitive };

    // Throws ZRMInvalidArgument for a pattern that does not compile.
    explicit ZRMRegularExpression(std::string_view pattern,
                                  CaseSensitivity sensitivity = CaseSensitivity::Sensitive);
    ~ZRMRegularExpression();
    ZRMRegularExpression(const ZRMRegularExpression&) = delete;
    ZRMRegularExpression& operator=(const ZRMRegularExpression&) = delete;

    // Absent when nothing matches, where there is no ICU, when the text is not valid UTF-8, and
    // when matching it would take more memory than ICU allows itself (8 MB of alternatives kept).
    [[nodiscard]] std::optional<ZRMTextRange> firstMatch(std::string_view text) const;

    // What firstMatch() yields if that begins at 0, else absent; the rest of the text is not
    // searched.
    [[nodiscard]] std::optional<ZRMTextRange> matchAtStart(std::string_view text) const;

  private:
    class Pattern;
    std::unique_ptr<const Pattern> pattern_;
};
