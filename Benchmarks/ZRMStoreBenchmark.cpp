#include "Benchmarks/ZRMStoreBenchmark.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Benchmarks/ZRMQuantiles.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsStorage.h"

namespace {

constexpr int kBacklog = 10000;
constexpr int kOperations = 300;
constexpr std::size_t kEventBytes = 1000;

void must(const std::optional<ZRMError>& error) {
    if (error) {
        throw std::runtime_error(error->localizedDescription());
    }
}

// Bytes like those of an upload: they do not compress, and no two are the same.
class EventBytes {
  public:
    ZRMSharedData next() {
        ZRMData bytes(kEventBytes);
        for (auto& byte : bytes) {
            state_ = state_ * 6364136223846793005U + 1442695040888963407U;
            byte = static_cast<std::uint8_t>(state_ >> 56U);
        }
        return std::make_shared<const ZRMData>(std::move(bytes));
    }

  private:
    std::uint64_t state_ = 1;
};

class Store {
  public:
    Store(const std::shared_ptr<const ZRMPlatform>& platform, const std::string& path,
          EventBytes& bytes)
        : storage_(ZRMStatisticsStorage::create(
              platform,
              ZRMStatisticsStorageConfiguration::configurationWithStorageUrl(path, true))),
          bytes_(bytes) {
        if (!storage_) {
            throw std::runtime_error("no store");
        }
    }

    void fill(int count) {
        context().performBlockAndWait([&] {
            for (int index = 0; index < count; ++index) {
                insert(bytes_.next());
            }
            must(context().save());
        });
    }

    // One record's life as the operations lead it, each step with its own save: the seconds of
    // storing, updating and deleting it.
    std::array<double, 3> lifeOfOne() {
        const auto bytes = bytes_.next();
        return {timed([&] { insert(bytes); }), timed([&] {
                    auto statistic = find(bytes);
                    ++statistic.activeDays;
                    must(context().updateObject(statistic));
                }),
                timed([&] { must(context().deleteObject(find(bytes))); })};
    }

  private:
    ZRMStatisticsContext& context() { return *storage_->context(); }

    void insert(const ZRMSharedData& bytes) {
        const auto made = ZRMStatisticEntity::makeStatisticInContext(
            context(), std::make_shared<ZRMStatisticsDataInMemory>(bytes), ++time_, 2);
        if (!made) {
            throw std::runtime_error(made.error().localizedDescription());
        }
    }

    ZRMStatisticEntity find(const ZRMSharedData& bytes) {
        auto request = ZRMStatisticEntity::fetchRequest();
        request.jws = bytes;
        request.fetchLimit = 1;
        const auto found = context().executeFetchRequest(request);
        if (!found || found.value().size() != 1) {
            throw std::runtime_error("the record is not in the store");
        }
        return found.value().front();
    }

    double timed(const std::function<void()>& change) {
        using Clock = std::chrono::steady_clock;
        const auto begin = Clock::now();
        context().performBlockAndWait([&] {
            change();
            must(context().save());
        });
        return std::chrono::duration<double>(Clock::now() - begin).count();
    }

    std::shared_ptr<ZRMStatisticsStorage> storage_;
    EventBytes& bytes_;
    double time_ = 0;
};

}  // namespace

ZRMFigures zrm_measureStore() {
    const ZRMTestDirectory directory;
    ZRMLinuxPlatformOptions options;
    options.homeDirectory = directory.path();
    options.resourcesDirectory =
        std::filesystem::path(ZRM_STATISTICS_RESOURCES).parent_path().string();
    const auto platform = zrm_makeLinuxPlatform(options);
    EventBytes bytes;
    Store empty(platform, directory.below("empty/store"), bytes);
    Store full(platform, directory.below("full/store"), bytes);
    full.fill(kBacklog);
    // In turn, so that both meet the same disk.
    std::array<std::vector<double>, 3> without;
    std::array<std::vector<double>, 3> with;
    for (int operation = 0; operation < kOperations; ++operation) {
        const auto alone = empty.lifeOfOne();
        const auto among = full.lifeOfOne();
        for (std::size_t kind = 0; kind < alone.size(); ++kind) {
            without.at(kind).push_back(alone.at(kind));
            with.at(kind).push_back(among.at(kind));
        }
    }
    ZRMFigures figures;
    for (std::size_t kind = 0; kind < without.size(); ++kind) {
        static constexpr std::array<const char*, 3> kNames = {"store", "update", "delete"};
        figures.push_back({std::string("one ") + kNames.at(kind) +
                               " with 10,000 records over the same with none, synced, p50",
                           zrm_median(with.at(kind)) / zrm_median(without.at(kind)), "ratio", 1.2,
                           ZRMFigure::Must::BeAtMost});
    }
    return figures;
}
