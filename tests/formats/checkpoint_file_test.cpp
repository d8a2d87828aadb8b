// A checkpoint gives back every bit, and no damaged one is taken.

#include "core/run_memory.h"
#include "formats/checkpoint_file.h"
#include "formats/netcdf_file.h"
#include "platform/sealed_file.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <filesystem>
#include <tuple>

namespace norvane {
namespace {

using testing::HasSubstr;

constexpr const char* fileName = "m_checkpoint.nc";

/// Fields of a different value each, with a negative zero and a value that is no number among them.
void fill(SimState& sim) {
    float value = 1.1f;
    for (const KeptField& field : keptFields(sim))
        for (float* const values : field.arrays)
            for (std::int32_t cell = 0; cell < sim.nCells; ++cell) values[cell] = value *= 1.0001f;
    keptFields(sim).front().arrays.front()[0] = -0.0f;
    sim.pressure[1] = std::bit_cast<float>(0x7FC12345);
}

std::vector<std::string> bitsOf(SimState& sim) {
    std::vector<std::string> bits;
    for (const KeptField& field : keptFields(sim))
        for (const float* const values : field.arrays)
            bits.emplace_back(reinterpret_cast<const char*>(values), sizeof(float) * std::size_t(sim.nCells));
    return bits;
}

Checkpoint someNumbers() {
    return {"norvane 9.9",
            123,
            -7,
            2000000000,
            true,
            "abc",
            0xFEDCBA9876543210,
            1,
            42,
            {{"--plot-every", "5"}},
            {{"log", "17"}, {"--probe", "a\tb"}, {"--none", ""}, {"--long", std::string(70000, 'x')}}};
}

class CheckpointFile : public testing::Test {
protected:
    CheckpointFile() {
        test.build("NS 1\t\t\nL\t\t\nTT 400\t\t\n\t\t\nL\t\t\n\t\t\n\t\t\nL\t\t");
        fill(test.sim);
        EXPECT_EQ(writeCheckpoint(fileName, test.sim, someNumbers()), "");
        whole = test.read(fileName);
    }

    /// What is wrong with a file of these bytes; empty: nothing.
    std::string faultOf(const std::string& bytes) {
        test.write(fileName, bytes);
        Checkpoint read;
        const std::string fault = readCheckpoint(fileName, read);
        return fault.empty() ? readCheckpointFields(fileName, test.sim) : fault;
    }

    TestProgram test;
    std::string whole;
};

TEST_F(CheckpointFile, givesBackEveryBit) {
    const std::vector<std::string> bits = bitsOf(test.sim);
    ASSERT_EQ(bits.size(), 6U * (2 + 1 + 3) + 4 + 2 + 3) << "slots of species, energy and momentum; primitives";
    for (const KeptField& field : keptFields(test.sim))
        for (float* const values : field.arrays) std::fill_n(values, test.sim.nCells, 5.0f);
    Checkpoint read;
    ASSERT_EQ(readCheckpoint(fileName, read), "");
    EXPECT_EQ(readCheckpointFields(fileName, test.sim), "");
    EXPECT_EQ(bitsOf(test.sim), bits);
    const Checkpoint wanted = someNumbers();
    EXPECT_EQ(std::tie(read.program, read.step, read.firstStep, read.stopStep, read.afterOutputs, read.table,
                       read.model, read.radiation, read.random, read.settings, read.positions),
              std::tie(wanted.program, wanted.step, wanted.firstStep, wanted.stopStep, wanted.afterOutputs,
                       wanted.table, wanted.model, wanted.radiation, wanted.random, wanted.settings, wanted.positions));
}

TEST_F(CheckpointFile, isRefusedCutOrChangedAnywhere) {
    for (std::size_t at = 0; at < whole.size(); at += at + 60 < whole.size() ? 241 : 1) {
        std::string changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ 1 << at % 8);
        ASSERT_THAT(faultOf(changed), HasSubstr("damaged")) << at;
        ASSERT_THAT(faultOf(whole.substr(0, at)), HasSubstr("damaged")) << at;
    }
    EXPECT_THAT(faultOf(whole + '\0'), HasSubstr("damaged"));
    EXPECT_EQ(faultOf(whole), "");
}

/// A seal that fits says nothing of what was damaged before the file was sealed.
TEST_F(CheckpointFile, hasAChecksumOverEachFieldAndOverTheNumbers) {
    const std::string unsealed = whole.substr(0, whole.rfind("\nnorvane CRC"));
    const auto faultOfSealed = [&](const std::string& bytes) {
        EXPECT_TRUE(writeSealed(fileName, bytes));
        return faultOf(test.read(fileName));
    };
    ASSERT_EQ(faultOfSealed(unsealed), "");
    for (const KeptField& field : keptFields(test.sim)) {
        const std::string values(reinterpret_cast<const char*>(field.arrays.back()),
                                 sizeof(float) * std::size_t(test.sim.nCells));
        const std::size_t at = unsealed.find(values);
        ASSERT_NE(at, std::string::npos) << field.name;
        std::string changed = unsealed;
        changed[at + 5] = static_cast<char>(changed[at + 5] ^ 4);
        EXPECT_EQ(faultOfSealed(changed), std::string(field.name) + " is damaged: its checksum does not fit");
    }
    NetcdfFile file = NetcdfFile::createInMemory(1000);
    file.setNumber(NetcdfFile::wholeFile, "checkpoint_format", std::int32_t{1});
    file.setNumber(NetcdfFile::wholeFile, "arithmetic", arithmeticVersion);
    for (const char* name : {"step", "first_step", "stop_step", "after_outputs"})
        file.setNumber(NetcdfFile::wholeFile, name, std::int32_t{1});
    for (const char* name :
         {"program", "table_sha256", "model_crc64", "radiation_crc64", "spectrum_random", "header_crc64"})
        file.setText(NetcdfFile::wholeFile, name, "0");
    for (const char* name : {"settings", "positions"}) {
        const int length = file.addDimension(std::string(name) + "_length", 1);
        const std::int8_t end = '\n';
        file.write(file.addVariable<std::int8_t>(name, {{length}, {}, 0}), {0}, {1}, &end);
    }
    EXPECT_THAT(faultOfSealed(std::string(file.closeToMemory().view())), HasSubstr("damaged"));
}

TEST_F(CheckpointFile, isRefusedForAnotherGridOrVersion) {
    const auto faultOfVersions = [&](std::int32_t format, std::int32_t arithmetic) {
        NetcdfFile file = NetcdfFile::createInMemory(1000);
        if (format > 0) file.setNumber(NetcdfFile::wholeFile, "checkpoint_format", format);
        file.setNumber(NetcdfFile::wholeFile, "arithmetic", arithmetic);
        EXPECT_TRUE(writeSealed("v.nc", file.closeToMemory().view()));
        return faultOf(test.read("v.nc"));
    };
    EXPECT_EQ(faultOfVersions(0, 1), "it is no checkpoint of a run");
    EXPECT_THAT(faultOfVersions(2, arithmeticVersion), HasSubstr("it has format version 2, and this program needs"));
    EXPECT_THAT(faultOfVersions(1, arithmeticVersion + 1), HasSubstr("it has arithmetic version "));
    TestProgram other;
    other.build("NS 1\t\nL\t\n\t\nL\t");
    other.write(fileName, whole);
    EXPECT_EQ(readCheckpointFields(fileName, other.sim), "velocity has another shape than the grid");
    other.build("NS 0\t\t\nL\t\t\nTT 400\t\t\n\t\t\nL\t\t\n\t\t\n\t\t\nL\t\t");
    other.write(fileName, whole);
    EXPECT_EQ(readCheckpointFields(fileName, other.sim), "concentration has another shape than the grid");
}

/// What stages change is kept, and all else is compared.
TEST(runMemory, fingerprintsSeeEveryChangeOfAModel) {
    TestProgram test;
    const std::string rest = "\t\t\nL\t\t\n\t\t\nL\t\t";
    const auto printOf = [&](const std::string& keys) {
        test.build(keys + rest);
        return modelFingerprint(test.sim);
    };
    const std::uint64_t plain = printOf("DT 1E-5");
    EXPECT_EQ(printOf("zzz DT 1E-5"), plain);
    for (const char* keys :
         {"DT 2E-5", "DT 1E-5:TR 7", "DT 1E-5:GG 1;1", "DT 1E-5:VV 1;1", "DT 1E-5:ET 1", "DT 1E-5:WT -1",
          "DT 1E-5:RH 2", "DT 1E-5:WP 1", "DT 1E-5:CP 7", "DT 1E-5:RR 7", "DT 1E-5:GP 5;1"})
        EXPECT_NE(printOf(keys), plain) << keys;
    EXPECT_EQ(radiationFingerprint(test.sim), 0U);
}

TEST(sealedFile, takesItsNameAndKeepsTheOneBefore) {
    TestProgram test;
    const auto publish = [&](const std::string& content, const std::string& older) {
        test.write("fresh", content);
        EXPECT_TRUE(publishFile("fresh", "f", older));
        EXPECT_FALSE(test.exists("fresh"));
        return test.read("f") + "," + test.read("g");
    };
    EXPECT_EQ(publish("1", "g"), "1,(missing)");
    EXPECT_EQ(publish("2", "g"), "2,1");
    EXPECT_EQ(publish("3", "g"), "3,2");
    EXPECT_EQ(publish("4", ""), "4,2");
    std::filesystem::remove("g");
    std::filesystem::create_hard_link("f", "g"); // a kill between the two renames
    EXPECT_EQ(publish("5", "g"), "5,4");
    EXPECT_FALSE(test.exists("g.link"));
    EXPECT_FALSE(publishFile("missing", "f", ""));
}

} // namespace
} // namespace norvane
