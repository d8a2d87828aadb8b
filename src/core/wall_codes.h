#pragma once
// What the numbers of wall codes mean at run time: wallVelocity, wallPressure, wallTemperature, wallConcentration.
// Mostly their sign counts; each code acts on its own quantity alone.

#include <cstdint>

namespace norvane {

/// Codes whose number counts beside the sign.
enum WallCode : std::int16_t {
    wallFree = 0,
    wallClosed = 1,     ///< wallVelocity: what the end of a row gets; every positive code closes alike
    wallBothClosed = 2, ///< wallVelocity, as written in a table: the build closes both faces with it, no cell keeps it
    wallExchange = 1,   ///< wallConcentration: species 0 and 1 are exchanged; other positive codes do nothing
    wallRamped = -2,    ///< wallVelocity: imposed with a ramp; every other negative code imposes without one
};

/// The quantity isn't integrated: slopes are not applied to it (species masses, energy, a component of momentum).
/// Of the whole cell (wallVelocity of component 0): neither drag nor gravity acts on it.
constexpr bool isHeld(std::int16_t code) { return code != wallFree; }

/// wallVelocity: nothing is carried through the upper face, whose velocity and momentum stay. wallTemperature: the
/// energy stays. No terms are formed for what stays.
constexpr bool isClosed(std::int16_t code) { return code > 0; }

/// The primitive keeps the value that the model gives (velocity, temperature, concentrations), and the conserved
/// quantity follows from it. wallPressure: the pressure stays, and a sink balances the masses that come in.
constexpr bool isImposed(std::int16_t code) { return code < 0; }

/// wallVelocity: the imposed velocity rises in a straight line over the first rampSteps steps.
constexpr bool isRamped(std::int16_t code) { return code == wallRamped; }

/// wallConcentration: species 1 relaxes towards its balance with species 0.
constexpr bool exchangesSpecies(std::int16_t code) { return code == wallExchange; }

} // namespace norvane
