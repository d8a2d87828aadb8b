#pragma once
// What every result rests on: float and double as IEEE 754 has them, each operation rounded to the type of its
// operands, and no sum or product rearranged. A compiler that is set otherwise would give other bits without a word,
// so it is refused.

#include <cfloat>
#include <limits>

#ifdef __FAST_MATH__
#    error "Results must not depend on the compiler: build without -ffast-math and the like."
#endif
#if defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__ != 0
#    error "Infinities and NaNs are results here: build without -ffinite-math-only."
#endif

static_assert(FLT_EVAL_METHOD == 0, "float expressions must be rounded to float, double ones to double");
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<float>::digits == 24);
static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53);
