#include "Benchmarks/ZRMVerificationBenchmark.h"

#include <future>
#include <memory>
#include <stdexcept>

#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifier.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

namespace {

constexpr int kRuns = 41;
constexpr int kVerifications = 50;
constexpr const char* kResponder = "http://responder.example/ocsp";

void must(bool good, const char* what) {
    if (!good) {
        throw std::runtime_error(what);
    }
}

// The document: three certificates, of which two have a responder, and a signature by the leaf.
struct Document {
    explicit Document(const ZRMTestPki& pki) {
        auto authority = ZRMTestPki::authorityOptions("intermediate");
        authority.extensions.emplace_back("authorityInfoAccess",
                                          "OCSP;URI:" + std::string(kResponder));
        intermediate = pki.issue(root, authority);
        auto options = ZRMTestPki::leafOptions();
        options.extensions.push_back(authority.extensions.back());
        leaf = pki.issue(intermediate, options);
        input = zrm_dataFromText(header + "." + payload);
        signature = leaf.sign(input);
    }
    [[nodiscard]] ZRMJwsSignature jwsSignature() const {
        ZRMJsonArray chain;
        for (const auto* certificate : {&leaf, &intermediate, &root}) {
            chain.emplace_back(zrm_base64String(certificate->der()));
        }
        return {zrm_base64UrlFromBase64String(zrm_base64String(signature)), header,
                ZRMDictionary{{"x5c", std::move(chain)}}};
    }

    ZRMTestCertificate root = ZRMTestPki(ZRMPlatform::current()->clock->now()).root();
    ZRMTestCertificate intermediate;
    ZRMTestCertificate leaf;
    std::string header = zrm_base64String(zrm_dataFromText(R"({"alg":"RS256"})"));
    std::string payload = std::string(4096, 'A');
    ZRMData input;
    ZRMData signature;
};

// Answers every question at once: good until tomorrow.
class Responder final : public ZRMUrlSessionFactory {
  public:
    Responder(ZRMTestPki pki, const Document& document, std::shared_ptr<ZRMQueue> queue)
        : pki_(pki), document_(document), queue_(std::move(queue)) {}

    std::shared_ptr<ZRMUrlSession> makeSession(const ZRMUrlSessionConfiguration&) override {
        return std::make_shared<Session>(*this);
    }
    [[nodiscard]] int questions() const { return questions_; }

  private:
    class Session final : public ZRMUrlSession {
      public:
        explicit Session(Responder& responder) : responder_(responder) {}
        void start(const ZRMUrlRequest&, Completion completion) override {
            // The leaf is asked about first.
            const bool isLeaf = responder_.questions_++ == 0;
            const auto& document = responder_.document_;
            ZRMUrlExchange exchange;
            exchange.response = ZRMUrlResponse{200, {}};
            exchange.data = isLeaf
                                ? responder_.pki_.ocspAnswer(document.leaf, document.intermediate)
                                : responder_.pki_.ocspAnswer(document.intermediate, document.root);
            responder_.queue_->post([exchange = std::move(exchange),
                                     completion = std::move(completion)] { completion(exchange); });
        }
        void invalidateAndCancel() override {}

      private:
        Responder& responder_;
    };

    ZRMTestPki pki_;
    const Document& document_;
    std::shared_ptr<ZRMQueue> queue_;
    int questions_ = 0;
};

using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

Certificate parsed(const ZRMData& der) {
    const auto* cursor = der.data();
    return {d2i_X509(nullptr, &cursor, static_cast<long>(der.size())), &X509_free};
}

// What any verifier over OpenSSL has to call: read, validate, digest, check.
void verifyBare(const std::vector<ZRMData>& chain, const Document& document) {
    const auto leaf = parsed(chain[0]);
    const auto intermediate = parsed(chain[1]);
    const auto root = parsed(chain[2]);
    const auto stack = [](std::initializer_list<X509*> certificates) {
        auto* const made = sk_X509_new_null();
        for (auto* const certificate : certificates) {
            sk_X509_push(made, certificate);
        }
        return std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)>(
            made, [](STACK_OF(X509) * owned) { sk_X509_free(owned); });
    };
    const auto others = stack({intermediate.get(), root.get()});
    const auto anchors = stack({root.get()});
    const std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> context(
        X509_STORE_CTX_new(), &X509_STORE_CTX_free);
    X509_STORE_CTX_init(context.get(), nullptr, leaf.get(), others.get());
    X509_STORE_CTX_set0_trusted_stack(context.get(), anchors.get());
    X509_VERIFY_PARAM_set_auth_level(X509_STORE_CTX_get0_param(context.get()), 2);
    must(X509_verify_cert(context.get()) == 1, "the bare calls do not trust the chain");
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> digest(EVP_MD_CTX_new(),
                                                                         &EVP_MD_CTX_free);
    must(EVP_DigestVerifyInit(digest.get(), nullptr, EVP_sha256(), nullptr,
                              X509_get0_pubkey(leaf.get())) == 1 &&
             EVP_DigestVerify(digest.get(), document.signature.data(), document.signature.size(),
                              document.input.data(), document.input.size()) == 1,
         "the bare calls do not verify the signature");
}

// Several, so that the hand-over between threads does not count more often than in the field.
void verifyMany(ZRMJwsVerifier& verifier, const ZRMJwsSignature& signature,
                const std::string& payload) {
    std::promise<void> done;
    int missing = kVerifications;
    for (int count = 0; count < kVerifications; ++count) {
        verifier.verifyJwsSignature(
            signature, payload, [&](ZRMJwsVerifyResult result, const std::optional<ZRMError>&) {
                must(result == ZRMJwsVerifyResultVerified, "the document does not verify");
                if (--missing == 0) {
                    done.set_value();
                }
            });
    }
    done.get_future().wait();
}

}  // namespace

ZRMFigures zrm_measureVerification() {
    auto platform = std::make_shared<ZRMPlatform>(*ZRMPlatform::current());
    const ZRMTestPki pki(platform->clock->now());
    const Document document(pki);
    const auto responder = std::make_shared<Responder>(
        pki, document, platform->executor->concurrentQueue(ZRMQualityOfService::Default));
    platform->trust =
        std::make_shared<ZRMLinuxTrust>(platform->executor, platform->clock, responder);
    ZRMJwsVerifier verifier(platform, ZRMJwsVerifierConfiguration({document.root.pem()}));
    const auto signature = document.jwsSignature();
    verifyMany(verifier, signature, document.payload);
    must(responder->questions() == 2, "the answers were not kept");

    const std::vector<ZRMData> chain{document.leaf.der(), document.intermediate.der(),
                                     document.root.der()};
    const auto bare = zrm_medianSeconds(kRuns, [&] {
        for (int count = 0; count < kVerifications; ++count) {
            verifyBare(chain, document);
        }
    });
    const auto ours =
        zrm_medianSeconds(kRuns, [&] { verifyMany(verifier, signature, document.payload); });
    return {{"verification: three certificates, kept answers, over bare OpenSSL calls", ours / bare,
             "ratio", 1.3, ZRMFigure::Must::BeAtMost}};
}
