// A URL or relative reference, read once and kept as it was written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Immutable and freely copied; may be used from any thread.
class ZRMUrl {
  public:
    // Absent when the text is no URL and no relative reference (RFC 3986): "abc" and the empty text
    // are references, "http://a b" is nothing.
    static std::optional<ZRMUrl> fromText(std::string_view text);

    // The text it was made from, unchanged.
    [[nodiscard]] const std::string& absoluteString() const { return text_; }
    // As written, without the colon; absent in a relative reference.
    [[nodiscard]] const std::optional<std::string>& scheme() const { return scheme_; }
    // Percent-decoded, without the brackets of an IPv6 address; absent where there is none.
    [[nodiscard]] const std::optional<std::string>& host() const { return host_; }
    // The percent-decoded value of the first query item of that (decoded) name. Absent when there
    // is no such item, when it has no "=", and when the value decodes to ill-formed UTF-8. A "+"
    // stands for itself.
    [[nodiscard]] std::optional<std::string> queryItem(std::string_view name) const;

    friend bool operator==(const ZRMUrl& left, const ZRMUrl& right) {
        return left.text_ == right.text_;
    }

  private:
    ZRMUrl(std::string_view text, std::optional<std::string> scheme,
           std::optional<std::string> host)
        : text_(text), scheme_(std::move(scheme)), host_(std::move(host)) {}

    std::string text_;
    std::optional<std::string> scheme_;
    std::optional<std::string> host_;
};
