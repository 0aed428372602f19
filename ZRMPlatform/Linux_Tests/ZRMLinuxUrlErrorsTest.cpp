#include <ostream>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxUrlErrors.h"

namespace {

ZRMLinuxUrlFailure failure(CURLcode code, long systemError = 0) {
    return {.curlCode = code,
            .systemError = systemError,
            .isRedirect = false,
            .curlText = "curl says",
            .isOnline = [] { return true; }};
}

struct NamedCase {
    const char* name;
    CURLcode curlCode;
    long systemError;
    ZRMUrlErrorCode expected;

    // The name a test has in a list of tests.
    friend void PrintTo(const NamedCase& row, std::ostream* out) { *out << row.name; }
};

class ZRMLinuxUrlErrorsTest : public testing::TestWithParam<NamedCase> {};

}  // namespace

TEST_P(ZRMLinuxUrlErrorsTest, EveryFailureHasItsCode) {
    const auto& [name, curlCode, systemError, expected] = GetParam();
    const auto error = zrm_urlError(failure(curlCode, systemError));
    EXPECT_EQ(error.domain(), "NSURLErrorDomain");
    EXPECT_EQ(error.code(), expected);
    EXPECT_FALSE(error.localizedDescription().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, ZRMLinuxUrlErrorsTest,
    testing::Values(
        NamedCase{"UnknownHost", CURLE_COULDNT_RESOLVE_HOST, 0, ZRMUrlErrorCannotFindHost},
        NamedCase{"UnknownProxy", CURLE_COULDNT_RESOLVE_PROXY, 0, ZRMUrlErrorCannotFindHost},
        NamedCase{"Refused", CURLE_COULDNT_CONNECT, ECONNREFUSED, ZRMUrlErrorCannotConnectToHost},
        NamedCase{"HostDown", CURLE_COULDNT_CONNECT, EHOSTUNREACH, ZRMUrlErrorCannotConnectToHost},
        NamedCase{"ConnectFailed", CURLE_COULDNT_CONNECT, 0, ZRMUrlErrorCannotConnectToHost},
        NamedCase{"NoNetwork", CURLE_COULDNT_CONNECT, ENETUNREACH,
                  ZRMUrlErrorNotConnectedToInternet},
        NamedCase{"NetworkDown", CURLE_COULDNT_CONNECT, ENETDOWN,
                  ZRMUrlErrorNotConnectedToInternet},
        NamedCase{"ConnectTimedOut", CURLE_COULDNT_CONNECT, ETIMEDOUT, ZRMUrlErrorTimedOut},
        NamedCase{"TimedOut", CURLE_OPERATION_TIMEDOUT, 0, ZRMUrlErrorTimedOut},
        NamedCase{"SendFailed", CURLE_SEND_ERROR, 0, ZRMUrlErrorNetworkConnectionLost},
        NamedCase{"ReceiveFailed", CURLE_RECV_ERROR, 0, ZRMUrlErrorNetworkConnectionLost},
        NamedCase{"EmptyReply", CURLE_GOT_NOTHING, 0, ZRMUrlErrorNetworkConnectionLost},
        NamedCase{"PartialFile", CURLE_PARTIAL_FILE, 0, ZRMUrlErrorNetworkConnectionLost},
        NamedCase{"Redirects", CURLE_TOO_MANY_REDIRECTS, 0, ZRMUrlErrorHttpTooManyRedirects},
        NamedCase{"Malformed", CURLE_URL_MALFORMAT, 0, ZRMUrlErrorBadUrl},
        NamedCase{"HeaderLine", CURLE_BAD_FUNCTION_ARGUMENT, 0, ZRMUrlErrorBadServerResponse},
        NamedCase{"NoHttp", CURLE_UNSUPPORTED_PROTOCOL, 0, ZRMUrlErrorBadServerResponse},
        NamedCase{"WeirdReply", CURLE_WEIRD_SERVER_REPLY, 0, ZRMUrlErrorBadServerResponse},
        NamedCase{"BadEncoding", CURLE_BAD_CONTENT_ENCODING, 0, ZRMUrlErrorBadServerResponse},
        NamedCase{"TooLong", CURLE_FILESIZE_EXCEEDED, 0, ZRMUrlErrorDataLengthExceedsMaximum},
        NamedCase{"Untrusted", CURLE_PEER_FAILED_VERIFICATION, 0,
                  ZRMUrlErrorServerCertificateUntrusted},
        NamedCase{"Issuer", CURLE_SSL_ISSUER_ERROR, 0, ZRMUrlErrorServerCertificateUntrusted},
        NamedCase{"Handshake", CURLE_SSL_CONNECT_ERROR, 0, ZRMUrlErrorSecureConnectionFailed},
        NamedCase{"Cipher", CURLE_SSL_CIPHER, 0, ZRMUrlErrorSecureConnectionFailed},
        NamedCase{"AuthorityFile", CURLE_SSL_CACERT_BADFILE, 0, ZRMUrlErrorSecureConnectionFailed},
        NamedCase{"OutOfMemory", CURLE_OUT_OF_MEMORY, 0, ZRMUrlErrorUnknown}),
    [](const auto& row) { return row.param.name; });

TEST(ZRMLinuxUrlErrors, AnUnknownHostOnAMachineWithoutAnyRouteMeansNoInternet) {
    auto offline = failure(CURLE_COULDNT_RESOLVE_HOST);
    offline.isOnline = [] { return false; };
    EXPECT_EQ(zrm_urlErrorCode(offline), ZRMUrlErrorNotConnectedToInternet);
}

TEST(ZRMLinuxUrlErrors, ARedirectToAnotherSchemeIsAnUnsupportedUrl) {
    auto redirected = failure(CURLE_UNSUPPORTED_PROTOCOL);
    redirected.isRedirect = true;
    EXPECT_EQ(zrm_urlErrorCode(redirected), ZRMUrlErrorUnsupportedUrl);
}

TEST(ZRMLinuxUrlErrors, AFailureWithoutACodeOfItsOwnKeepsCurlsWords) {
    EXPECT_EQ(zrm_urlError(failure(CURLE_OUT_OF_MEMORY)).localizedDescription(), "curl says");
    EXPECT_EQ(zrm_urlError(failure(CURLE_OPERATION_TIMEDOUT)).localizedDescription(),
              "The request timed out.");
}
