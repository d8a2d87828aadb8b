#include "verify/expression.h"

#include "core/number_text.h"
#include "verify/built_in.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <utility>

namespace norvane {

namespace {

struct NamedEntry {
    std::string_view name;
};

constexpr NamedEntry foldNames[] = {{"sum"}, {"mean"}, {"largest"}, {"smallest"}, {"rms"}, {"first"}, {"last"}};
constexpr NamedEntry runNames[] = {{"t"}, {"n"}, {"dt"}, {"R"}, {"pi"}};
constexpr NamedEntry formNames[] = {{"if"}, {"along"}, {"series"}, {"root"}, {"cells"}, {"where"}};

/// A chain of operators is as deep a tree as it is long, and is evaluated by recursion.
constexpr std::size_t longestText = 2000;

bool isLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Operators of equal rank, from the weakest rank to the strongest; all but the power group from the left.
const std::vector<std::vector<std::string_view>>& operatorRanks() {
    static const std::vector<std::vector<std::string_view>> ranks = {
        {"|"}, {"&"}, {"<=", ">=", "==", "!=", "<", ">"}, {"+", "-"}, {"*", "/"}};
    return ranks;
}

/// Reads a text from the left, one level of the grammar a function. After a fault it reads nothing more.
class Parser {
public:
    Parser(std::string_view text, const Symbols& symbols) : text_(text), symbols_(symbols) {}

    std::string fault;

    Expression whole() {
        Expression result = operation(0);
        if (!atEnd()) fail("\"" + std::string(text_.substr(at_, 12)) + "\" can't follow here");
        return result;
    }

    Expression wholeProfile() {
        Expression result{Term::profile, 0, 0, {}, {}};
        source(result);
        if (result.source.kind == FoldSource::Kind::table) fail("a profile runs over cells");
        openScope(result.source);
        for (int part = 0; part < 3; ++part) {
            need(',');
            result.parts.push_back(operation(0));
        }
        closeScope(result.source);
        if (!atEnd()) fail("a profile has a source and three expressions");
        return result;
    }

private:
    static constexpr int deepest = 100;

    std::string_view text_;
    const Symbols& symbols_;
    std::size_t at_ = 0;
    int depth_ = 0;
    std::vector<std::string> scopes_; ///< columns and counters, the innermost last; empty: the values of a cell

    void fail(const std::string& reason) {
        if (fault.empty()) fault = reason;
        at_ = text_.size();
    }

    void skipBlanks() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
    }

    bool atEnd() {
        skipBlanks();
        return at_ >= text_.size();
    }

    bool take(std::string_view sign) {
        skipBlanks();
        if (text_.substr(at_, sign.size()) != sign) return false;
        at_ += sign.size();
        return true;
    }

    void need(char sign) {
        if (!take({&sign, 1})) fail(std::string("there is no \"") + sign + "\" where one belongs");
    }

    std::string word() {
        skipBlanks();
        const std::size_t begin = at_;
        while (at_ < text_.size() && (isLetter(text_[at_]) || (at_ > begin && isDigit(text_[at_])))) ++at_;
        return std::string(text_.substr(begin, at_ - begin));
    }

    static Expression call(std::string_view name, Expression first, Expression second) {
        Expression result{Term::call, 0, placeOfName(numberFunctions(), name), {}, {}};
        result.parts.push_back(std::move(first));
        result.parts.push_back(std::move(second));
        return result;
    }

    Expression operation(std::size_t rank) {
        if (rank == operatorRanks().size()) return signedValue();
        Expression left = operation(rank + 1);
        while (fault.empty()) {
            const auto& signs = operatorRanks()[rank];
            const auto found = std::find_if(signs.begin(), signs.end(), [&](auto sign) { return take(sign); });
            if (found == signs.end()) break;
            left = call(*found, std::move(left), operation(rank + 1));
        }
        return left;
    }

    Expression signedValue() {
        if (++depth_ > deepest) fail("it is nested too deeply");
        Expression result;
        if (!fault.empty())
            result = {};
        else if (take("-"))
            result = call("-", {}, signedValue());
        else if (take("!"))
            result = call("!", signedValue(), {});
        else
            result = power();
        --depth_;
        return result;
    }

    Expression power() {
        Expression base = value();
        if (!take("^")) return base;
        return call("^", std::move(base), signedValue()); // 2^-3, and 2^3^2 from the right
    }

    Expression value() {
        skipBlanks();
        if (take("(")) {
            Expression inner = operation(0);
            need(')');
            return inner;
        }
        std::size_t length = 0;
        if (at_ < text_.size() && (isDigit(text_[at_]) || text_[at_] == '.')) {
            const double number = numericPrefix(text_.substr(at_), length);
            at_ += length;
            if (length == 0) fail("a point alone is no number");
            return {Term::number, number, 0, {}, {}};
        }
        const std::string name = word();
        if (name.empty()) {
            fail(at_ >= text_.size() ? "it breaks off" : "\"" + std::string(text_.substr(at_, 12)) + "\" is no value");
            return {};
        }
        return take("(") ? form(name) : named(name);
    }

    Expression named(const std::string& name) {
        const int ofCell = placeOfName(cellValues(), name);
        for (std::size_t scope = scopes_.size(); scope-- > 0;) {
            if (scopes_[scope].empty() && ofCell >= 0) break;
            if (scopes_[scope] != name) continue;
            const auto outer = scopes_.begin() + static_cast<std::ptrdiff_t>(scope);
            const auto cells = std::count(scopes_.begin(), outer, std::string());
            return {Term::bound, 0, static_cast<int>(outer - scopes_.begin() - cells), {}, {}};
        }
        if (ofCell >= 0) return {Term::cellValue, 0, ofCell, {}, {}};
        if (const int place = placeOfName(runNames, name); place >= 0) return {Term::runValue, 0, place, {}, {}};
        const auto found = std::find(symbols_.names.begin(), symbols_.names.end(), name);
        if (found == symbols_.names.end()) {
            fail("\"" + name + "\" is no name that is known here");
            return {};
        }
        return {Term::name, 0, static_cast<int>(found - symbols_.names.begin()), {}, {}};
    }

    void arguments(Expression& into, int count) {
        for (int k = 0; k < count; ++k) {
            if (k > 0) need(',');
            into.parts.push_back(operation(0));
        }
        need(')');
    }

    Expression form(const std::string& name) {
        Expression result;
        if (const int fold = placeOfName(foldNames, name); fold >= 0) return foldOf(fold);
        if (name == "along") return alongSource();
        if (name == "series" || name == "root") return counted(name == "series" ? Term::series : Term::root);
        if (name == "if") {
            result.term = Term::choice;
            arguments(result, 3);
            return result;
        }
        const int function = placeOfName(numberFunctions(), name);
        if (function < 0) {
            fail("\"" + name + "\" is no function");
            return result;
        }
        result = {Term::call, 0, function, {}, {}};
        arguments(result, numberFunctions()[function].arguments);
        result.parts.resize(2);
        return result;
    }

    /// A source, and the condition of its cells or rows as the first part.
    void source(Expression& into) {
        skipBlanks();
        const std::size_t begin = at_;
        std::string name = word();
        const auto range = std::find(symbols_.ranges.begin(), symbols_.ranges.end(), name);
        const int table = placeOfName(symbols_.tables, name);
        if (range != symbols_.ranges.end()) {
            into.source = {FoldSource::Kind::namedRange, static_cast<int>(range - symbols_.ranges.begin()), {}};
        } else if (table >= 0) {
            into.source = {FoldSource::Kind::table, table, {}};
        } else if (name != "cells") {
            if (take(":")) word();
            into.source = {FoldSource::Kind::addresses, 0, std::string(text_.substr(begin, at_ - begin))};
            if (name.empty()) fail("cells, a range of them or a table belongs there");
        }
        openScope(into.source);
        Expression condition{Term::number, 1, 0, {}, {}};
        const std::size_t before = at_;
        if (word() == "where")
            condition = operation(0);
        else
            at_ = before;
        into.parts.push_back(std::move(condition));
        closeScope(into.source);
    }

    void openScope(const FoldSource& opened) {
        if (opened.kind != FoldSource::Kind::table)
            scopes_.emplace_back();
        else
            for (const std::string& column : symbols_.tables[opened.index].columns) scopes_.push_back(column);
    }

    void closeScope(const FoldSource& opened) {
        const bool isTable = opened.kind == FoldSource::Kind::table;
        scopes_.resize(scopes_.size() - (isTable ? symbols_.tables[opened.index].columns.size() : 1));
    }

    Expression foldOf(int fold) {
        Expression result{Term::fold, 0, fold, {}, {}};
        source(result);
        need(',');
        openScope(result.source);
        result.parts.push_back(operation(0));
        closeScope(result.source);
        need(')');
        return result;
    }

    Expression alongSource() {
        Expression result{Term::along, 0, 0, {}, {}};
        source(result);
        openScope(result.source);
        for (int part = 0; part < 2; ++part) {
            need(',');
            result.parts.push_back(operation(0));
        }
        closeScope(result.source);
        need(',');
        result.parts.push_back(operation(0));
        need(')');
        return result;
    }

    Expression counted(Term term) {
        Expression result{term, 0, 0, {}, {}};
        const std::string counter = word();
        if (counter.empty()) {
            fail("the counter needs a name");
            return result;
        }
        for (int part = 0; part < 2; ++part) {
            need(',');
            result.parts.push_back(operation(0));
        }
        need(',');
        scopes_.push_back(counter); // it hides a value of the cell of the same name
        result.parts.push_back(operation(0));
        scopes_.pop_back();
        need(')');
        return result;
    }
};

} // namespace

std::string parseExpression(std::string_view text, const Symbols& symbols, Expression& expression) {
    if (text.size() > longestText) return "it is too long; give parts of it names with \"let\"";
    Parser parser(text, symbols);
    expression = parser.whole();
    return parser.fault;
}

std::string parseProfile(std::string_view text, const Symbols& symbols, Expression& expression) {
    if (text.size() > longestText) return "it is too long; give parts of it names with \"let\"";
    Parser parser(text, symbols);
    expression = parser.wholeProfile();
    return parser.fault;
}

bool isFreeName(std::string_view text) {
    if (text.empty() || !isLetter(text[0])) return false;
    if (!std::all_of(text.begin(), text.end(), [](char c) { return isLetter(c) || isDigit(c); })) return false;
    return placeOfName(cellValues(), text) < 0 && placeOfName(runNames, text) < 0 && placeOfName(foldNames, text) < 0
           && placeOfName(formNames, text) < 0 && placeOfName(numberFunctions(), text) < 0;
}

} // namespace norvane
