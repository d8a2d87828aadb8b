#pragma once
// What the fuzzed readers share: a folder in memory for their files, and a program without a person.

#include "shell/program.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

/// The bytes of a fuzzer as a text.
inline std::string_view asText(const std::uint8_t* bytes, std::size_t length) {
    return {reinterpret_cast<const char*>(bytes), length};
}

/// Empties the folder of this process, which is the working directory from the first call on.
void enterEmptyFolder();

/// Lets the process take so many bytes more as long as this lives, so that a table that asks for much is refused by its
/// own guard.
struct MemoryLimit {
    explicit MemoryLimit(std::size_t bytes);
    ~MemoryLimit();
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;
};

/// Ends the process, as a broken promise of the program.
void require(bool holds, const char* promise);

/// A program that answers every question with its default, and stops each run after so many yields.
struct FuzzProgram {
    explicit FuzzProgram(int mostYields = 60);

    /// Loads a geometry of this text.
    void load(std::string_view table);

    Program program;
    SimState& sim = program.sim;
    Interface& ui = program.ui;
    int yieldsLeft;
};

/// A table of two species with 3 by 2 cells, of which each kind of term acts in one.
extern const char* const smallTable;

void writeBytes(const std::string& name, std::string_view bytes);
std::string bytesOf(const std::string& name);

} // namespace norvane
