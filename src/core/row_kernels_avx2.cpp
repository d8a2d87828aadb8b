#define NORVANE_KERNEL_SET avx2Kernels
#define NORVANE_KERNEL_NAME "AVX2"
#include "core/row_kernels.inc"
