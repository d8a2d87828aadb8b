#pragma once

namespace norvane {

/// What the program returns to its caller when it ends.
enum ExitStatus : int {
    exitDone = 0,
    exitEndedByModel = 1, ///< negative density
    exitBadUse = 2,
    exitNoModel = 3,      ///< the geometry cannot be run
    exitFileFault = 4,    ///< a file cannot be read or written
    exitStoppedEarly = 5, ///< by a signal or the stop file
};

} // namespace norvane
