#pragma once
// Writes frames while the run goes on: a thread of its own, and a queue of bounded length.

#include "formats/frame_layout.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace norvane {

/// What became of the frames.
struct FrameFaults {
    std::string first; ///< reason of the first one that was lost; empty: none was
    std::int32_t firstStep = 0;
    std::size_t lost = 0;
};

class FrameWriter {
public:
    /// `write` takes frames in their order, on another thread, and gives what is wrong; then these frames are lost. Up
    /// to two frames wait or are written at a time, of small ones as many as a few megabytes hold.
    FrameWriter(std::size_t frameBytes, std::function<std::string(std::span<const Frame>)> write);
    /// After the last frame is written.
    ~FrameWriter();
    FrameWriter(const FrameWriter&) = delete;
    FrameWriter& operator=(const FrameWriter&) = delete;

    /// Has `take` fill in a frame and queues it; waits while the queue is full. What `take` throws goes on, and leaves
    /// the queue as it was.
    void add(const std::function<void(Frame&)>& take);

    /// Waits until all frames are written.
    void finish();

    FrameFaults faults();

private:
    void work();
    std::string writeBatch(std::span<const Frame> frames);

    std::function<std::string(std::span<const Frame>)> write_;
    std::size_t capacity_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Frame> waiting_;
    std::vector<Frame> spare_; ///< whose room is used again
    std::size_t busy_ = 0;     ///< frames that are being written
    bool ends_ = false;
    FrameFaults faults_;
    std::thread thread_;
};

} // namespace norvane
