#pragma once

#include "core/sim_state.h"

#include <chrono>
#include <string>

namespace norvane {

/// Tells how far a run is: one line that is written over and over on a terminal, a plain line now and then elsewhere.
class Progress {
public:
    Progress(bool quiet, bool terminal) : quiet_(quiet), terminal_(terminal) {}

    /// A run begins; the step count and the stop step are known.
    void begin(const SimState& sim);
    /// A step begins: `stepCount` steps are complete.
    void step(const SimState& sim);
    /// Takes the line off the terminal, so that another can be printed in its place.
    void wipe();

    double seconds() const;

private:
    using Clock = std::chrono::steady_clock;

    bool quiet_;
    bool terminal_;
    bool lineStands_ = false;
    Clock::time_point began_;
    Clock::time_point told_;
    std::int64_t firstStep_ = 0;
};

/// The line for a run that has made `done` of `total` steps (negative: no limit) since `first`, in `seconds`.
std::string progressText(std::int64_t first, std::int64_t done, std::int64_t total, double seconds);

/// A time span such as 4.2 s, 3:05 or 1:02:03.
std::string spanText(double seconds);

} // namespace norvane
