#include "frontends/desktop/control_texts.h"

#include <string_view>

namespace norvane {

namespace {

constexpr ControlText table[] = {
    {"NV_in", "Command1", "i", "Import geometry",
     "Reads the geometry selected below.\nWhat was computed from the one before is lost: save it first."},
    {"NV_in", "Command2", "R", "Recalculate",
     "Builds the model and runs it from its first step.\n"
     "The state reached so far and the settings of the display panel are lost.\nDuring a run it starts over.\n"
     "A right click in this window, or Ctrl+T, sets the threads of the next run."},
    {"NV_in", "Command5", "C", "Continue",
     "Goes on from the state reached so far and keeps the settings of the display panel.\n"
     "Directly after an import it starts from the first step, as Recalc does."},
    {"NV_in", "Command4", "d", "Display panel",
     "Opens the display panel.\nStops a run after the step in hand; Cont goes on with it."},
    {"NV_in", "Command8", "a", "Import view factors",
     "Reads the view factors beside the geometry, the file with _rad after its name.\n"
     "They replace those read before, also in a run."},
    {"NV_in", "Command6", "S", "Save state",
     "Writes the state beside the geometry, replacing the file with _state after its name.\nA run goes on."},
    {"NV_in", "Command7", "l", "Recall state",
     "Reads the state that was saved last.\n"
     "The present state and the settings of the display panel are lost. Cont goes on from there."},
    {"NV_in", "Text1", "", "Status", "The step shown last, or the size of the geometry just read."},
    {"NV_in", "Dir1", "", "Folders",
     "Double click or Enter opens a folder; .. is the one above.\n"
     "A geometry that was imported keeps its own folder: results go there."},
    {"NV_in", "File1", "", "Geometries",
     "The geometries (*.gmt) in this folder.\nEnter imports the one selected, as the button does."},
    {"NV_out", "Picture1", "", "Plot",
     "The plot. Ctrl+C copies it; the pointer over a cell shows its number, position and value."},
    {"NV_dsp", "zzoom", "Z", "Zoom",
     "Stretch of this dimension. The plot is fitted to the window, so only ratios show."},
    {"NV_dsp", "Offset", "f", "Offset", "Metres that the picture is moved back along this dimension."},
    {"NV_dsp", "ComboSlice", "c", "Slice",
     "Columns or Rows draws this dimension across or downward; else the slice that is shown.\n"
     "Choose one Columns and one Rows."},
    {"NV_dsp", "Combo1", "", "Quantity",
     "The quantity that is shown. Acts at once for ToFile and a running plot, the rest waits for OK.\n"
     "Pick from the list."},
    {"NV_dsp", "Dimen", "", "Component", "The component of the quantity, or the species."},
    {"NV_dsp", "mMinscale", "n", "Minimum of the scale",
     "Value at the bottom of the colour scale. Arrows: the speed drawn as long as one metre of the grid."},
    {"NV_dsp", "mMaxScale", "x", "Maximum of the scale",
     "Value at the top of the colour scale. Arrows: the longest one, in pixels."},
    {"NV_dsp", "Command2", "F", "Snapshot to a file",
     "Saves the plot as a bitmap beside the geometry, with date and time in its name.\n"
     "The plot window is empty afterwards, until the next plot."},
    {"NV_dsp", "Command3", "T", "Title of the plot",
     "Asks for the title of the next plots. Cancel leaves them without one."},
    {"NV_dsp", "Command1", "O", "OK", "Takes all settings, draws the plot anew and hides this panel."},
    {"NV_dsp", "Command4", "p", "Velocity spectrum",
     "Writes the velocity spectrum into the file NV_spectrum beside the geometry.\nA run waits meanwhile."},
    {"NV_einde", "Command1", "S", "Save and exit",
     "Writes the state beside the geometry, then ends the program, also where it could not be written."},
    {"NV_einde", "Command2", "X", "Exit without saving", "Ends the program at once. What was not saved is lost."},
    {"NV_einde", "Command3", "C", "Cancel or pause",
     "Hides this question. A run that it stopped stays stopped; Cont goes on with it."},
};

constexpr ControlText noText{"", "", "", "", ""};

} // namespace

const ControlText& textOf(const char* form, const char* control) {
    for (const ControlText& text : table)
        if (std::string_view(text.form) == form && std::string_view(text.control) == control) return text;
    return noText;
}

} // namespace norvane
