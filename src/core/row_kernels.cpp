#include "core/row_kernels.h"

namespace norvane {

extern const RowKernels baselineKernels;
#ifdef NORVANE_X86_KERNELS
extern const RowKernels avx2Kernels;
extern const RowKernels avx512Kernels;
#endif

RowKernelList availableRowKernels() {
    RowKernelList list{{&baselineKernels, nullptr, nullptr}, 1};
#ifdef NORVANE_X86_KERNELS
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2")) list.kernels[list.count++] = &avx2Kernels;
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq")
        && __builtin_cpu_supports("avx512vl"))
        list.kernels[list.count++] = &avx512Kernels;
#endif
    return list;
}

const RowKernels& bestRowKernels() {
    const RowKernelList list = availableRowKernels();
    return *list.kernels[list.count - 1];
}

} // namespace norvane
