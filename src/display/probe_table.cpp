#include "display/probe_table.h"

#include "core/number_text.h"
#include "display/shown_quantity.h"
#include "platform/letter_case.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace norvane {

namespace {

/// A reader of comma-separated values at a place of a text.
struct RecordReader {
    std::string_view text;
    std::size_t at = 0;
    std::int64_t line = 0; ///< that the latest record begins in, from 1
    std::int64_t linesRead = 0;
    std::vector<std::string> fields;

    bool isAtEnd() const { return at >= text.size(); }
};

enum class Record { whole, cut, unclosed };

/// Reads the quoted field at the place. Gives false where its quote isn't closed.
bool readQuoted(RecordReader& reader, std::string& field) {
    ++reader.at;
    for (; !reader.isAtEnd(); ++reader.at) {
        const char c = reader.text[reader.at];
        if (c == '\n') ++reader.linesRead;
        if (c != '"') {
            field += c;
        } else if (reader.at + 1 < reader.text.size() && reader.text[reader.at + 1] == '"') {
            field += c;
            ++reader.at;
        } else {
            ++reader.at;
            return true;
        }
    }
    return false;
}

/// Reads one record with the end of its line. cut: the text ends before that.
Record readRecord(RecordReader& reader) {
    reader.fields.assign(1, "");
    reader.line = reader.linesRead + 1;
    while (!reader.isAtEnd()) {
        const char c = reader.text[reader.at];
        std::string& field = reader.fields.back();
        if (c == '"' && field.empty()) {
            if (!readQuoted(reader, field)) return Record::unclosed;
            continue;
        }
        ++reader.at;
        if (c == '\n') {
            ++reader.linesRead;
            if (!field.empty() && field.back() == '\r') field.pop_back();
            return Record::whole;
        }
        if (c == ',')
            reader.fields.emplace_back();
        else
            field += c;
    }
    return Record::cut;
}

ProbeColumn columnOf(const std::string& head) {
    ProbeColumn column;
    column.name = head;
    const std::size_t bracket = head.rfind(" [");
    if (bracket != std::string::npos && head.back() == ']') {
        column.name = head.substr(0, bracket);
        column.unit = head.substr(bracket + 2, head.size() - bracket - 3);
    }
    const std::size_t colon = column.name.rfind(':');
    column.quantity = colon == std::string::npos ? column.name : column.name.substr(colon + 1);
    const std::size_t open = column.quantity.find('(');
    if (open != std::string::npos && column.quantity.back() == ')')
        column.quantity = column.quantity.substr(open + 1, column.quantity.size() - open - 2);
    return column;
}

/// Whether a field is a number, or says that there is none.
bool readValue(const std::string& field, double& value) {
    value = std::numeric_limits<double>::quiet_NaN();
    const std::string word = lowerCase(field);
    for (const std::string_view none : {"", "nan", "-nan", "inf", "-inf"})
        if (word == none) return true;
    std::size_t length = 0;
    const double number = numericPrefix(field, length);
    if (length == 0 || length != field.size()) return false;
    if (std::isfinite(number)) value = number;
    return true;
}

std::string inLine(const RecordReader& reader, const std::string& fault) {
    return "line " + std::to_string(reader.line) + ": " + fault;
}

std::string readHead(RecordReader& reader, ProbeTable& table) {
    if (readRecord(reader) != Record::whole) return inLine(reader, "the line of names is not complete");
    const bool isHead = reader.fields.size() >= 2 && reader.fields[0] == "step" && reader.fields[1] == "time [s]";
    if (!isHead) return inLine(reader, "this is no table of probes: its first columns must be step and time [s]");
    for (std::size_t k = 2; k < reader.fields.size(); ++k) table.columns.push_back(columnOf(reader.fields[k]));
    return {};
}

std::string takeRecord(const RecordReader& reader, ProbeTable& table) {
    const std::size_t wanted = table.columns.size() + 2;
    if (reader.fields.size() != wanted)
        return inLine(reader, "it has " + std::to_string(reader.fields.size()) + " values where the names are "
                                  + std::to_string(wanted));
    for (std::size_t k = 0; k < wanted; ++k) {
        double value = 0;
        if (!readValue(reader.fields[k], value))
            return inLine(reader, "value " + std::to_string(k + 1) + " is no number");
        (k == 0 ? table.steps : k == 1 ? table.times : table.columns[k - 2].values).push_back(value);
    }
    return {};
}

/// The words that two labels begin with: "Velocity" of "Velocity x" and "Velocity y".
std::string commonWords(const std::string& a, const std::string& b) {
    constexpr std::string_view dangling = " of species"; // of "Mass fraction of species 0" and that of 1
    if (a == b) return a;
    std::string common;
    for (std::size_t end = a.find(' '); end != std::string::npos; end = a.find(' ', end + 1))
        if (b.compare(0, end, a, 0, end) == 0 && (b.size() == end || b[end] == ' ')) common = a.substr(0, end);
    if (b.size() > a.size() && b.compare(0, a.size(), a) == 0 && b[a.size()] == ' ') common = a;
    if (common.ends_with(dangling)) common.resize(common.size() - dangling.size());
    return common;
}

/// The panel for a unit, named after what all of its lines show.
ChartPanel& panelFor(const SimState& sim, LineChart& chart, const ProbeColumn& column) {
    ShownQuantity shown;
    shown.label = column.quantity;
    shown.unit = column.unit;
    chooseShown(sim, column.quantity, 0, shown); // of a table of another geometry names stay as they are
    for (ChartPanel& panel : chart.panels)
        if (panel.unit == shown.unit) {
            panel.name = commonWords(panel.name, shown.label);
            return panel;
        }
    chart.panels.push_back({shown.label, shown.unit, {}, false, {}, false});
    return chart.panels.back();
}

} // namespace

std::string readProbes(const std::string& text, ProbeTable& table) {
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    RecordReader reader;
    reader.text = text;
    if (reader.text.substr(0, byteOrderMark.size()) == byteOrderMark) reader.at = byteOrderMark.size();
    std::string fault = readHead(reader, table);
    while (fault.empty() && !reader.isAtEnd()) {
        const Record record = readRecord(reader);
        if (record == Record::unclosed) return inLine(reader, "a quotation mark is not closed");
        const bool isBlank = reader.fields.size() == 1 && reader.fields.front().empty();
        if (record == Record::whole && !isBlank) fault = takeRecord(reader, table);
    }
    return fault;
}

LineChart historyChart(const SimState& sim, const ProbeTable& table, std::span<const std::size_t> chosen) {
    LineChart chart;
    chart.across = "Time";
    chart.acrossUnit = "s";
    bool found = false;
    for (const double time : table.times) {
        if (!std::isfinite(time)) continue;
        chart.extent.low = found ? std::min(chart.extent.low, time) : time;
        chart.extent.high = found ? std::max(chart.extent.high, time) : time;
        found = true;
    }
    for (const std::size_t k : chosen) {
        if (k >= table.columns.size()) continue;
        const ProbeColumn& column = table.columns[k];
        panelFor(sim, chart, column).lines.push_back({column.name, table.times, column.values, false});
    }
    for (ChartPanel& panel : chart.panels)
        if (panel.lines.size() == 1) panel.name += ", " + panel.lines.front().name; // it has no legend
    return chart;
}

} // namespace norvane
