#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"

#include <algorithm>

#include <boost/url/parse.hpp>
#include <boost/url/pct_string_view.hpp>
#include <boost/url/url_view.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

// Of a part of a URL, whose escapes are known to be well-formed.
std::string decoded(std::string_view encoded) {
    return boost::urls::pct_string_view(encoded).decode({},
                                                        boost::urls::string_token::return_string{});
}

// The parser ends an authority at a port that is no number and takes the rest for the path.
bool hasMalformedAuthority(const boost::urls::url_view& url) {
    const std::string_view path = url.encoded_path();
    return url.has_authority() && !path.empty() && path.front() != '/';
}

}  // namespace

std::optional<ZRMUrl> ZRMUrl::fromText(std::string_view text) {
    const auto parsed = boost::urls::parse_uri_reference(text);
    if (!parsed || hasMalformedAuthority(*parsed)) {
        return std::nullopt;
    }
    std::optional<std::string> scheme;
    if (parsed->has_scheme()) {
        scheme = std::string(parsed->scheme());
    }
    std::optional<std::string> host;
    if (auto address = parsed->host_address(); !address.empty()) {
        host = std::move(address);
    }
    return ZRMUrl(text, std::move(scheme), std::move(host));
}

// Splits by hand: the parser's own view of the items fails on a query that is there but empty.
std::optional<std::string> ZRMUrl::queryItem(std::string_view name) const {
    const auto parsed = boost::urls::parse_uri_reference(text_);
    std::string_view rest = parsed->encoded_query();
    while (!rest.empty()) {
        const auto item = rest.substr(0, rest.find('&'));
        rest.remove_prefix(std::min(item.size() + 1, rest.size()));
        const auto nameEnd = item.find('=');
        if (decoded(item.substr(0, nameEnd)) != name) {
            continue;
        }
        if (nameEnd == std::string_view::npos) {
            return std::nullopt;
        }
        auto value = decoded(item.substr(nameEnd + 1));
        return zrm_isValidUtf8(value) ? std::optional(std::move(value)) : std::nullopt;
    }
    return std::nullopt;
}
