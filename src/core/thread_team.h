#pragma once

#include <barrier>
#include <functional>
#include <thread>
#include <vector>

namespace norvane {

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
    void wait() { meeting_.arrive_and_wait(); }

private:
    void serve(int thread);

    int size_;
    const std::function<void(int)>* work_ = nullptr; ///< null: the threads end
    std::barrier<> gate_;                            ///< opens and closes a piece of work
    std::barrier<> meeting_;
    std::vector<std::jthread> others_;
};

} // namespace norvane
