#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

std::string decoded(boost::urls::pct_string_view encoded) {
    return encoded.decode({}, boost::urls::string_token::return_string{});
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

std::optional<std::string> ZRMUrl::queryItem(std::string_view name) const {
    const auto parsed = boost::urls::parse_uri_reference(text_);
    for (const auto& item : parsed->encoded_params()) {
        if (decoded(item.key) != name) {
            continue;
        }
        auto value = decoded(item.value);
        return item.has_value && zrm_isValidUtf8(value) ? std::optional(std::move(value))
                                                        : std::nullopt;
    }
    return std::nullopt;
}
