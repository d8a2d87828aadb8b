#include "verify/case_file.h"

#include "core/number_text.h"
#include "platform/files.h"
#include "platform/terminal_text.h"
#include "verify/case_lines.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

constexpr std::size_t mostBytes = 1 << 20;
constexpr std::size_t mostNames = 200; // one may be made of another, and they are worked out by recursion

bool parseModes(const std::string& text, RunModes& modes) {
    modes = {false, false};
    for (const std::string& word : wordsIn(text)) {
        if (word != "plain" && word != "compensated") return false;
        (word == "plain" ? modes.plain : modes.compensated) = true;
    }
    return modes.plain || modes.compensated;
}

/// Reads lines into a case. After a fault the lines that follow are not looked at.
class Reader {
public:
    Reader(const CaseLines& lines, Case& into) : lines_(lines), case_(into) {}

    std::string read() {
        readTexts();
        nameGrids();
        for (const CaseBlock& block : lines_.blocks)
            if (block.head.key == "table") readTable(block);
        nameLetsAndRecords();
        for (const CaseBlock& block : lines_.blocks)
            if (block.head.key == "grid") readGrid(block);
        readLets();
        for (const CaseBlock& block : lines_.blocks)
            if (block.head.key == "check") readCheck(block);
        if (case_.title.empty()) fail(1, "the case has no title");
        if (case_.grids.empty()) fail(1, "the case has no grid");
        if (case_.checks.empty()) fail(1, "the case has no check");
        return fault_;
    }

private:
    const CaseLines& lines_;
    Case& case_;
    std::string fault_;

    void fail(int line, const std::string& fault) {
        if (fault_.empty()) fault_ = atLine(line, fault);
    }

    void parse(const CaseLine& line, const std::string& text, const Symbols& symbols, Expression& into) {
        if (!fault_.empty()) return;
        const std::string fault = parseExpression(text, symbols, into);
        if (!fault.empty()) fail(line.number, "\"" + text.substr(0, 60) + "\": " + fault);
    }

    void addName(std::vector<std::string>& names, const std::string& name, int line) {
        const Symbols& symbols = case_.symbols;
        const auto isIn = [&](const auto& list) { return std::find(list.begin(), list.end(), name) != list.end(); };
        const bool isTable = std::any_of(symbols.tables.begin(), symbols.tables.end(),
                                         [&](const TableColumns& table) { return table.name == name; });
        if (!isFreeName(name)) fail(line, "\"" + name + "\" is no name, or has a meaning of its own already");
        if (isTable || isIn(symbols.names) || isIn(symbols.ranges)) fail(line, "\"" + name + "\" is given twice");
        if (symbols.names.size() + symbols.tables.size() > mostNames) fail(line, "there are too many names");
        names.push_back(name);
    }

    void readTexts() {
        for (const CaseLine& line : lines_.general) {
            if (line.key == "title") case_.title = line.text;
            if (line.key == "source") case_.sources.push_back(line.text);
            if (line.key == "run" && !parseModes(line.text, case_.modes))
                fail(line.number, "a case is run \"plain\", \"compensated\" or both");
            if (line.key != "about") continue;
            if (case_.about.empty() || line.text.empty()) case_.about.emplace_back();
            std::string& paragraph = case_.about.back();
            paragraph += (paragraph.empty() || line.text.empty() ? "" : " ") + line.text;
        }
    }

    /// The names that the first grid gives are those of all.
    void nameGrids() {
        for (const CaseBlock& block : lines_.blocks) {
            if (block.head.key != "grid") continue;
            for (const CaseLine& line : block.lines) {
                std::string name;
                std::string rest;
                if (line.key != "with" && line.key != "cells") continue;
                if (!splitAssignment(line.text, name, rest)) fail(line.number, "NAME = VALUE belongs there");
                addName(line.key == "with" ? case_.symbols.names : case_.symbols.ranges, name, line.number);
            }
            return;
        }
    }

    void nameLetsAndRecords() {
        for (const CaseLine& line : lines_.general) {
            std::string name;
            std::string rest;
            if (line.key != "record" && line.key != "let") continue;
            if (!splitAssignment(line.text, name, rest)) fail(line.number, "NAME = VALUE belongs there");
            if (line.key == "let") continue; // named one after another, when what they stand for is read
            const std::vector<std::string> words = wordsIn(name);
            std::int64_t every = 1;
            if (words.size() == 3 && words[1] == "every")
                every = toInt32(numericPrefix(words[2]));
            else if (words.size() != 1)
                fail(line.number, "NAME every N = VALUE belongs there");
            if (every < 1) fail(line.number, "a record comes every step or every few steps");
            std::vector<std::string> names;
            addName(names, words.empty() ? "" : words[0], line.number);
            case_.symbols.tables.push_back({names[0], {"n", "t", "value"}});
            case_.records.push_back({every, {}});
        }
    }

    void readLets() {
        std::size_t record = 0;
        for (const CaseLine& line : lines_.general) {
            std::string name;
            std::string rest;
            if (line.key == "let" && splitAssignment(line.text, name, rest)) {
                case_.lets.emplace_back();
                parse(line, rest, case_.symbols, case_.lets.back());
                addName(case_.symbols.names, name, line.number);
            }
        }
        for (const CaseLine& line : lines_.general) {
            std::string name;
            std::string rest;
            if (line.key == "record" && splitAssignment(line.text, name, rest))
                parse(line, rest, case_.symbols, case_.records[record++].body);
            if (line.key != "profile") continue;
            if (!splitAssignment(line.text, name, rest))
                fail(line.number, "TITLE = CELLS, X, VALUE, EXPECTED belongs there");
            CaseProfile profile{name, {}};
            const std::string fault = parseProfile(rest, case_.symbols, profile.points);
            if (!fault.empty()) fail(line.number, fault);
            case_.profiles.push_back(std::move(profile));
        }
    }

    void readTable(const CaseBlock& block) {
        const std::vector<std::string> words = wordsIn(block.head.text);
        if (words.size() < 2) return fail(block.head.number, "table NAME COLUMN ... belongs there");
        std::vector<std::string> name;
        addName(name, words[0], block.head.number);
        case_.symbols.tables.push_back({words[0], {words.begin() + 1, words.end()}});
        TableRows rows;
        for (const CaseLine& line : block.lines) {
            rows.emplace_back();
            for (const std::string& word : wordsIn(line.text)) {
                std::size_t length = 0;
                rows.back().push_back(numericPrefix(word, length));
                if (length == 0 || length != word.size())
                    fail(line.number, "\"" + word.substr(0, 20) + "\" is no number");
            }
            if (rows.back().size() != words.size() - 1) fail(line.number, "a row has a number for each column");
        }
        if (rows.empty()) fail(block.head.number, "the table has no rows");
        case_.tables.push_back(std::move(rows));
    }

    void readGrid(const CaseBlock& block) {
        CaseGrid grid;
        grid.name = block.head.text;
        Symbols earlier;
        for (const CaseLine& line : block.lines) {
            std::string name;
            std::string rest;
            if (line.key == "drawing") grid.drawing = line.text;
            if (line.key == "set") grid.changes.push_back(line.text);
            if (line.key != "with" && line.key != "cells") continue;
            if (!splitAssignment(line.text, name, rest)) fail(line.number, "NAME = VALUE belongs there");
            const bool isValue = line.key == "with";
            const std::vector<std::string>& names = isValue ? case_.symbols.names : case_.symbols.ranges;
            const std::size_t place = isValue ? grid.values.size() : grid.ranges.size();
            if (place >= names.size() || names[place] != name)
                fail(line.number, "all grids give the same names, in the same order");
            if (!isValue) {
                grid.ranges.push_back(rest);
                continue;
            }
            grid.values.emplace_back();
            parse(line, rest, earlier, grid.values.back());
            earlier.names.push_back(name);
        }
        if (grid.drawing.empty()) fail(block.head.number, "the grid has no drawing");
        if (grid.values.size() != case_.symbols.names.size() || grid.ranges.size() != case_.symbols.ranges.size())
            fail(block.head.number, "all grids give the same names, in the same order");
        case_.grids.push_back(std::move(grid));
    }

    std::pair<Expression, Expression> pairOf(const CaseLine& line, const std::string& text) {
        std::pair<Expression, Expression> pair;
        const std::vector<std::string> parts = commaParts(text);
        if (parts.size() != 2) fail(line.number, "a smallest and a largest value belong there");
        parse(line, parts[0], case_.symbols, pair.first);
        parse(line, parts.back(), case_.symbols, pair.second);
        return pair;
    }

    void readOrder(const CaseLine& line, CaseCheck& check) {
        const std::size_t with = line.text.find(" with ");
        if (with == std::string::npos) return fail(line.number, "LOW, HIGH with NAME belongs there");
        check.order = pairOf(line, line.text.substr(0, with));
        check.orderWith = stripped(std::string_view(line.text).substr(with + 6));
        const auto& names = case_.symbols.names;
        const auto end = names.end() - static_cast<std::ptrdiff_t>(case_.lets.size());
        if (check.orderWith != "dt" && std::find(names.begin(), end, check.orderWith) == end)
            fail(line.number, "\"" + check.orderWith + "\" is no name that the grids give");
    }

    void readWithin(const CaseLine& line, CaseCheck& check) {
        for (const std::string& part : commaParts(line.text)) {
            check.within.emplace_back();
            if (part == "-") continue;
            check.within.back().emplace();
            parse(line, part, case_.symbols, *check.within.back());
        }
        if (check.within.size() != 1 && check.within.size() != case_.grids.size())
            fail(line.number, "one bound for all grids, or one for each, belongs there");
    }

    void readCheck(const CaseBlock& block) {
        CaseCheck check;
        check.title = block.head.text;
        check.modes = case_.modes;
        bool hasMeasure = false;
        for (const CaseLine& line : block.lines) {
            if (line.key == "kind") {
                if (line.text != "discrete" && line.text != "continuous")
                    fail(line.number, "a check is \"discrete\" or \"continuous\"");
                check.kind = line.text == "discrete" ? CheckKind::discrete : CheckKind::continuous;
            }
            if (line.key == "measure") parse(line, line.text, case_.symbols, check.measure);
            hasMeasure = hasMeasure || line.key == "measure";
            if (line.key == "within") readWithin(line, check);
            if (line.key == "between") check.between = pairOf(line, line.text);
            if (line.key == "order") readOrder(line, check);
            if (line.key == "given") check.given = line.text;
            if (line.key == "note") check.note += (check.note.empty() ? "" : " ") + line.text;
            if (line.key == "run" && !parseModes(line.text, check.modes))
                fail(line.number, "a check is of runs \"plain\", \"compensated\" or both");
        }
        check.modes.plain = check.modes.plain && case_.modes.plain;
        check.modes.compensated = check.modes.compensated && case_.modes.compensated;
        if (check.title.empty() || !hasMeasure) fail(block.head.number, "a check has a title and a measure");
        if (!check.modes.plain && !check.modes.compensated)
            fail(block.head.number, "the case has no run for this check");
        case_.checks.push_back(std::move(check));
    }
};

} // namespace

CaseFault readCase(const std::string& folder, Case& into) {
    const std::string path = joinPath(folder, "case.txt");
    const std::string name = printableName(path) + ": ";
    std::string text;
    const FileResult read = readBeginning(path, mostBytes + 1, text);
    if (!read) return {true, name + "it can't be read: " + read.reason};
    if (text.size() > mostBytes) return {false, name + "it is larger than a megabyte; a case is a short text"};
    CaseLines lines;
    std::string fault = sortLines(text, lines);
    into = {};
    into.folder = folder;
    if (fault.empty()) fault = Reader(lines, into).read();
    return {false, fault.empty() ? "" : name + printableName(fault)};
}

} // namespace norvane
