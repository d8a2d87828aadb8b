#define NORVANE_KERNEL_SET baselineKernels
#define NORVANE_KERNEL_NAME "baseline"
#include "core/row_kernels.inc"
