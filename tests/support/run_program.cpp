#include "support/run_program.h"

#include <sys/wait.h>

#include <cstdio>

namespace norvane {

Outcome runProgram(const std::string& arguments, const std::string& before) {
    Outcome outcome;
    const std::string command = before + " " NORVANE_PROGRAM " " + arguments + " 2>&1";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return outcome;
    char block[4096];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, pipe)) > 0;) outcome.out.append(block, got);
    const int status = ::pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

} // namespace norvane
