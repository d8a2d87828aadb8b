#define NORVANE_KERNEL_SET avx512Kernels
#define NORVANE_KERNEL_NAME "AVX-512"
#include "core/row_kernels.inc"
