#pragma once

#include "frontends/script/script_driver.h"

namespace norvane {

/// Acts on the records of a program, as if windows stood before them.
ScriptHands handsOnRecords(Program& program);

} // namespace norvane
