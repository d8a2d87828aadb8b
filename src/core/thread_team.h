#pragma once

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace norvane {

/// Reusable barrier. Threads spin for 100 us before they block, since a stage of a small grid is shorter than a
/// wake-up.
class Barrier {
public:
    explicit Barrier(int threads) : threads_(threads) {}

    Barrier(const Barrier&) = delete;
    Barrier& operator=(const Barrier&) = delete;

    /// Returns when all threads have arrived.
    void arriveAndWait();

    /// Arrives for a thread that failed to start; does not block.
    void arrive();

private:
    int threads_;
    std::atomic<int> arrived_ = 0;
    std::atomic<unsigned> passes_ = 0;
};

/// A pool of threads that carry out one piece of work together, again and again. The calling thread is one of them.
class ThreadTeam {
public:
    /// Throws std::system_error where the system grants no further thread.
    explicit ThreadTeam(int threads);
    ~ThreadTeam();
    ThreadTeam(const ThreadTeam&) = delete;
    ThreadTeam& operator=(const ThreadTeam&) = delete;

    int size() const { return size_; }

    /// Calls work(thread) on every thread [0..size-1] and returns when all are done. The work must not throw.
    void run(const std::function<void(int thread)>& work);

    /// For the work: waits until all threads have arrived here.
    void wait() { inWork_.arriveAndWait(); }

private:
    void serve(int thread);

    int size_;
    const std::function<void(int)>* work_ = nullptr; ///< null: the threads end
    Barrier aroundWork_;                             ///< passed at the start and at the end of each piece of work
    Barrier inWork_;
    std::vector<std::jthread> others_;
};

} // namespace norvane
