#include "frontends/cli/stop_signals.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>

namespace norvane {

namespace {

std::atomic<int> stopSignal = 0;
std::atomic<std::int64_t> stopMoment = 0; ///< ns, of the first signal
std::atomic<bool> checkpointSignal = false;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<std::int64_t>::is_always_lock_free
                  && std::atomic<bool>::is_always_lock_free,
              "a signal may come to any thread at any moment");

/// A second signal ends the process at once; but some programs send theirs twice in a moment, to a process and its
/// group.
void takeSignal(int number) {
    constexpr std::int64_t oneMoment = 300'000'000; // ns
    const std::int64_t now = std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    int none = 0;
    if (stopSignal.compare_exchange_strong(none, number)) {
        stopMoment = now;
    } else if (now - stopMoment > oneMoment) {
        std::signal(number, SIG_DFL);
        std::raise(number);
        return;
    }
    std::signal(number, takeSignal); // where a handler serves only once
}

[[maybe_unused]] void noteCheckpoint(int number) {
    checkpointSignal = true;
    std::signal(number, noteCheckpoint);
}

} // namespace

void catchStopSignals() {
    std::signal(SIGINT, takeSignal);
    std::signal(SIGTERM, takeSignal);
#ifndef _WIN32
    std::signal(SIGHUP, takeSignal); // the terminal goes: end in order all the same
    std::signal(SIGPIPE, SIG_IGN);   // nobody reads the progress any more: the run is worth more than that
#endif
}

bool isStopSignalled() { return stopSignal != 0; }

void catchCheckpointSignal() {
#ifndef _WIN32
    std::signal(SIGUSR1, noteCheckpoint);
#endif
}

bool takeCheckpointSignal() { return checkpointSignal.exchange(false); }

} // namespace norvane
