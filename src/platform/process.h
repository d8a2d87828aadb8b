#pragma once

#include <string>
#include <vector>

namespace norvane {

constexpr int processNotFound = -1;

/// Runs another program, found on the search path, to its end. Gives its exit status, processNotFound where there is no
/// such program, another negative number where it ended without a status.
int runProcess(const std::vector<std::string>& arguments);

/// A write beyond the limit of file size is a fault of that write from now on, and no longer ends the process.
void survivesFileSizeLimit();

/// The number by which the system knows this process: no other that runs has it.
int processNumber();

} // namespace norvane
