#pragma once

namespace norvane {

/// From now on the first interrupt or termination request is noted, and the second ends the process.
void catchStopSignals();

/// Whether one has come.
bool isStopSignalled();

/// From now on SIGUSR1, where there is one, asks for a checkpoint instead of ending the process.
void catchCheckpointSignal();

/// Whether it has come since the last time that this was asked.
bool takeCheckpointSignal();

} // namespace norvane
