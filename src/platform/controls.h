#pragma once
// Windows as plain records. The logic reads and writes these; a front end copies a person's input into them, calls the
// handler of the event and shows the records as they are then. Controls keep the names of the forms.

#include "platform/surface.h"

#include <cstdint>
#include <string>
#include <vector>

namespace norvane {

struct Form {
    std::string name;
    std::string caption;
    bool visible = false;
    float width = 0;  ///< pixels, inner size
    float height = 0; ///< pixels, inner size
};

struct TextBox {
    std::string text;
};

struct Selector {
    std::string text; ///< what the closed selector shows: the selected entry, or text of its own
    std::vector<std::string> entries;
    int listIndex = -1; ///< -1: no selection
    bool visible = true;

    int listCount() const { return static_cast<int>(entries.size()); }

    void clear() {
        entries.clear();
        text.clear();
        listIndex = -1;
    }

    /// Selects an entry; an index that the list does not have selects nothing and leaves the text.
    void select(int index) {
        listIndex = index >= 0 && index < listCount() ? index : -1;
        if (listIndex >= 0) text = entries[static_cast<std::size_t>(listIndex)];
    }
};

struct DirectoryList {
    std::string path; ///< absolute, no separator after it
};

struct FileList {
    static constexpr const char* ending = ".gmt"; ///< the list shows the files with the pattern "*.gmt"
    std::string path;
    std::string selected; ///< file name without folder; empty: no selection
};

/// The command window. Its inner size is 2640 by 5370 twips.
struct CommandWindow {
    Form form{"NV_in", "Commands", true, 176, 358};
    TextBox Text1; ///< status: written by the system, never read
    DirectoryList Dir1;
    FileList File1;
};

/// One of the two dimensions of a plotted plane, as the plot saw it.
struct PlotAxis {
    int dim = 0;
    bool exists = false; ///< false: the grid has no such dimension, and the axis holds one cell of a fixed size
    std::int64_t count = 0;
    std::int64_t stride = 0;
    float zoom = 1;
    float offset = 0;
};

/// How the latest plot lies on its surface, for whoever asks which cell a pixel shows.
struct PlotLayout {
    bool isDrawn = false; ///< false: the picture is clear
    PlotAxis across;
    PlotAxis down;
    std::int64_t first = 1; ///< cell number at the coordinates 0, 0 of the plane
    float width = 0;        ///< pixels, of the surface
    float height = 0;       ///< pixels, of the surface
    float scale = 0;        ///< pixels for a stretched length unit
    int quantity = 0;
    int component = 0;
    std::int32_t cells = 0; ///< of the grid that was plotted
};

/// The plot window. Its inner size is 8520 by 10350 twips.
struct PlotWindow {
    Form form{"NV_out", "Norvane", false, 568, 690};
    Surface Picture1;
    PlotLayout layout;
};

/// The display panel. Its inner size is 5790 by 3135 twips; element k of an array belongs to dimension k + 1.
struct DisplayWindow {
    static constexpr int columns = 4;

    Form form{"NV_dsp", "Display", false, 386, 209};
    TextBox zzoom[columns]{{"Text1"}, {"Text1"}, {"Text1"}, {"Text1"}};
    TextBox Offset[columns]{{"Text1"}, {"Text1"}, {"Text1"}, {"Text1"}};
    Selector ComboSlice[columns]{{"Combo2", {}}, {"Combo2", {}}, {"Combo2", {}}, {"Combo2", {}}};
    Selector Combo1{"Combo1", {}}; ///< the quantity
    Selector Dimen;                ///< the component or species
    TextBox mMinscale{"Text1"};
    TextBox mMaxScale{"Text2"};
};

/// The exit question. Its inner size is 2775 by 2070 twips.
struct ExitWindow {
    Form form{"NV_einde", "You Called?", false, 185, 138};
};

} // namespace norvane
