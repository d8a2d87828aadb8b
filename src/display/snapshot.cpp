#include "display/snapshot.h"

#include "display/field_plot.h"
#include "platform/files.h"

#include <ctime>
#include <string>

namespace norvane {

namespace {

std::string stampOf(const std::tm& moment) {
    char text[64];
    return std::string(text, std::strftime(text, sizeof text, "_%Y%m%d_%H%M%S", &moment));
}

void tellFault(SimState& sim, const Interface& ui, const std::string& path, const std::string& reason) {
    sim.reported.snapshot = true;
    ui.showMessage("The snapshot " + path + " can't be written: " + reason
                   + (sim.runDepth > 0 ? ".\r\nThe run goes on without it." : "."));
}

} // namespace

void takeSnapshot(SimState& sim, Interface& ui, bool announce) {
    const std::string path = joinPath(sim.inputDir, sim.baseName + stampOf(localTime()) + ".bmp");
    Surface& surface = ui.NV_out.Picture1;
    clearPlot(ui);
    surface.setAutoRedraw(true);
    plotField(sim, ui);
    const std::string reason = surface.savePicture(path);
    clearPlot(ui);
    ui.yieldToInterface();
    surface.setAutoRedraw(false);

    if (!reason.empty() && (announce || !sim.reported.snapshot)) tellFault(sim, ui, path, reason);
    if (reason.empty() && announce) ui.showMessage(path + " created");
}

} // namespace norvane
