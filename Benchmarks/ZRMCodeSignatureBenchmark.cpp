#include "Benchmarks/ZRMCodeSignatureBenchmark.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <dlfcn.h>

#include "Benchmarks/ZRMBenchmarkSupport.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldWatcher.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMSignedImageWriter.h"

namespace {

constexpr std::uint32_t kCodeBytes = 64 * 1024 * 1024;
constexpr int kRuns = 5;
constexpr int kImages = 100;
constexpr double kMebibyte = 1024.0 * 1024.0;

// Both descriptors with all their hashes; the bytes that the hash texts take.
std::size_t hashAll(const ZRMCodeSignatureWatcher& watcher, const ZRMData& image) {
    std::size_t bytes = 0;
    for (const auto& descriptor : watcher.codeSignatureOfImage(
             ZRMExecutableHeader::fromImage(ZRMImageView(image)), nullptr)) {
        static_cast<void>(descriptor.codeDirectoryHash());
        static_cast<void>(descriptor.entitlementsHash());
        static_cast<void>(descriptor.requirementsHash());
        const auto slots = descriptor.slotHashes();
        if (!slots) {
            throw std::runtime_error("the image has no slots");
        }
        // The list grows by doubling, so up to two of its buffers live at once.
        bytes = std::max(bytes, slots->size() * (slots->front().capacity() + 8) +
                                    3 * slots->capacity() / 2 * sizeof(std::string));
    }
    return bytes;
}

}  // namespace

ZRMFigures zrm_measureCodeSignature() {
    const auto platform = ZRMPlatform::current();
    const ZRMCodeSignatureWatcher watcher(platform->loader, platform->mainBundle,
                                          platform->fileManager, platform->digests);
    const auto image =
        zrm_writeSignedImage({.codeSize = kCodeBytes, .codeDirectories = {{.hashType = 1}, {}}})
            .bytes;
    const ZRMBenchmarkFolder folder;
    const auto path = folder / "image";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(image.data()), kCodeBytes);

    const auto ours = zrm_medianSeconds(kRuns, [&] { hashAll(watcher, image); });
    const auto theirs = zrm_medianSeconds(kRuns, [&] {
        zrm_mustRun("openssl dgst -sha256 " + path + " >/dev/null");
        zrm_mustRun("openssl dgst -sha1 " + path + " >/dev/null");
    });
    std::size_t hashBytes = 0;
    const auto peak = zrm_peakHeapBytes([&] { hashBytes = hashAll(watcher, image); });
    const auto beyond = peak > hashBytes ? static_cast<double>(peak - hashBytes) : 0;
    return {
        {"code signature: speed over openssl dgst -sha256 and -sha1 of the same bytes",
         theirs / ours, "ratio", 0.9, ZRMFigure::Must::BeAtLeast},
        {"code signature: memory beyond the hashes, 64 MiB of code", beyond / kMebibyte, "MiB", 1.0,
         ZRMFigure::Must::BeAtMost},
    };
}

ZRMFigures zrm_measureLoadedImages() {
    // Copies of a small system library, each an image of its own.
    constexpr const char* kSmallLibrary = "/lib/x86_64-linux-gnu/libBrokenLocale.so.1";
    const ZRMBenchmarkFolder folder;
    std::vector<void*> libraries;
    for (int index = 0; index < kImages; ++index) {
        const auto copy = folder / ("image" + std::to_string(index) + ".so");
        std::filesystem::copy_file(kSmallLibrary, copy);
        libraries.push_back(dlopen(copy.c_str(), RTLD_NOW));
        if (libraries.back() == nullptr) {
            throw std::runtime_error(dlerror());
        }
    }
    const auto loader = zrm_processLoader();
    const auto count = loader->imageCount();
    const auto seconds = zrm_medianSeconds(
        21, [&] { std::make_shared<ZRMDyldWatcher>(loader)->registerAddImageCallback(); });
    for (auto* const library : libraries) {
        dlclose(library);
    }
    if (count < kImages) {
        throw std::runtime_error("the copies were not loaded as images of their own");
    }
    return {{"loaded images: registration at load time, 100 images and more", seconds * 1000, "ms",
             1.0, ZRMFigure::Must::BeAtMost}};
}
