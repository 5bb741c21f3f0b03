#pragma once

/// On a function: compiles it for several widths of vector registers and picks the widest that the
/// processor has when the library is loaded. Loops in small functions that it calls take part when
/// these are [[gnu::always_inline]]. Results are the same on every width: no order of additions is
/// changed, and no multiply-add is fused that is not written as std::fma.
///
/// Empty where the compiler or the system cannot do it, and under sanitizers, whose run time is not
/// up yet when the choice is made.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) &&                              \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(__clang__)
#define KVSIG_WIDE_LOOPS                                                                           \
    __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#define KVSIG_FUSES_IN_WIDE_LOOPS __builtin_cpu_supports("x86-64-v3")
#else
#define KVSIG_WIDE_LOOPS
#if defined(__FP_FAST_FMAF)
#define KVSIG_FUSES_IN_WIDE_LOOPS true
#else
#define KVSIG_FUSES_IN_WIDE_LOOPS false
#endif
#endif

namespace kvsig {

/// Whether std::fma of floats is one instruction there; it gives the same where it is a function.
inline bool fusesInWideLoops() { return KVSIG_FUSES_IN_WIDE_LOOPS; }

} // namespace kvsig
