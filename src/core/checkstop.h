#pragma once
// The stop file: "checkstop" in the working directory holds 0, and an outside process ends a run by writing 1 into it.

#include "core/run_operations.h"
#include "platform/files.h"
#include "platform/run_events.h"

#include <chrono>

namespace norvane {

/// Writes the value 0 into the stop file, which is created if need be. A fault is reported once for a run, which goes
/// on.
void clearCheckstop(SimState& sim, const RunEvents& events);

/// The latest read of the stop file. It is not read again while its stamp stays, since a run polls it at every step;
/// but a stamp is trusted only when it had stood for a while at that read, so that no later write can carry it too.
struct StopFileWatch {
    using Clock = std::chrono::steady_clock;

    Clock::duration settling = std::chrono::seconds(3); ///< more than a tick of any file system's clock
    Clock::duration trusted = std::chrono::seconds(1);  ///< a folder on a network may tell an old stamp
    FileStamp stamp;
    Clock::time_point stampMet; ///< when the stamp was met first
    Clock::time_point readAt;
    int value = 0;
};

/// Ends the run and brings up the exit question when the stop file holds 1, and clears the file again. A file that is
/// missing, empty or holds something other than a number counts as 0.
void pollCheckstop(SimState& sim, const RunEvents& events, const RunOperations& operations, StopFileWatch& watch);

} // namespace norvane
