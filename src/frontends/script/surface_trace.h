#pragma once

#include "platform/surface.h"

#include <functional>
#include <string>

namespace norvane {

/// Puts a printer before the operations of a surface: each prints a line of its own, then goes on to the operation that
/// the surface had. The surface must outlive its operations and stay where it is.
void traceSurface(Surface& surface, const std::function<void(const std::string& line)>& print);

} // namespace norvane
