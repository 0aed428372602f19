#include "Tools/zrm-risk-server/ZRMPki.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

struct Entry {
    const char* certificate;
    const char* key;
};

constexpr Entry kRoot{"VelorinRootCA.crt", "VelorinRootCA.key"};
constexpr Entry kIntermediate{"signing-intermediate.crt", "signing-intermediate.key"};
constexpr Entry kSigning{"signing.crt", "signing.key"};
constexpr Entry kTlsAuthority{"tls-ca.pem", "tls-ca.key"};
constexpr Entry kTlsServer{"tls-server.crt", "tls-server.key"};
constexpr std::array kEntries{kRoot, kIntermediate, kSigning, kTlsAuthority, kTlsServer};

constexpr const char* kAuthorityUsage = "critical,keyCertSign,cRLSign";
constexpr const char* kEndEntity = "critical,CA:FALSE";

[[noreturn]] void failWithErrno(const fs::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

// A file descriptor that closes itself.
class Descriptor {
  public:
    explicit Descriptor(int value) : value_(value) {}
    ~Descriptor() { ::close(value_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int value() const { return value_; }

  private:
    int value_;
};

int openOrThrow(const fs::path& path, int flags, mode_t mode) {
    const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    if (descriptor < 0) {
        failWithErrno(path);
    }
    return descriptor;
}

// The file appears whole or not at all.
void writeFile(const fs::path& path, const std::string& content, mode_t mode) {
    const auto unfinished = fs::path(path).concat(".new");
    {
        const Descriptor file(openOrThrow(unfinished, O_WRONLY | O_CREAT | O_TRUNC, mode));
        if (::fchmod(file.value(), mode) != 0 ||
            ::write(file.value(), content.data(), content.size()) !=
                static_cast<ssize_t>(content.size())) {
            failWithErrno(unfinished);
        }
    }
    fs::rename(unfinished, path);
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    if (!file) {
        throw std::runtime_error(path.string() + " cannot be read");
    }
    return content.str();
}

void makeAll(const fs::path& directory) {
    const auto root =
        zrm_makeIdentity({"Velorin Root CA", 3650, "critical,CA:TRUE", kAuthorityUsage, "", ""},
                         ZRMKeyKind::Rsa3072, nullptr);
    const auto intermediate = zrm_makeIdentity(
        {"Velorin Signing CA", 1825, "critical,CA:TRUE,pathlen:0", kAuthorityUsage, "", ""},
        ZRMKeyKind::Rsa2048, &root);
    const auto signing = zrm_makeIdentity(
        {"Velorin Document Signing", 730, kEndEntity, "critical,digitalSignature", "", ""},
        ZRMKeyKind::Rsa2048, &intermediate);
    const auto authority = zrm_makeIdentity(
        {"Velorin TLS CA", 3650, "critical,CA:TRUE,pathlen:0", kAuthorityUsage, "", ""},
        ZRMKeyKind::EcP256, nullptr);
    const auto server = zrm_makeIdentity(
        {"localhost", 730, kEndEntity, "critical,digitalSignature", "serverAuth",
         "DNS:localhost,IP:127.0.0.1,IP:::1,DNS:risk.example.com,DNS:*.example.com"},
        ZRMKeyKind::EcP256, &authority);
    const std::array<const ZRMIdentity*, kEntries.size()> identities{&root, &intermediate, &signing,
                                                                     &authority, &server};
    for (std::size_t i = 0; i < kEntries.size(); ++i) {
        writeFile(directory / kEntries[i].key, zrm_pemFromKey(identities[i]->key.get()), 0600);
        writeFile(directory / kEntries[i].certificate,
                  zrm_pemFromCertificate(identities[i]->certificate.get()), 0644);
    }
}

ZRMIdentity identity(const fs::path& directory, const Entry& entry) {
    auto certificate = zrm_certificateFromPem(readFile(directory / entry.certificate));
    return {zrm_keyFromPem(readFile(directory / entry.key)), std::move(certificate)};
}

void check(const fs::path& directory, const Entry& entry) {
    const auto certificateFile = directory / entry.certificate;
    const auto [key, certificate] = identity(directory, entry);
    if (X509_check_private_key(certificate.get(), key.get()) != 1) {
        throw std::runtime_error(certificateFile.string() + " does not belong to its key");
    }
    if (X509_cmp_current_time(X509_get0_notAfter(certificate.get())) < 0) {
        throw std::runtime_error(certificateFile.string() +
                                 " is no longer valid; remove the directory to make a new one");
    }
}

}  // namespace

ZRMPki ZRMPki::openOrMake(const fs::path& directory) {
    if (!fs::is_directory(directory)) {
        if (directory.has_parent_path()) {
            fs::create_directories(directory.parent_path());
        }
        if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) {
            failWithErrno(directory);
        }
    }
    const Descriptor lock(openOrThrow(directory / ".lock", O_RDWR | O_CREAT, 0600));
    if (::flock(lock.value(), LOCK_EX) != 0) {
        failWithErrno(directory);
    }
    std::optional<fs::path> missing;
    bool anyPresent = false;
    for (const auto& entry : kEntries) {
        for (const auto* name : {entry.certificate, entry.key}) {
            if (fs::exists(directory / name)) {
                anyPresent = true;
            } else {
                missing = directory / name;
            }
        }
    }
    if (missing && anyPresent) {
        throw std::runtime_error(missing->string() +
                                 " is missing; remove the directory to make a new one");
    }
    if (missing) {
        makeAll(directory);
    }
    for (const auto& entry : kEntries) {
        check(directory, entry);
    }
    return ZRMPki(directory);
}

fs::path ZRMPki::rootCertificateFile() const {
    return directory_ / kRoot.certificate;
}

fs::path ZRMPki::intermediateCertificateFile() const {
    return directory_ / kIntermediate.certificate;
}

fs::path ZRMPki::signingCertificateFile() const {
    return directory_ / kSigning.certificate;
}

ZRMIdentity ZRMPki::root() const {
    return identity(directory_, kRoot);
}

ZRMIdentity ZRMPki::intermediate() const {
    return identity(directory_, kIntermediate);
}

ZRMKeyPointer ZRMPki::signingKey() const {
    return zrm_keyFromPem(readFile(directory_ / kSigning.key));
}

fs::path ZRMPki::tlsAuthorityFile() const {
    return directory_ / kTlsAuthority.certificate;
}

fs::path ZRMPki::tlsCertificateFile() const {
    return directory_ / kTlsServer.certificate;
}

fs::path ZRMPki::tlsKeyFile() const {
    return directory_ / kTlsServer.key;
}
