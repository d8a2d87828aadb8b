#pragma once

namespace norvane {

/// From now on the first interrupt or termination request is noted, and the second ends the process.
void catchStopSignals();

/// Whether one has come.
bool isStopSignalled();

} // namespace norvane
