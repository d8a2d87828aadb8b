#pragma once
// Random models with everything in them.

#include "core/sim_state.h"

#include <iterator>
#include <random>
#include <string>

namespace norvane {

class RandomModel {
public:
    explicit RandomModel(unsigned seed) : random_(seed) {}

    /// A table of one to five dimensions whose cells hold keys of all kinds.
    std::string table() {
        const int dims = pick(1, 5);
        const int columns = pick(1, pick(0, 2) == 0 ? 40 : 7);
        const int rows = dims >= 2 ? pick(2, 5) : 1;
        keysInHundred_ = pick(0, 2) == 0 ? 3 : 30; // rows without any code have loops of their own
        const std::string tabs(static_cast<std::size_t>(columns - 1), '\t');
        std::string text =
            "NS " + std::to_string(pick(0, 3)) + ":" + defaults() + tabs + "\n" + "x" + tabs + "\nL" + tabs;
        int blocks[3] = {dims >= 3 ? pick(2, 3) : 1, dims >= 4 ? 2 : 1, dims >= 5 ? 2 : 1};
        for (int five = 1; five <= blocks[2]; ++five)
            for (int four = 1; four <= blocks[1]; ++four)
                for (int three = 1; three <= blocks[0]; ++three) {
                    for (int row = 0; row < rows; ++row) text += "\n" + rowText(columns);
                    const bool endsFour = three == blocks[0] && dims >= 4;
                    const bool endsFive = endsFour && four == blocks[1] && dims >= 5;
                    text += (endsFive ? "\nL5" : endsFour ? "\nL4" : "\nL") + tabs;
                }
        return text;
    }

    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

private:
    std::string defaults() {
        std::string text = "DT 1E-5:DD 0;0.01:LA 5:ET 0.1:TR 3:CC 1;0.3:RR " + std::to_string(pick(0, 50)) + ":RH "
                           + std::to_string(pick(1, 3));
        if (pick(0, 1) == 0) text += ":GG 1;-3:GG 2;9.81";
        if (pick(0, 1) == 0) text += ":GP 11;1E-6:GP 12;9000:GP 13;0.5:GP 14;5000:GP 15;0.01";
        if (pick(0, 7) == 0) text += ":ET 0:LA 0";
        return text;
    }

    std::string rowText(int columns) {
        static constexpr const char* items[] = {
            "WV 0;2",    "WV 0;1",      "WV 1;1",     "WV 2;1",   "WV 1;-1:VV 1;5", "WV 2;-2:VV 2;-4", "WV 1;0",
            "WV 0;-1",   "WT 1",        "WT -1",      "WP 1",     "WP -1",          "WC -1",           "WC 1",
            "PP 5E5",    "PP 1000",     "TT 900",     "TT 50",    "PP 0",           "PP -1E4",         "VV 1;30",
            "VV 2;-20",  "VV 1;-0",     "VV 3;1E-42", "CC 1;0.9", "CP 400",         "LA -3",           "ET 1E-3",
            "DD 1;0.02", "DD -2;0.005", "HH 1;2",     "RR 1E4",   "WC 1:CC 1;1",    "WV 3;1:WV 3;-1",  "DD 2;0"};
        std::string text;
        for (int column = 0; column < columns; ++column) {
            if (column > 0) text += '\t';
            if (pick(1, 100) > keysInHundred_) continue;
            text += '.'; // a text that begins with L would make its row an L row
            text += items[pick(0, static_cast<int>(std::size(items)) - 1)];
            if (pick(0, 2) == 0) text += std::string(":") + items[pick(0, static_cast<int>(std::size(items)) - 1)];
        }
        return text;
    }

    std::mt19937 random_;
    int keysInHundred_ = 0;
};

inline void addRandomPairs(SimState& sim, RandomModel& random) {
    sim.radActive = true;
    sim.sigmaRoot = 0.0154;
    sim.radPairCount = 5;
    sim.radFactor.allocate(0, 5);
    for (auto& cells : sim.radPair) cells.allocate(0, 5);
    for (int pair = 1; pair <= 5; ++pair) {
        sim.radPair[0][pair] = random.pick(1, sim.nCells + 1);
        sim.radPair[1][pair] = random.pick(-sim.nCells, sim.nCells);
        sim.radFactor[pair] = 0.01f;
    }
}

} // namespace norvane
