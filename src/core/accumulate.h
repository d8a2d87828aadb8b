#pragma once

#include "core/exact_arithmetic.h"

namespace norvane {

/// Adds to a field: one read, one addition in double, one rounding.
inline void accumulate(float& field, double amount) { field = static_cast<float>(static_cast<double>(field) + amount); }

} // namespace norvane
