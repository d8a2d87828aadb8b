#include "check/item_rules.h"

#include "check/text_check.h"
#include "core/number_text.h"
#include "geometry/cell_keywords.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

namespace {

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool hasDigit(std::string_view text) { return std::any_of(text.begin(), text.end(), isDigit); }

/// Spaces of a spreadsheet that are no blanks to the readers: a number after one is not read.
bool hasOddSpace(std::string_view text) {
    for (const char* const space : {"\xC2\xA0", "\xE2\x80\xAF", "\xE2\x80\x89"})
        if (text.find(space) != std::string_view::npos) return true;
    return false;
}

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string written(const Key& key, std::string_view value) {
    const std::string index = key.form == KeyForm::plain ? " " : key.index == KeyIndex::species ? " s;" : " d;";
    return std::string(key.letters) + index + std::string(value);
}

// --- where a key counts --------------------------------------------------------------------------------------------

/// Whether a value in the rows with defaults comes to the cells; true for what is no field of cells.
bool countsAsDefault(const Key& key) {
    const CellField* const field = fieldOf(key);
    return field == nullptr || field->start == FieldStart::fromTemplate;
}

bool countsInCells(const Key& key) { return key.letters != "RH"; }

void addNotHere(const TextCheck& check, const Key& key) {
    std::string text = named(key) + " does nothing here: it counts ";
    if (key.letters == "RH")
        text += "in the rows with defaults, where it fixes the gas constant; the density of a cell follows from PP "
                "and TT";
    else if ((key.scope & inColumn1) != 0)
        text += "in column 1 alone";
    else if ((key.scope & inCells) == 0)
        text += "in the rows with defaults, down to the first L row";
    else
        text += "in the cells alone";
    check.add("key-not-here", text);
}

// --- items without a key -------------------------------------------------------------------------------------------

bool isAnagram(std::string_view a, std::string_view b) {
    return a.size() == 2 && b.size() == 2 && a[0] == b[1] && a[1] == b[0];
}

/// The key that two unknown letters probably mean: swapped, or the only one that differs in one letter.
std::string guessedKey(std::string_view letters, KeyScope scope) {
    std::vector<std::string_view> near;
    for (const Key& key : allKeys()) {
        if (key.letters.size() != 2) continue;
        if (isAnagram(key.letters, letters)) return std::string(key.letters);
        const bool counts = (key.scope & scope) != 0;
        if (counts && (key.letters[0] == letters[0] || key.letters[1] == letters[1])) near.push_back(key.letters);
    }
    return near.size() == 1 ? std::string(near[0]) : std::string();
}

/// A key at the head of an item that does not count where the item is; null: none.
const Key* keyElsewhere(std::string_view head) {
    for (const Key& key : allKeys()) {
        const bool isWord = key.letters.size() == 2 && head.substr(0, 2) == key.letters;
        if (isWord && (head.size() == 2 || !isLetter(head[2]))) return &key;
    }
    return nullptr;
}

void checkItemWithoutKey(TextCheck& check) {
    const std::string_view head = bareText(check.item);
    if (head.empty() || (check.previousLacksIndex && isDigit(head[0]))) return;
    if (const Key* const elsewhere = keyElsewhere(head)) {
        addNotHere(check, *elsewhere);
        return;
    }
    const bool isCell = check.where.scope == inCells;
    if (isCell && (head == "WALL" || head == "SOLID" || head == "X" || head == "INLET"))
        check.add("remark", "it is a remark, and the cell is what its keys say. A wall is WV 0;2, an inlet "
                            "WV 1;-1:VV 1;...:WP 1:WT 1");
    if (!hasDigit(head)) return; // a remark
    std::size_t letters = 0;
    while (letters < head.size() && isLetter(head[letters])) ++letters;
    const std::string guess = letters == 2 ? guessedKey(head.substr(0, 2), check.where.scope) : std::string();
    check.add("unknown-key", "no key is found in it, so that it does nothing"
                                 + (guess.empty() ? std::string() : ". Is " + guess + " meant?"));
}

// --- the number of a key -------------------------------------------------------------------------------------------

/// A unit that is written after a number and would change its value, if units were read.
bool isOtherUnit(std::string_view word) {
    constexpr std::string_view degree = "\xC2\xB0";
    constexpr std::string_view units =
        " C F BAR MBAR HPA KPA MPA ATM PSI TORR CM MM KM INCH IN FT MS US H MIN % G KJ KW MW "
        "UPAS MPAS ";
    if (word.substr(0, degree.size()) == degree) word.remove_prefix(degree.size());
    const std::string asWord = " " + std::string(word) + " ";
    return word.find(' ') == std::string_view::npos && units.find(asWord) != std::string_view::npos;
}

/// Looks at what follows the number of a key, up to the next key of the item. False: it may not be the number meant.
bool endsCleanly(const TextCheck& check, const KeyText& key, std::size_t next) {
    const std::string_view rest = std::string_view(check.item).substr(key.valueEnds, next - key.valueEnds);
    const std::string_view word = bareText(rest.substr(0, rest.find(' ', rest.find_first_not_of(' '))));
    if (word.empty() || word == readable(key.key->unit)) return true;
    const std::string value = withUnit(key.value, key.key->unit);
    if (isOtherUnit(word)) {
        check.add("unit-not-read", "the unit is not read: " + std::string(key.key->letters) + " is " + value);
        return false;
    }
    const bool isAttached = rest[0] != ' ' && rest[0] != '"';
    if (!isAttached && !hasDigit(rest)) return true; // a remark
    const std::string hint = rest[0] == ';' && key.key->form == KeyForm::plain
                                 ? "; " + std::string(key.key->letters) + " takes no index"
                                 : "";
    check.add("number-breaks-off",
              "the number of " + std::string(key.key->letters) + " ends before "
                  + quoted(check.raw.substr(static_cast<std::size_t>(word.data() - check.item.data()), word.size()))
                  + ": it is " + value + hint);
    return false;
}

void addMissingNumber(const TextCheck& check, const KeyText& key) {
    const std::size_t after = key.at + key.key->letters.size();
    std::string hint;
    if (hasOddSpace(check.raw))
        hint = ". A non-breaking space is no blank: delete it and type a blank";
    else if (check.raw.find("\xE2\x88\x92") != std::string_view::npos
             || check.raw.find("\xE2\x80\x93") != std::string_view::npos)
        hint = ". A dash is no minus: type \"-\"";
    else if (check.item.find('=', after) != std::string::npos)
        hint = ". Write it without \"=\": " + written(*key.key, "...");
    check.add("missing-number",
              "no number after " + named(*key.key) + ": it counts as " + withUnit(0, key.key->unit) + hint,
              key.key->range == KeyRange::positive ? Severity::error : Severity::warning);
}

/// The highest index that a key takes; -1: none.
std::int64_t highestIndex(const TextPlace& where, KeyIndex index) {
    switch (index) {
    case KeyIndex::species: return where.nsMax;
    case KeyIndex::parameter: return 1000;
    case KeyIndex::none: return -1;
    default: return where.nDim;
    }
}

std::int64_t lowestIndex(const TextPlace& where, KeyIndex index) {
    switch (index) {
    case KeyIndex::signedDimension: return -where.nDim;
    case KeyIndex::dimension:
    case KeyIndex::parameter: return 1;
    default: return 0;
    }
}

void checkIndex(const TextCheck& check, const KeyText& key) {
    const std::size_t after = key.at + key.key->letters.size();
    const std::size_t semicolon = check.item.find(';', after);
    std::size_t read = 0;
    numericPrefix(std::string_view(check.item).substr(after, semicolon - after), read);
    const bool isWhole = bareText(std::string_view(check.item).substr(after + read, semicolon - after - read)).empty();
    const std::int64_t low = lowestIndex(check.where, key.key->index);
    const std::int64_t high = highestIndex(check.where, key.key->index);
    const bool exists = key.index == std::floor(key.index) && key.index >= static_cast<double>(low)
                        && key.index <= static_cast<double>(high);
    const std::string is =
        std::string(key.key->letters) + " has the index " + generalText(static_cast<float>(key.index));
    if (!isWhole)
        check.add("missing-index", "the \";\" after " + std::string(key.key->letters)
                                       + " belongs to something else; write " + written(*key.key, "..."));
    else if (key.index == 0 && key.key->letters == "HH")
        check.add("no-such-index", is + ": it sets this cell alone, whatever the dimension", Severity::note);
    else if (!exists)
        check.add("no-such-index", is + ", and this model has " + std::to_string(low) + " to " + std::to_string(high)
                                       + ": it does nothing");
}

void checkGivenTwice(TextCheck& check, const KeyText& key) {
    const auto index = static_cast<std::int64_t>(std::clamp(key.index, -1e9, 1e9));
    const auto same = std::make_pair(key.key, index);
    if (std::find(check.given.begin(), check.given.end(), same) != check.given.end())
        check.add("given-twice", named(*key.key) + " is given twice in this cell; the last one counts");
    check.given.push_back(same);
}

// --- one key of an item --------------------------------------------------------------------------------------------

/// The letters around a key, itself included.
std::string_view wordAround(std::string_view item, const KeyText& key) {
    std::size_t first = key.at;
    std::size_t end = key.at + key.key->letters.size();
    while (first > 0 && isLetter(item[first - 1])) --first;
    while (end < item.size() && isLetter(item[end])) ++end;
    return item.substr(first, end - first);
}

bool isInsideWord(std::string_view item, const KeyText& key) {
    return wordAround(item, key).size() > key.key->letters.size()
           && !(hasOddSpace(item) && wordAround(item, key).substr(0, 2) == key.key->letters);
}

void checkKey(TextCheck& check, const KeyText& key, std::size_t next) {
    const bool counts = check.where.scope == inCells ? countsInCells(*key.key) : countsAsDefault(*key.key);
    const bool isWholeCell = check.where.scope == inDefaults && key.key->letters == "WV" && key.index == 0;
    check.previousLacksIndex = key.fault == KeyFault::noSemicolon;
    if (!counts || (isWholeCell && key.fault == KeyFault::none)) {
        addNotHere(check, *key.key);
        return;
    }
    if (key.fault == KeyFault::noSemicolon) {
        check.add("missing-index",
                  "no \";\" after " + named(*key.key) + ", so that it does nothing; write " + written(*key.key, "..."));
        return;
    }
    if (key.key->form != KeyForm::plain) checkIndex(check, key);
    if (key.fault == KeyFault::noNumber) {
        addMissingNumber(check, key);
        return;
    }
    if (key.fault == KeyFault::noIndex)
        check.add("missing-index", "no index before the \";\" of " + named(*key.key) + ": it counts as 0");
    if (endsCleanly(check, key, next)) checkValue(check, key);
    checkGivenTwice(check, key);
}

void addInsideWord(const TextCheck& check, const std::vector<KeyText>& keys) {
    std::string effects;
    for (const KeyText& key : keys) {
        if (!isInsideWord(check.item, key) || !key.hasEffect()) continue;
        effects += (effects.empty() ? "" : ", ") + named(*key.key) + " becomes " + withUnit(key.value, key.key->unit);
    }
    if (!effects.empty()) check.add("key-inside-word", "letters inside a word are a key: " + effects);
}

void checkItem(TextCheck& check) {
    std::vector<KeyText> keys;
    forEachKey(check.item, check.where.scope, check.where.nDim, [&](const KeyText& key) { keys.push_back(key); });
    std::sort(keys.begin(), keys.end(), [](const KeyText& a, const KeyText& b) { return a.at < b.at; });
    const bool isColumn1 = check.where.place.column == 1;
    const bool isOfColumn1 = isColumn1 && bareText(check.item).substr(0, 2) == "NS";
    if (isOfColumn1) {
        const Key& species = keyOf("NS");
        checkValue(check, readKey(check.item, species, check.item.find(species.letters)));
    }
    if (keys.empty() && !isOfColumn1) checkItemWithoutKey(check);
    if (!keys.empty()) check.previousLacksIndex = false;
    addInsideWord(check, keys);
    for (std::size_t k = 0; k < keys.size(); ++k) {
        if (isInsideWord(check.item, keys[k])) continue;
        checkKey(check, keys[k], k + 1 < keys.size() ? keys[k + 1].at : check.item.size());
    }
}

} // namespace

void checkText(std::string_view text, const TextPlace& where, Findings& findings) {
    TextCheck check{where, findings};
    forEachItem(text, [&](std::string_view item, std::size_t at) {
        check.raw = text.substr(at, item.size());
        check.item = item;
        checkItem(check);
    });
}

} // namespace norvane
