#pragma once
// The yields of a run.

#include <chrono>
#include <functional>

namespace norvane {

/// Carries out what a person did, and shows what a run has changed, inside the yields of the run. A yield looks at the
/// clock, and at the event queue only when its time has come, since that costs a thousand times as much. So looking
/// takes about a hundredth of the time, and a click still acts within a tenth of a second. Painting costs more, and
/// waits longer where the run changes its picture faster.
class EventPump {
public:
    /// `show` shows what a run has changed.
    explicit EventPump(std::function<void()> show) : show_(std::move(show)) {}

    void yield() {
        if (Clock::now() >= nextPoll_) poll();
    }

    /// Carries out all pending events, each to its end; these may run and yield themselves.
    void poll();

private:
    using Clock = std::chrono::steady_clock;

    std::function<void()> show_;
    Clock::time_point nextPoll_;
    Clock::time_point nextShow_;
};

} // namespace norvane
