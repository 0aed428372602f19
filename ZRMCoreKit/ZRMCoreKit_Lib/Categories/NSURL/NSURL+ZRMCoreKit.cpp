#include <boost/url/encode.hpp>
#include <boost/url/rfc/pchars.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRegularExpression/NSRegularExpression+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSURL/NSURL+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

bool zrm_isValidHttpUrl(const ZRMUrl& url) {
    constexpr std::size_t kHostLimit = 256;
    constexpr std::size_t kMaximumLength = 2000;
    return zrm_utf16Length(url.host().value_or("")) < kHostLimit &&
           zrm_utf16Length(url.absoluteString()) <= kMaximumLength &&
           zrm_isValidHttpUrlString(url.absoluteString());
}

std::string zrm_directoryUrlText(std::string_view path) {
    // A ";" would read as the beginning of a parameter.
    constexpr auto kUnescaped = boost::urls::pchars + '/' - ';';
    auto text = "file://" + boost::urls::encode(path, kUnescaped);
    if (!text.ends_with('/')) {
        text += '/';
    }
    return text;
}
