#include "core/thread_team.h"

namespace norvane {

ThreadTeam::ThreadTeam(int threads) : size_(threads < 1 ? 1 : threads), gate_(size_), meeting_(size_) {
    try {
        for (int thread = 1; thread < size_; ++thread) others_.emplace_back([this, thread] { serve(thread); });
    } catch (...) {
        // Those that have started wait for the ones that never will: stand in for these, and let all end.
        for (auto missing = others_.size(); missing + 1 < static_cast<std::size_t>(size_); ++missing)
            static_cast<void>(gate_.arrive());
        gate_.arrive_and_wait();
        throw;
    }
}

void ThreadTeam::serve(int thread) {
    for (;;) {
        gate_.arrive_and_wait();
        if (work_ == nullptr) return;
        (*work_)(thread);
        gate_.arrive_and_wait();
    }
}

ThreadTeam::~ThreadTeam() {
    work_ = nullptr;
    gate_.arrive_and_wait();
}

void ThreadTeam::run(const std::function<void(int)>& work) {
    work_ = &work;
    gate_.arrive_and_wait();
    work(0);
    gate_.arrive_and_wait();
}

} // namespace norvane
