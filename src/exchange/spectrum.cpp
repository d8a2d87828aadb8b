#include "exchange/spectrum.h"

#include "core/number_text.h"
#include "platform/available_memory.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace norvane {

namespace {

constexpr const char* fileName = "NV_spectrum";
constexpr const char* lineEnd = "\r\n";
constexpr std::size_t rowLimit = 52; ///< two doubles in their frames, a tab and a line end

/// Without a geometry there is no folder yet: the file then lies in the working directory.
std::string spectrumPath(const SimState& sim) {
    return sim.inputDir.empty() ? fileName : joinPath(sim.inputDir, fileName);
}

constexpr const char* tooManyText = "So many frequency points don't fit in memory. No spectrum is written.";

/// What one sample needs, for dimensions [0..nDim]; element 0 is not used.
struct Sample {
    std::vector<double> waveVector; ///< 1/m
    std::vector<double> cosSum;     ///< m/s
    std::vector<double> sinSum;     ///< m/s
};

/// Draws a wave vector among those that the grid can resolve.
void drawWaveVector(SimState& sim, Sample& sample) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const double r = nextUniform(sim.spectrumRandom);
        const double modeNumber = std::floor(r * double(sim.cellCount[dim]) / 2.0);
        const double length = sim.cellPos(sim.nCells, dim);
        sample.waveVector[dim] = length == 0 ? 0 : 8 * modeNumber * std::atan(1.0) / length;
    }
}

double lengthOf(const SimState& sim, const std::vector<double>& vector) {
    double square = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) square += vector[dim] * vector[dim];
    return std::sqrt(square);
}

/// The direct Fourier sums of the velocity components: one sine and one cosine for each cell.
void sumOverCells(const SimState& sim, Sample& sample) {
    std::fill(sample.cosSum.begin(), sample.cosSum.end(), 0.0);
    std::fill(sample.sinSum.begin(), sample.sinSum.end(), 0.0);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        double phase = 0;
        for (int dim = 1; dim <= sim.nDim; ++dim) phase += double(sim.cellPos(cell, dim)) * sample.waveVector[dim];
        const double cosine = std::cos(phase);
        const double sine = std::sin(phase);
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            const double velocity = sim.velocity(cell, dim);
            sample.cosSum[dim] += velocity * cosine;
            sample.sinSum[dim] += velocity * sine;
        }
    }
}

double powerOf(const SimState& sim, const Sample& sample) {
    double power = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        power += sample.cosSum[dim] * sample.cosSum[dim];
        power += sample.sinSum[dim] * sample.sinSum[dim];
    }
    return power;
}

void appendRow(std::string& text, double waveNumber, double power) {
    appendFramed(text, waveNumber);
    text += '\t';
    appendFramed(text, power);
    text += lineEnd;
}

/// Whether the rows may fill the memory. A quarter of it is the limit: the model has to stay in there as well.
bool fitsMemory(std::int64_t rows) {
    const double memory = availableMemory();
    return memory == 0 || double(rows) * double(rowLimit) <= memory / 4;
}

/// Gives false where memory is short.
bool formatSpectrum(SimState& sim, std::int32_t pointCount, std::string& text) {
    const std::int64_t rows = std::int64_t{pointCount} + 1;
    if (!fitsMemory(rows)) return false;
    try {
        text.reserve(static_cast<std::size_t>(rows) * rowLimit);
        const std::vector<double> zeros(static_cast<std::size_t>(sim.nDim) + 1);
        Sample sample{zeros, zeros, zeros};
        for (std::int64_t row = 0; row < rows; ++row) {
            drawWaveVector(sim, sample);
            sumOverCells(sim, sample);
            appendRow(text, lengthOf(sim, sample.waveVector), powerOf(sim, sample));
        }
        return true;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) { // a length beyond what the library's strings can count
    }
    return false;
}

/// Reads an answer as a number in a cell text, where a comma may be the decimal separator.
std::optional<double> numberIn(std::string answer) {
    std::replace(answer.begin(), answer.end(), ',', '.');
    std::size_t length = 0;
    const double number = numericPrefix(answer, length);
    return length > 0 ? std::optional<double>(number) : std::nullopt;
}

} // namespace

double nextUniform(RandomSequence& sequence) {
    // SplitMix64: a counter whose bits are mixed; every state is a good one. The top 53 bits make the double.
    sequence.state += 0x9E3779B97F4A7C15u;
    std::uint64_t bits = sequence.state;
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ bits >> 27) * 0x94D049BB133111EBu;
    bits ^= bits >> 31;
    return static_cast<double>(bits >> 11) * 0x1p-53;
}

void exportSpectrum(SimState& sim, Interface& ui) {
    const std::optional<std::string> answer = ui.askText("How many frequency points?", "100");
    if (!answer || answer->empty()) return; // cancelled
    const std::optional<double> number = numberIn(*answer);
    if (!number)
        ui.showMessage("The number of frequency points has to be a number. No spectrum is written.");
    else if (*number > std::numeric_limits<std::int32_t>::max())
        ui.showMessage(tooManyText);
    else
        writeSpectrum(sim, ui, toInt32(*number));
}

bool writeSpectrum(SimState& sim, Interface& ui, std::int32_t pointCount, const std::string& path) {
    const std::string target = path.empty() ? spectrumPath(sim) : path;
    if (pointCount < 0) {
        ui.showMessage("The number of frequency points can't be below 0. No spectrum is written.");
        return false;
    }
    std::string text;
    if (!formatSpectrum(sim, pointCount, text)) {
        ui.showMessage(tooManyText);
        return false;
    }
    const FileResult opened = tryOpenForWriting(target);
    sim.openError = opened.error;
    if (!opened) {
        ui.showMessage(
            {"An error occured opening the file", ReportKind::note, 0, nameOf(target) + ": " + opened.reason});
        return false;
    }
    const FileResult written = replaceFile(target, text);
    if (!written) {
        ui.showMessage("The spectrum file " + printableName(nameOf(target)) + " can't be written: " + written.reason
                       + ".");
        return false;
    }
    ui.beep();
    ui.showMessage("Spectrum Done!");
    return true;
}

} // namespace norvane
