#include "Tools/zrm-inspect/ZRMInspection.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

ZRMError zrm_inspectError(ZRMInspectErrorCode code, const std::string& message) {
    return ZRMError::withDescription(kZRMInspectErrorDomain, code, message);
}

ZRMDictionary zrm_reportOfError(const ZRMError& error) {
    ZRMDictionary report;
    report["domain"] = error.domain();
    report["code"] = error.code();
    report["message"] = error.localizedDescription();
    return report;
}

ZRMResult<ZRMData> zrm_readInspectedFile(const std::string& path) {
    const auto failure = [&path] {
        return ZRMError::withDescription(kZRMPosixErrorDomain, errno,
                                         path + ": " + std::strerror(errno));
    };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (!file) {
        return failure();
    }
    ZRMData bytes;
    std::uint8_t chunk[65536];
    std::size_t count = 0;
    while ((count = std::fread(chunk, 1, sizeof chunk, file.get())) > 0) {
        bytes.insert(bytes.end(), chunk, chunk + count);
    }
    if (std::ferror(file.get()) != 0) {
        return failure();
    }
    return bytes;
}
