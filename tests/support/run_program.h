#pragma once
// The program as a process of its own, in the working directory, which is the folder of a TestProgram.

#include <string>

namespace norvane {

struct Outcome {
    std::string out; ///< both streams, in order
    int status = -1; ///< -1: it did not end by itself
};

/// Runs the program with arguments as a shell takes them; `before` are commands for that shell.
Outcome runProgram(const std::string& arguments, const std::string& before = {});

} // namespace norvane
