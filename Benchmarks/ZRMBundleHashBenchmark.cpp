#include "Benchmarks/ZRMBundleHashBenchmark.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "Benchmarks/ZRMBenchmarkSupport.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCloudKitDetectors.h"

namespace {

constexpr int kRuns = 9;
constexpr double kMebibyte = 1024.0 * 1024.0;

// Files of those sizes, in folders of a hundred; each differs from the others in its first bytes.
void writeFiles(const std::string& folder, int count, std::size_t bytes) {
    std::string content(bytes, 'x');
    for (int index = 0; index < count; ++index) {
        const auto below = folder + "/" + std::to_string(index / 100);
        std::filesystem::create_directories(below);
        const auto name = std::to_string(index);
        content.replace(0, name.size() + 1, name + ".");
        std::ofstream(below + "/" + name, std::ios::binary) << content;
    }
}

// As the event core does it.
void hash(ZRMBundleHashing& hasher, const std::string& folder) {
    if (!hasher.md5ForDirectoryAtPath(folder)) {
        throw std::runtime_error("the folder has no digest");
    }
}

}  // namespace

ZRMFigures zrm_measureBundleHashSpeed() {
    const auto hasher = zrm_makeCloudKitDetectors(ZRMPlatform::current()).bundleHasher;
    const ZRMBenchmarkFolder folder;
    writeFiles(folder / "small", 2000, 16 * 1024);
    writeFiles(folder / "large", 2, 64 * 1024 * 1024);
    const auto ours = zrm_medianSeconds(kRuns, [&] {
        hash(*hasher, folder / "small");
        hash(*hasher, folder / "large");
    });
    const auto theirs = zrm_medianSeconds(kRuns, [&] {
        zrm_mustRun("cd '" + (folder / "") + "' && openssl dgst -md5 */*/* >/dev/null");
    });
    return {{"bundle hash: speed over openssl dgst -md5 of the same 2002 files, 159 MiB",
             theirs / ours, "ratio", 0.9, ZRMFigure::Must::BeAtLeast}};
}

ZRMFigures zrm_measureBundleHashMemory() {
    const auto hasher = zrm_makeCloudKitDetectors(ZRMPlatform::current()).bundleHasher;
    const ZRMBenchmarkFolder folder;
    writeFiles(folder / "one", 1, 1);
    writeFiles(folder / "many", 20000, 16);
    writeFiles(folder / "many/large", 1, 64 * 1024 * 1024);
    const auto few = zrm_peakHeapBytes([&] { hash(*hasher, folder / "one"); });
    const auto many = zrm_peakHeapBytes([&] { hash(*hasher, folder / "many"); });
    return {
        {"bundle hash: heap for 20000 files and one of 64 MiB",
         static_cast<double>(many) / kMebibyte, "MiB", 0.25, ZRMFigure::Must::BeAtMost},
        {"bundle hash: the same beyond the heap for one file of a byte",
         static_cast<double>(many > few ? many - few : 0) / kMebibyte, "MiB", 0.01,
         ZRMFigure::Must::BeAtMost},
    };
}
