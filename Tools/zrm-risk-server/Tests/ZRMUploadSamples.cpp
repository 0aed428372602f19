#include "Tools/zrm-risk-server/Tests/ZRMUploadSamples.h"

#include <algorithm>

#include <openssl/evp.h>
#include <zlib.h>

const std::string kZRMSamplePayload = R"({"array":[{"LOGIN":{"userId":"u1"}}]})";

std::string zrm_gzipped(const std::string& content) {
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY);
    std::string bytes(deflateBound(&stream, content.size()), '\0');
    std::string input = content;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    deflate(&stream, Z_FINISH);
    bytes.resize(stream.total_out);
    deflateEnd(&stream);
    return bytes;
}

std::string zrm_base64Url(const std::string& bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                       reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    std::erase(text, '=');
    std::replace(text.begin(), text.end(), '+', '-');
    std::replace(text.begin(), text.end(), '/', '_');
    return text;
}

std::string zrm_uploadBody(const std::string& payload) {
    return zrm_gzipped(R"({"payload":")" + zrm_base64Url(payload) + R"(","signatures":[]})");
}

ZRMServerRequest zrm_uploadRequest(std::string body) {
    ZRMServerRequest request;
    request.method = "POST";
    request.target = "/stat";
    request.headers = {{"Host", "localhost"},
                       {"Content-Type", "application/jose+json"},
                       {"Content-Encoding", "gzip"},
                       {"Request-Send-Timestamp", "1763689123"},
                       {"Mobile-UUID", ""}};
    request.body = std::move(body);
    return request;
}
