// The bytes of one event: in memory, or left in the store until somebody needs them.
#pragma once

#include <atomic>
#include <cstddef>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// May be used from any thread.
class ZRMStatisticsData {
  public:
    virtual ~ZRMStatisticsData() = default;
    ZRMStatisticsData(const ZRMStatisticsData&) = delete;
    ZRMStatisticsData& operator=(const ZRMStatisticsData&) = delete;

    [[nodiscard]] std::size_t length() const { return length_; }
    // Tells the event from others in the log; never to be dereferenced.
    [[nodiscard]] const void* identity() const { return identity_; }

    // May read from the disk; null when the bytes cannot be read.
    [[nodiscard]] virtual ZRMSharedData bytes() const = 0;
    // Lets go of the bytes where the store can give them again.
    virtual void turnIntoFault() {}

    // True for the caller that may upload the bytes; false while an upload is under way or after
    // one was answered.
    [[nodiscard]] bool beginUpload() { return !uploading_.exchange(true); }
    // After an upload that was not answered.
    void abandonUpload() { uploading_ = false; }
    // After one that was: nobody will need the bytes again.
    void endUpload() { answered_ = true; }
    [[nodiscard]] bool isAnswered() const { return answered_; }

  protected:
    ZRMStatisticsData(std::size_t length, const void* identity)
        : length_(length), identity_(identity != nullptr ? identity : this) {}

  private:
    std::size_t length_;
    const void* identity_;
    std::atomic<bool> uploading_{false};
    std::atomic<bool> answered_{false};
};

class ZRMStatisticsDataInMemory final : public ZRMStatisticsData {
  public:
    // `bytes` must not be null.
    explicit ZRMStatisticsDataInMemory(ZRMSharedData bytes)
        : ZRMStatisticsData(bytes->size(), bytes.get()), bytes_(std::move(bytes)) {}

    [[nodiscard]] ZRMSharedData bytes() const override { return bytes_; }

  private:
    ZRMSharedData bytes_;
};
