#pragma once
// The display panel: its controls show the display settings, and its handlers store them back. It validates nothing;
// settings are corrected where a plot uses them.

#include "core/sim_state.h"
#include "platform/interface.h"

namespace norvane {

/// Fills all controls from the settings and shows the panel without waiting. What was typed before is lost. The panel
/// has columns for the dimensions 1 to 4; those that the grid lacks show "---", those beyond keep their settings.
void showDisplayPanel(SimState& sim, Interface& ui);

/// Rebuilds the list of Dimen for showWhat, and hides Dimen where the quantity has no components.
void fillComponentList(const SimState& sim, Interface& ui);

/// A quantity was chosen in Combo1: showWhat follows at once, everything else waits for OK.
void chooseQuantity(SimState& sim, Interface& ui);

/// OK: stores all settings, plots where there is a geometry, and hides the panel.
void clickOk(SimState& sim, Interface& ui);

/// ToFile: takes a snapshot and announces it.
void clickToFile(SimState& sim, Interface& ui);

/// Title: asks for the title of the next plots; a Cancel leaves it empty.
void clickTitle(SimState& sim, Interface& ui);

} // namespace norvane
