// Uploads as a client makes them, for tests to send or to spoil.
#pragma once

#include <string>

#include "Tools/zrm-risk-server/ZRMServerMessages.h"

std::string zrm_gzipped(const std::string& content);
std::string zrm_base64Url(const std::string& bytes);

// The body whose payload, once decoded, is that text.
std::string zrm_uploadBody(const std::string& payload);

// {"array":[{"LOGIN":{"userId":"u1"}}]}
extern const std::string kZRMSamplePayload;

// A POST to /stat with all headers in order.
ZRMServerRequest zrm_uploadRequest(std::string body = zrm_uploadBody(kZRMSamplePayload));
