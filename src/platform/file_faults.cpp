#include "platform/file_faults.h"

#include <cerrno>

namespace norvane {

namespace {

FileFaults asked = nullptr; // by all files of the process, as the system's own faults are

} // namespace

void setFileFaults(FileFaults faults) { asked = faults; }

FileFault faultOf(FileOperation operation) { return asked == nullptr ? FileFault() : asked(operation); }

bool isToFail(FileOperation operation) {
    const FileFault fault = faultOf(operation);
    if (fault.error != 0) errno = fault.error;
    return fault.error != 0;
}

} // namespace norvane
