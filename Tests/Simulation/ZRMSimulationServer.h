// The far end of a simulated network, in changing moods.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Tests/Simulation/ZRMSimulationLedger.h"
#include "Tests/Simulation/ZRMSimulationRandom.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

// Answers uploads and tells the ledger of each; lives as long as the device. One thread.
class ZRMSimulationServer {
  public:
    // `beforeUpload` is called before the ledger is told of one.
    ZRMSimulationServer(ZRMSimulatedDevice& device, ZRMSimulationLedger& ledger,
                        ZRMSimulationRandom& random, std::function<void()> beforeUpload);

    void changeMood();
    // Answers 200 at once from now on, with the device's own time.
    void recover();
    // Uploads that found no connection never come here; the network's record has them, and is
    // empty afterwards.
    void noteUnconnectedUploads();
    [[nodiscard]] std::uint64_t uploads() const { return uploads_; }

  private:
    enum class Mood { Good, Slow, Flaky, Broken, Unreachable, Count };
    enum class Clock { Right, None, Garbage, Early, Late, FarFuture, Count };

    ZRMSimulatedAnswer answer(const ZRMUrlRequest& request);
    ZRMSimulatedAnswer answerInMood();
    ZRMSimulatedAnswer flakyAnswer();
    [[nodiscard]] std::string date() const;
    void noteUploadsBefore(std::size_t end);  // by their place in the record
    void note(const ZRMUrlRequest& request, const ZRMSimulationReply& reply);
    [[nodiscard]] ZRMSimulationReply replyOf(const ZRMSimulatedAnswer& answer) const;

    ZRMSimulatedDevice& device_;
    ZRMSimulationLedger& ledger_;
    ZRMSimulationRandom& random_;
    const std::function<void()> beforeUpload_;
    Mood mood_ = Mood::Good;
    Clock serverClock_ = Clock::Right;
    std::uint64_t uploads_ = 0;
    std::size_t noted_ = 0;  // requests of the network's record
};
