#pragma once
// One running program: its simulation, its windows, and how the floors are wired together.

#include "core/run_operations.h"
#include "core/sim_state.h"
#include "platform/interface.h"

#include <functional>
#include <string>

namespace norvane {

/// Stays where it is: the operations refer to the windows.
struct Program {
    Program() = default;
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    SimState sim;
    Interface ui;
    RunOperations operations;
};

/// Where and how the program was started.
struct ProgramStart {
    std::string folder;   ///< of the program file, absolute
    std::string name;     ///< of the program file; one that ends in "_" before its extension starts in batch mode
    std::string geometry; ///< a geometry that the start named, for batch mode; may be empty
    std::function<bool()> mayRun = [] { return true; }; ///< asked in batch mode when the geometry has been read
};

/// Connects the run loop with the floors above it. The first thing to do with a program.
void connectProgram(Program& program);

/// The start of the program: sets the lists to the program's folder and fills the list of quantities. In batch mode it
/// loads the geometry (the one named, else the only one in the program's folder) and runs it, and returns when that run
/// has stopped.
void startProgram(Program& program, const ProgramStart& start);

/// Makes a folder and a file of it the selection of Dir1 and File1. `path` may be relative to the working directory.
void selectGeometry(Program& program, const std::string& path);

} // namespace norvane
