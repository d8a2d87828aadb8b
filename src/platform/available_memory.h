#pragma once

namespace norvane {

/// Bytes of memory that this process can still take: what is free in the machine, in the control groups that it belongs
/// to and under its own limit of address space, whichever is least; 0 where the system reports none of them.
double availableMemory();

} // namespace norvane
