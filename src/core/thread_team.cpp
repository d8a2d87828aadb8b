#include "core/thread_team.h"

#include <chrono>

namespace norvane {

namespace {

/// Until the processor may better serve another program.
constexpr std::chrono::microseconds awake{100};

void rest() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

} // namespace

void MeetingPlace::arrive() {
    if (arrived_.fetch_add(1) + 1 < threads_) return;
    arrived_ = 0; // before anybody leaves for the next meeting
    meetings_.fetch_add(1);
    meetings_.notify_all();
}

void MeetingPlace::arriveAndWait() {
    const unsigned meeting = meetings_;
    arrive();
    const auto end = std::chrono::steady_clock::now() + awake;
    while (meetings_ == meeting && std::chrono::steady_clock::now() < end) {
        for (int k = 0; k < 64 && meetings_ == meeting; ++k) rest();
        std::this_thread::yield(); // the one that is waited for may stand in line for this very core
    }
    meetings_.wait(meeting);
}

ThreadTeam::ThreadTeam(int threads) : size_(threads < 1 ? 1 : threads), gate_(size_), meeting_(size_) {
    try {
        for (int thread = 1; thread < size_; ++thread) others_.emplace_back([this, thread] { serve(thread); });
    } catch (...) {
        // Those that have started wait for the ones that never will: stand in for these, and let all end.
        for (auto missing = others_.size(); missing + 1 < static_cast<std::size_t>(size_); ++missing) gate_.arrive();
        gate_.arriveAndWait();
        throw;
    }
}

void ThreadTeam::serve(int thread) {
    for (;;) {
        gate_.arriveAndWait();
        if (work_ == nullptr) return;
        (*work_)(thread);
        gate_.arriveAndWait();
    }
}

ThreadTeam::~ThreadTeam() {
    work_ = nullptr;
    gate_.arriveAndWait();
}

void ThreadTeam::run(const std::function<void(int)>& work) {
    work_ = &work;
    gate_.arriveAndWait();
    work(0);
    gate_.arriveAndWait();
}

} // namespace norvane
