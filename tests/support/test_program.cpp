#include "support/test_program.h"

#include "core/processor_engine.h"
#include "shell/command_window.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

namespace norvane {

namespace {

std::filesystem::path freshFolder(const std::filesystem::path& parent) {
    std::random_device random; // tests run side by side
    const std::string name = "norvane-test-" + std::to_string(random()) + std::to_string(random());
    const std::filesystem::path folder = (parent.empty() ? std::filesystem::temp_directory_path() : parent) / name;
    std::filesystem::create_directories(folder);
    return std::filesystem::canonical(folder);
}

} // namespace

TestProgram::TestProgram(const std::filesystem::path& parent)
    : folder(freshFolder(parent)), formerDirectory_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
    connectProgram(program);
    ui.showMessage = [this](const Report& report) { messages.push_back(report.text); };
    ui.askText = [this](const std::string&, const std::string& defaultText) -> std::optional<std::string> {
        if (answers.empty()) return defaultText;
        std::optional<std::string> answer = answers.front();
        answers.pop_front();
        return answer;
    };
    ui.formShown = [this](Form& form, bool wasVisible) {
        if (!wasVisible) events.push_back("shown: " + form.name);
    };
    ui.formHidden = [this](Form& form) { events.push_back("hidden: " + form.name); };
    ui.beep = [this] { events.emplace_back("beep"); };
    ui.endProgram = [this] { events.emplace_back("ended"); };
    startProgram(program, {folder.string(), "norvane", {}});
}

TestProgram::~TestProgram() {
    std::error_code ignored;
    std::filesystem::current_path(formerDirectory_, ignored);
    std::filesystem::remove_all(folder, ignored);
}

std::vector<std::string> TestProgram::load(const std::string& table, const std::string& name) {
    write(name, table);
    selectGeometry(program, (folder / name).string());
    takeMessages();
    click("NV_in.Command1");
    return takeMessages();
}

void TestProgram::loadExample(const std::string& name) {
    std::ifstream file(std::string(NORVANE_EXAMPLES) + "/" + name + ".gmt", std::ios::binary);
    ASSERT_TRUE(file) << "there is no example " << name;
    load({std::istreambuf_iterator<char>(file), {}}, name + ".gmt");
}

void TestProgram::build(const std::string& table) {
    load(table);
    program.operations.buildModel(sim);
}

void TestProgram::click(const std::string& name) {
    for (const Button& button : buttons()) {
        if (name == std::string(button.form) + "." + button.control) {
            norvane::click(program, button);
            return;
        }
    }
    ADD_FAILURE() << "there is no button " << name;
}

std::vector<std::string> TestProgram::takeMessages() {
    std::vector<std::string> taken;
    taken.swap(messages);
    return taken;
}

void TestProgram::write(const std::string& name, const std::string& content) const {
    std::ofstream file(folder / name, std::ios::binary);
    file << content;
    ASSERT_TRUE(file.flush()) << "can't write " << name;
}

std::string TestProgram::read(const std::string& name) const {
    std::ifstream file(folder / name, std::ios::binary);
    if (!file) return "(missing)";
    return {std::istreambuf_iterator<char>(file), {}};
}

bool TestProgram::exists(const std::string& name) const { return std::filesystem::exists(folder / name); }

void computeSlopes(SimState& sim, int stage) {
    StagePlan plan = planStages(sim);
    computeSlopes(sim, plan, stage);
}

std::uint64_t stateHash(const SimState& sim) { return stateHash(sim, sim.nsMax); }

std::uint64_t stateHash(const SimState& sim, int lastSpecies) {
    std::uint64_t hash = 1469598103934665603u;
    const auto add = [&](float value) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        hash = (hash ^ bits) * 1099511628211u;
    };
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        for (int slot = 0; slot <= workSlot; ++slot) {
            for (int species = 0; species <= lastSpecies; ++species) add(sim.stageSpecies(slot, species, cell));
            add(sim.stageEnergy(slot, cell));
            for (int dim = 1; dim <= sim.nDim; ++dim) add(sim.stageMomentum(slot, cell, dim));
        }
        for (int dim = 1; dim <= sim.nDim; ++dim) add(sim.velocity(cell, dim));
        add(sim.density[cell]);
        add(sim.temperature[cell]);
        add(sim.pressure[cell]);
    }
    return hash;
}

} // namespace norvane
