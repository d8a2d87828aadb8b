#include "formats/frame_writer.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace norvane {

namespace {

constexpr std::size_t fewBytes = std::size_t{1} << 22;

} // namespace

FrameWriter::FrameWriter(std::size_t frameBytes, std::function<std::string(std::span<const Frame>)> write)
    : write_(std::move(write)),
      capacity_(std::clamp<std::size_t>(fewBytes / std::max<std::size_t>(frameBytes, 1), 2, 64)),
      thread_([this] { work(); }) {}

FrameWriter::~FrameWriter() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void FrameWriter::add(const std::function<void(Frame&)>& take) {
    Frame frame;
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return waiting_.size() + busy_ < capacity_; });
        waiting_.reserve(capacity_);
        spare_.reserve(capacity_);
        if (!spare_.empty()) {
            frame = std::move(spare_.back());
            spare_.pop_back();
        }
    }
    take(frame);
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(frame));
    }
    changed_.notify_all();
}

void FrameWriter::finish() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return waiting_.empty() && busy_ == 0; });
}

FrameFaults FrameWriter::faults() {
    const std::lock_guard lock(mutex_);
    return faults_;
}

std::string FrameWriter::writeBatch(std::span<const Frame> frames) try {
    return write_(frames);

} catch (const std::exception& fault) { // no memory for it

    return fault.what();
}

void FrameWriter::work() {
    std::vector<Frame> batch;
    batch.reserve(capacity_);
    for (;;) {
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
            if (waiting_.empty()) return;
            batch.swap(waiting_);
            busy_ = batch.size();
        }
        const std::string fault = writeBatch(batch);
        {
            const std::lock_guard lock(mutex_);
            if (!fault.empty() && faults_.lost == 0) {
                faults_.first = fault;
                faults_.firstStep = batch.front().step;
            }
            faults_.lost += fault.empty() ? 0 : batch.size();
            for (Frame& frame : batch) spare_.push_back(std::move(frame));
            batch.clear();
            busy_ = 0;
        }
        changed_.notify_all();
    }
}

} // namespace norvane
