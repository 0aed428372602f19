#include "ZRMPlatform/Linux/ZRMLinuxTrustPath.h"

#include <utility>

#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

namespace {

constexpr int kMaximumPathLength = 16;
constexpr int kSecurityLevelOf112Bits = 2;

using Context = std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)>;

struct Search {
    X509* leaf;
    STACK_OF(X509) * others;
    STACK_OF(X509) * anchors;
    ZRMDate date;
};

std::string reasonOf(X509_STORE_CTX* context) {
    return std::string(X509_verify_cert_error_string(X509_STORE_CTX_get_error(context))) +
           " (certificate " + std::to_string(X509_STORE_CTX_get_error_depth(context)) + ")";
}

std::vector<ZRMLinuxX509> certificatesOf(X509_STORE_CTX* context) {
    std::vector<ZRMLinuxX509> certificates;
    auto* const chain = X509_STORE_CTX_get0_chain(context);
    for (int index = 0; index < sk_X509_num(chain); ++index) {
        auto* const certificate = sk_X509_value(chain, index);
        X509_up_ref(certificate);
        certificates.emplace_back(certificate, &X509_free);
    }
    return certificates;
}

// What path validation in OpenSSL leaves open or is lenient about; empty when all is well.
std::string complaintAbout(const std::vector<ZRMLinuxX509>& path) {
    for (std::size_t index = 0; index < path.size(); ++index) {
        auto* const certificate = path[index].get();
        if ((X509_get_extension_flags(certificate) & EXFLAG_INVALID) != 0) {
            return "malformed extensions (certificate " + std::to_string(index) + ")";
        }
        constexpr int kByBasicConstraints = 1;
        if (index > 0 && X509_check_ca(certificate) != kByBasicConstraints) {
            return "an issuer is no authority (certificate " + std::to_string(index) + ")";
        }
    }
    if ((X509_get_key_usage(path.front().get()) & (KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION)) ==
        0) {
        return "the leaf's key is not for signing data";
    }
    return {};
}

ZRMLinuxTrustPath search(const Search& what, unsigned long flags) {
    const Context context(X509_STORE_CTX_new(), &X509_STORE_CTX_free);
    if (!context || X509_STORE_CTX_init(context.get(), nullptr, what.leaf, what.others) != 1) {
        return {{}, "the evaluation could not be set up"};
    }
    X509_STORE_CTX_set0_trusted_stack(context.get(), what.anchors);
    auto* const parameters = X509_STORE_CTX_get0_param(context.get());
    X509_VERIFY_PARAM_set_flags(parameters, flags);
    X509_VERIFY_PARAM_set_time(parameters, zrm_secondsForOpenSSL(what.date));
    X509_VERIFY_PARAM_set_depth(parameters, kMaximumPathLength);
    X509_VERIFY_PARAM_set_auth_level(parameters, kSecurityLevelOf112Bits);
    if (X509_verify_cert(context.get()) != 1) {
        return {{}, reasonOf(context.get())};
    }
    auto path = certificatesOf(context.get());
    auto complaint = path.empty() ? "there is no path" : complaintAbout(path);
    return complaint.empty() ? ZRMLinuxTrustPath{std::move(path), {}}
                             : ZRMLinuxTrustPath{{}, std::move(complaint)};
}

}  // namespace

ZRMLinuxTrustPath zrm_findTrustPath(const ZRMLinuxX509& leaf,
                                    const std::vector<ZRMLinuxX509>& others,
                                    const std::vector<ZRMLinuxX509>& anchors, ZRMDate date) {
    const auto otherStack = zrm_x509Stack(others);
    const auto anchorStack = zrm_x509Stack(anchors);
    const Search what{leaf.get(), otherStack.get(), anchorStack.get(), date};
    auto whole = search(what, 0);
    return whole.certificates.empty() ? search(what, X509_V_FLAG_PARTIAL_CHAIN) : whole;
}
