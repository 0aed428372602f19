#include "ZRMPlatform/Linux/ZRMLinuxX509.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <openssl/asn1.h>
#include <openssl/objects.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

namespace {

constexpr std::size_t kMaximumUrls = 3;
constexpr std::size_t kMaximumUrlLength = 2048;

bool startsWithScheme(std::string_view url, std::string_view scheme) {
    return url.size() > scheme.size() &&
           std::ranges::equal(url.substr(0, scheme.size()), scheme, [](char left, char right) {
               return (left >= 'A' && left <= 'Z' ? left - 'A' + 'a' : left) == right;
           });
}

void addUrl(std::vector<std::string>& urls, std::string_view url) {
    const bool isWeb = startsWithScheme(url, "http://") || startsWithScheme(url, "https://");
    if (isWeb && url.size() <= kMaximumUrlLength && urls.size() < kMaximumUrls) {
        urls.emplace_back(url);
    }
}

std::string_view textOf(const ASN1_IA5STRING* text) {
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(text)),
            static_cast<std::size_t>(ASN1_STRING_length(text))};
}

void addNames(std::vector<std::string>& urls, const GENERAL_NAMES* names) {
    for (int index = 0; index < sk_GENERAL_NAME_num(names); ++index) {
        const auto* name = sk_GENERAL_NAME_value(names, index);
        if (name->type == GEN_URI) {
            addUrl(urls, textOf(name->d.uniformResourceIdentifier));
        }
    }
}

}  // namespace

ZRMLinuxX509 zrm_x509FromDer(std::span<const std::uint8_t> der) {
    zrm_prepareOpenSSL();
    if (der.empty() || der.size() > kZRMMaximumCertificateBytes) {
        return nullptr;
    }
    const ZRMLinuxOpenSSLErrors errors;
    const auto* end = der.data();
    ZRMLinuxX509 certificate(d2i_X509(nullptr, &end, static_cast<long>(der.size())), &X509_free);
    return certificate && end == der.data() + der.size() ? certificate : nullptr;
}

ZRMLinuxX509Stack zrm_x509Stack(std::span<const ZRMLinuxX509> certificates) {
    ZRMLinuxX509Stack stack(sk_X509_new_null(),
                            [](STACK_OF(X509) * owned) { sk_X509_free(owned); });
    for (const auto& certificate : certificates) {
        sk_X509_push(stack.get(), certificate.get());
    }
    return stack;
}

std::optional<ZRMDate> zrm_dateOfAsn1Time(const ASN1_TIME* time) {
    // Never freed: a thread may be here while the process ends.
    static const auto* const epoch = ASN1_TIME_set(nullptr, 0);
    int days = 0;
    int seconds = 0;
    if (time == nullptr || ASN1_TIME_diff(&days, &seconds, epoch, time) != 1) {
        return std::nullopt;
    }
    constexpr double kSecondsOfDay = 86400;
    return ZRMDate{days * kSecondsOfDay + seconds};
}

std::int64_t zrm_secondsForOpenSSL(ZRMDate date) {
    constexpr double kYear9999 = 253402300799;
    const double seconds = std::isnan(date.secondsSince1970) ? 0 : date.secondsSince1970;
    return static_cast<std::int64_t>(std::floor(std::clamp(seconds, -kYear9999, kYear9999)));
}

bool zrm_hasWeakDigest(int signatureNid) {
    static constexpr std::array kWeak{NID_md2,  NID_md4,      NID_md5,  NID_sha,
                                      NID_sha1, NID_md5_sha1, NID_mdc2, NID_ripemd160};
    int digestNid = NID_undef;
    return OBJ_find_sigid_algs(signatureNid, &digestNid, nullptr) != 1 ||
           std::ranges::find(kWeak, digestNid) != kWeak.end();
}

std::vector<std::string> zrm_ocspUrls(X509* certificate) {
    std::vector<std::string> urls;
    auto* const found = X509_get1_ocsp(certificate);
    for (int index = 0; index < sk_OPENSSL_STRING_num(found); ++index) {
        addUrl(urls, sk_OPENSSL_STRING_value(found, index));
    }
    X509_email_free(found);
    return urls;
}

std::vector<std::string> zrm_crlUrls(const X509* certificate) {
    std::vector<std::string> urls;
    const std::unique_ptr<CRL_DIST_POINTS, decltype(&CRL_DIST_POINTS_free)> points(
        static_cast<CRL_DIST_POINTS*>(
            X509_get_ext_d2i(certificate, NID_crl_distribution_points, nullptr, nullptr)),
        &CRL_DIST_POINTS_free);
    for (int index = 0; index < sk_DIST_POINT_num(points.get()); ++index) {
        const auto* point = sk_DIST_POINT_value(points.get(), index);
        const bool isComplete = point->reasons == nullptr && point->CRLissuer == nullptr;
        constexpr int kFullName = 0;
        if (isComplete && point->distpoint != nullptr && point->distpoint->type == kFullName) {
            addNames(urls, point->distpoint->name.fullname);
        }
    }
    return urls;
}
