// A watcher over a simulated process whose main executable the test writes.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedLoader.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMSignedImageWriter.h"

// The hash as OpenSSL's one-shot interface makes it, for comparison.
std::string zrm_sha1Text(const ZRMData& bytes);
std::string zrm_sha256Text(const ZRMData& bytes);
std::vector<std::string> zrm_sha256Texts(const std::vector<ZRMData>& pieces);

class ZRMCodeSignatureFixture : public ::testing::Test {
  protected:
    using Descriptors = std::vector<ZRMCodeSignatureDescriptor>;

    [[nodiscard]] ZRMCodeSignatureWatcher watcher() const {
        return {loader, device.platform()->mainBundle, device.platform()->fileManager,
                device.platform()->digests};
    }

    // Of an image in a file, without an Info.plist. The bytes are copied to a block of their very
    // length, so that a sanitizer sees a read past them.
    [[nodiscard]] Descriptors signatureOf(const ZRMData& bytes) const {
        const auto owned = std::make_shared<const ZRMData>(bytes);
        return watcher().codeSignatureOfImage(
            ZRMExecutableHeader::fromImage(ZRMImageView(*owned, owned)), nullptr);
    }

    [[nodiscard]] bool logsError(const std::string& text) const { return has(log.errors(), text); }
    [[nodiscard]] bool logsVerbose(const std::string& text) const {
        return has(log.verboses(), text);
    }

    static bool has(const std::vector<std::string>& lines, const std::string& text) {
        return std::ranges::any_of(
            lines, [&text](const auto& line) { return line.find(text) != std::string::npos; });
    }

    ZRMSimulatedDevice device;
    ZRMScopedPlatform installed{device};
    ZRMRecordedLog log;
    std::shared_ptr<ZRMSimulatedLoader> loader = std::make_shared<ZRMSimulatedLoader>();
};
