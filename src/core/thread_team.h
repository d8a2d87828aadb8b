#pragma once

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace norvane {

/// A place where a number of threads wait for one another, over and over. They wait awake for a while: a stage of a
/// small grid takes less time than to fall asleep and be woken.
class MeetingPlace {
public:
    explicit MeetingPlace(int threads) : threads_(threads) {}

    /// Returns when all threads have come.
    void arriveAndWait();

    /// Comes in place of a thread that never will, and does not wait.
    void arrive();

private:
    int threads_;
    std::atomic<int> arrived_ = 0;
    std::atomic<unsigned> meetings_ = 0;
};

/// Threads that do one piece of work together, over and over. The thread that calls is the first of them.
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

    /// For the work: waits until all threads have come here.
    void wait() { meeting_.arriveAndWait(); }

private:
    void serve(int thread);

    int size_;
    const std::function<void(int)>* work_ = nullptr; ///< null: the threads end
    MeetingPlace gate_;                              ///< opens and closes a piece of work
    MeetingPlace meeting_;
    std::vector<std::jthread> others_;
};

} // namespace norvane
