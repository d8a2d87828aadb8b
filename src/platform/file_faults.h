#pragma once
// Faults of the system on demand, for tests of what the program makes of them. Without such a test nothing happens.

#include <cstddef>
#include <cstdint>

namespace norvane {

/// What changes a file. An open counts where it is for writing.
enum class FileOperation { open, write, flush, cut, close, rename };

/// What is to become of an operation.
struct FileFault {
    int error = 0;                    ///< errno; 0: none
    std::size_t mostBytes = SIZE_MAX; ///< of a write that are written before the error
};

/// Asked before each operation from now on; null: no more.
using FileFaults = FileFault (*)(FileOperation operation);
void setFileFaults(FileFaults faults);

/// For the operations themselves.
FileFault faultOf(FileOperation operation);

/// Sets errno, and gives true, where the operation is to fail.
bool isToFail(FileOperation operation);

} // namespace norvane
