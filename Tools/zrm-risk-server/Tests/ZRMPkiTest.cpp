#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include "Tools/zrm-risk-server/ZRMCertificateMaker.h"
#include "Tools/zrm-risk-server/ZRMPki.h"

namespace {

namespace fs = std::filesystem;

std::string content(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

ZRMCertificatePointer certificateIn(const fs::path& path) {
    return zrm_certificateFromPem(content(path));
}

// Making keys is slow, so the tests that only look share one directory.
class ZRMPkiTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        directory() = fs::path(testing::TempDir()) / ("zrm-pki-" + std::to_string(::getpid()));
        fs::remove_all(directory());
        ZRMPki::openOrMake(directory() / "below");
    }
    static void TearDownTestSuite() { fs::remove_all(directory()); }

    static fs::path& directory() {
        static fs::path path;
        return path;
    }
    static ZRMPki pki() { return ZRMPki::openOrMake(directory() / "below"); }

    // The error of a path validation, X509_V_OK when the chain holds.
    static int verify(const fs::path& anchor, const fs::path& intermediate, const fs::path& leaf,
                      int purpose) {
        const std::unique_ptr<X509_STORE, void (*)(X509_STORE*)> store(X509_STORE_new(),
                                                                       X509_STORE_free);
        const auto anchorCertificate = certificateIn(anchor);
        X509_STORE_add_cert(store.get(), anchorCertificate.get());
        const std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)> untrusted(
            sk_X509_new_null(), [](STACK_OF(X509) * stack) { sk_X509_pop_free(stack, X509_free); });
        if (!intermediate.empty()) {
            sk_X509_push(untrusted.get(), certificateIn(intermediate).release());
        }
        const auto leafCertificate = certificateIn(leaf);
        const std::unique_ptr<X509_STORE_CTX, void (*)(X509_STORE_CTX*)> context(
            X509_STORE_CTX_new(), X509_STORE_CTX_free);
        X509_STORE_CTX_init(context.get(), store.get(), leafCertificate.get(), untrusted.get());
        X509_VERIFY_PARAM_set_flags(X509_STORE_CTX_get0_param(context.get()),
                                    X509_V_FLAG_X509_STRICT);
        if (purpose != 0) {
            X509_STORE_CTX_set_purpose(context.get(), purpose);
        }
        X509_verify_cert(context.get());
        return X509_STORE_CTX_get_error(context.get());
    }
};

TEST_F(ZRMPkiTest, SigningChainLeadsFromLeafOverIntermediateToTheRoot) {
    const auto made = pki();
    EXPECT_EQ(verify(made.rootCertificateFile(), made.intermediateCertificateFile(),
                     made.signingCertificateFile(), 0),
              X509_V_OK);
    EXPECT_NE(verify(made.rootCertificateFile(), {}, made.signingCertificateFile(), 0), X509_V_OK);
}

TEST_F(ZRMPkiTest, TlsServerChainsToItsOwnAuthorityForServers) {
    const auto made = pki();
    EXPECT_EQ(
        verify(made.tlsAuthorityFile(), {}, made.tlsCertificateFile(), X509_PURPOSE_SSL_SERVER),
        X509_V_OK);
    EXPECT_NE(
        verify(made.tlsAuthorityFile(), {}, made.tlsCertificateFile(), X509_PURPOSE_SSL_CLIENT),
        X509_V_OK);
}

TEST_F(ZRMPkiTest, TreesDoNotVouchForEachOther) {
    const auto made = pki();
    EXPECT_NE(verify(made.rootCertificateFile(), made.intermediateCertificateFile(),
                     made.tlsCertificateFile(), 0),
              X509_V_OK);
    EXPECT_NE(verify(made.tlsAuthorityFile(), made.intermediateCertificateFile(),
                     made.signingCertificateFile(), 0),
              X509_V_OK);
}

TEST_F(ZRMPkiTest, ServerCertificateBearsTheDocumentedNames) {
    const auto certificate = certificateIn(pki().tlsCertificateFile());
    for (const auto* name : {"localhost", "risk.example.com", "other.example.com"}) {
        EXPECT_EQ(X509_check_host(certificate.get(), name, 0, 0, nullptr), 1) << name;
    }
    EXPECT_EQ(X509_check_host(certificate.get(), "a.b.example.com", 0, 0, nullptr), 0);
    EXPECT_EQ(X509_check_host(certificate.get(), "example.org", 0, 0, nullptr), 0);
    for (const auto* address : {"127.0.0.1", "::1"}) {
        EXPECT_EQ(X509_check_ip_asc(certificate.get(), address, 0), 1) << address;
    }
    EXPECT_EQ(X509_check_ip_asc(certificate.get(), "127.0.0.2", 0), 0);
}

TEST_F(ZRMPkiTest, AuthoritiesMaySignCertificatesAndLeavesMayNot) {
    const auto made = pki();
    for (const auto& file : {made.rootCertificateFile(), made.intermediateCertificateFile(),
                             made.tlsAuthorityFile()}) {
        const auto certificate = certificateIn(file);
        EXPECT_EQ(X509_check_ca(certificate.get()), 1) << file;
        EXPECT_EQ(X509_get_key_usage(certificate.get()),
                  static_cast<std::uint32_t>(KU_KEY_CERT_SIGN | KU_CRL_SIGN))
            << file;
    }
    for (const auto& file : {made.signingCertificateFile(), made.tlsCertificateFile()}) {
        const auto certificate = certificateIn(file);
        EXPECT_EQ(X509_check_ca(certificate.get()), 0) << file;
        EXPECT_EQ(X509_get_key_usage(certificate.get()),
                  static_cast<std::uint32_t>(KU_DIGITAL_SIGNATURE))
            << file;
    }
    EXPECT_EQ(X509_get_pathlen(certificateIn(made.rootCertificateFile()).get()), -1);
    EXPECT_EQ(X509_get_pathlen(certificateIn(made.intermediateCertificateFile()).get()), 0);
}

TEST_F(ZRMPkiTest, SigningKeysAreRsaOfAtLeast2048Bits) {
    const auto made = pki();
    for (const auto& file : {made.rootCertificateFile(), made.intermediateCertificateFile(),
                             made.signingCertificateFile()}) {
        const auto certificate = certificateIn(file);
        auto* key = X509_get0_pubkey(certificate.get());
        EXPECT_EQ(EVP_PKEY_get_base_id(key), EVP_PKEY_RSA);
        EXPECT_GE(EVP_PKEY_get_bits(key), 2048);
        EXPECT_EQ(X509_get_signature_nid(certificate.get()), NID_sha256WithRSAEncryption);
    }
}

TEST_F(ZRMPkiTest, CertificatesAreValidNowAndNoneOutlivesItsIssuer) {
    const auto made = pki();
    const std::vector<std::pair<fs::path, fs::path>> issuerAndSubject{
        {made.rootCertificateFile(), made.intermediateCertificateFile()},
        {made.intermediateCertificateFile(), made.signingCertificateFile()},
        {made.tlsAuthorityFile(), made.tlsCertificateFile()}};
    for (const auto& [issuerFile, subjectFile] : issuerAndSubject) {
        const auto issuer = certificateIn(issuerFile);
        const auto subject = certificateIn(subjectFile);
        EXPECT_LT(X509_cmp_current_time(X509_get0_notBefore(subject.get())), 0);
        EXPECT_GT(X509_cmp_current_time(X509_get0_notAfter(subject.get())), 0);
        EXPECT_EQ(
            ASN1_TIME_compare(X509_get0_notAfter(subject.get()), X509_get0_notAfter(issuer.get())),
            -1);
        EXPECT_EQ(
            X509_NAME_cmp(X509_get_issuer_name(subject.get()), X509_get_subject_name(issuer.get())),
            0);
    }
}

TEST_F(ZRMPkiTest, KeysAreForTheirOwnerAloneAndFilesBearTheDocumentedNames) {
    const auto below = directory() / "below";
    EXPECT_TRUE(fs::exists(below / "VelorinRootCA.crt"));
    EXPECT_TRUE(fs::exists(below / "tls-ca.pem"));
    int keys = 0;
    for (const auto& entry : fs::directory_iterator(below)) {
        if (entry.path().extension() == ".key") {
            ++keys;
            EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write);
        }
        EXPECT_NE(entry.path().extension(), ".new");
    }
    EXPECT_EQ(keys, 5);
    EXPECT_EQ(fs::status(below).permissions(), fs::perms::owner_all);
}

TEST_F(ZRMPkiTest, IsReusedOnceItIsThere) {
    const auto before = content(pki().rootCertificateFile());
    EXPECT_EQ(content(pki().rootCertificateFile()), before);
}

class ZRMPkiDamage : public ZRMPkiTest {
  protected:
    ZRMPkiDamage() : copy_(directory() / "copy") {
        fs::remove_all(copy_);
        fs::copy(directory() / "below", copy_, fs::copy_options::recursive);
    }
    ~ZRMPkiDamage() override { fs::remove_all(copy_); }

    std::string refusal() const {
        try {
            ZRMPki::openOrMake(copy_);
            return "accepted";
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
    }

    fs::path copy_;
};

TEST_F(ZRMPkiDamage, RefusesADirectoryInWhichAPartIsMissing) {
    fs::remove(copy_ / "tls-server.key");
    EXPECT_NE(refusal().find("tls-server.key is missing"), std::string::npos);
    EXPECT_FALSE(fs::exists(copy_ / "tls-server.key"));
}

TEST_F(ZRMPkiDamage, RefusesAKeyThatBelongsToAnotherCertificate) {
    fs::copy_file(copy_ / "tls-ca.key", copy_ / "tls-server.key",
                  fs::copy_options::overwrite_existing);
    EXPECT_NE(refusal().find("does not belong to its key"), std::string::npos);
}

TEST_F(ZRMPkiDamage, RefusesAFileThatIsNoCertificate) {
    std::ofstream(copy_ / "signing.crt") << "nothing";
    EXPECT_NE(refusal().find("reading a certificate"), std::string::npos);
}

TEST_F(ZRMPkiDamage, RefusesACertificateWhoseTimeIsOver) {
    const auto old =
        zrm_makeIdentity({"Old", -1, "critical,CA:TRUE", "critical,keyCertSign,cRLSign", "", ""},
                         ZRMKeyKind::EcP256, nullptr);
    std::ofstream(copy_ / "tls-ca.pem") << zrm_pemFromCertificate(old.certificate.get());
    std::ofstream(copy_ / "tls-ca.key") << zrm_pemFromKey(old.key.get());
    EXPECT_NE(refusal().find("no longer valid"), std::string::npos);
}

TEST_F(ZRMPkiDamage, IsMadeOnceWhenSeveralAskAtTheSameTime) {
    fs::remove_all(copy_);
    std::string seen[2];
    {
        std::vector<std::jthread> askers;
        for (auto& root : seen) {
            askers.emplace_back(
                [&] { root = content(ZRMPki::openOrMake(copy_).rootCertificateFile()); });
        }
    }
    EXPECT_FALSE(seen[0].empty());
    EXPECT_EQ(seen[0], seen[1]);
}

}  // namespace
