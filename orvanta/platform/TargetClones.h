#pragma once
// ORVANTA_AVX2_CLONE: marks a loop-heavy function to be built twice, for the baseline x86-64
// instruction set the library targets and for AVX2, with the loader choosing the AVX2 build where the
// processor has it. Results are the same bit for bit: only the width of the vector steps differs.
// Elsewhere (other processors, compilers without the attribute) it marks nothing. ThreadSanitizer
// builds go without it: the loader runs the clone chooser before the sanitizer's runtime is up.

#if defined(__x86_64__) && defined(__has_attribute) && !defined(__SANITIZE_THREAD__)
#if __has_attribute(target_clones)
#define ORVANTA_AVX2_CLONE __attribute__((target_clones("avx2", "default")))
#endif
#endif
#ifndef ORVANTA_AVX2_CLONE
#define ORVANTA_AVX2_CLONE
#endif
