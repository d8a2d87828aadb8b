#pragma once
// A whole program in a fresh folder of its own, with what a person would have seen kept in order.

#include "shell/program.h"

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace norvane {

class TestProgram {
public:
    /// Makes the folder, goes into it (the stop file lies in the working directory) and starts the program there.
    /// `parent`: where; empty: among the temporary files.
    explicit TestProgram(const std::filesystem::path& parent = {});
    /// Goes back and removes the folder.
    ~TestProgram();
    TestProgram(const TestProgram&) = delete;
    TestProgram& operator=(const TestProgram&) = delete;

    Program program;
    SimState& sim = program.sim;
    Interface& ui = program.ui;
    std::filesystem::path folder;
    std::vector<std::string> messages;              ///< since the start or since takeMessages
    std::vector<std::string> events;                ///< "shown: FORM", "hidden: FORM", "beep", "ended"
    std::deque<std::optional<std::string>> answers; ///< for input boxes; none: the default text

    /// Writes a geometry, selects and imports it. Gives the messages of the load.
    std::vector<std::string> load(const std::string& table, const std::string& name = "m.gmt");

    /// Imports a copy of an example, without its ending.
    void loadExample(const std::string& name);

    /// As load, and then builds the model, as the start of a run does.
    void build(const std::string& table);

    /// Raises the Click event of a button, "NV_in.Command2". An unknown name fails the test.
    void click(const std::string& name);

    std::vector<std::string> takeMessages();

    void write(const std::string& name, const std::string& content) const;
    /// The bytes of a file in the folder; "(missing)" where there is none.
    std::string read(const std::string& name) const;
    bool exists(const std::string& name) const;

private:
    std::filesystem::path formerDirectory_;
};

/// The slopes of a stage of a model that may have been changed by hand.
void computeSlopes(SimState& sim, int stage);

/// A hash of all conserved and primitive fields of the cells, equal only for equal bit patterns (but for accidents).
std::uint64_t stateHash(const SimState& sim);

/// The same without the masses of the species after one.
std::uint64_t stateHash(const SimState& sim, int lastSpecies);

} // namespace norvane
