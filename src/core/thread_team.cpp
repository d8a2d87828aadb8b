#include "core/thread_team.h"

#include <chrono>

namespace norvane {

namespace {

/// Before a thread blocks.
constexpr std::chrono::microseconds spinTime{100};

void cpuPause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

} // namespace

void Barrier::arrive() {
    if (arrived_.fetch_add(1) + 1 < threads_) return;
    arrived_ = 0; // before any thread gets to the next pass
    passes_.fetch_add(1);
    passes_.notify_all();
}

void Barrier::arriveAndWait() {
    const unsigned pass = passes_;
    arrive();
    const auto end = std::chrono::steady_clock::now() + spinTime;
    while (passes_ == pass && std::chrono::steady_clock::now() < end) {
        for (int k = 0; k < 64 && passes_ == pass; ++k) cpuPause();
        std::this_thread::yield(); // the awaited thread may be queued on this core
    }
    passes_.wait(pass);
}

ThreadTeam::ThreadTeam(int threads) : size_(threads < 1 ? 1 : threads), aroundWork_(size_), inWork_(size_) {
    try {
        for (int thread = 1; thread < size_; ++thread) others_.emplace_back([this, thread] { serve(thread); });
    } catch (...) {
        // The threads that have started wait for those that did not: arrive for these, and let all end.
        for (auto missing = others_.size(); missing + 1 < static_cast<std::size_t>(size_); ++missing)
            aroundWork_.arrive();
        aroundWork_.arriveAndWait();
        throw;
    }
}

void ThreadTeam::serve(int thread) {
    for (;;) {
        aroundWork_.arriveAndWait();
        if (work_ == nullptr) return;
        (*work_)(thread);
        aroundWork_.arriveAndWait();
    }
}

ThreadTeam::~ThreadTeam() {
    work_ = nullptr;
    aroundWork_.arriveAndWait();
}

void ThreadTeam::run(const std::function<void(int)>& work) {
    work_ = &work;
    aroundWork_.arriveAndWait();
    work(0);
    aroundWork_.arriveAndWait();
}

} // namespace norvane
