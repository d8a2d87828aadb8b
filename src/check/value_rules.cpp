#include "check/text_check.h"
#include "core/number_text.h"

#include <cmath>
#include <limits>
#include <type_traits>

namespace norvane {

namespace {

void addRange(const TextCheck& check, const KeyText& key, const std::string& is) {
    const double v = key.value;
    const bool isPositive = v > 0 && static_cast<float>(v) > 0;
    if (key.key->range == KeyRange::positive && !isPositive)
        check.add("not-positive", is + ", which has to be above 0", Severity::error);
    if (key.key->range == KeyRange::notNegative && v < 0) check.add("negative", is + ", which should not be below 0");
    if (key.key->range == KeyRange::fraction && !(v >= 0 && v <= 1))
        check.add("no-fraction", is + "; a mass fraction lies between 0 and 1");
    constexpr double mostCelsius = 60; // what is above may be a cold gas
    constexpr double coldest = 150;
    if (key.key->letters == "TT" && isPositive && v < coldest)
        check.add("celsius", is + ". Is it deg C? Then write TT " + generalText(static_cast<float>(v + 273.15)),
                  v <= mostCelsius ? Severity::warning : Severity::note);
}

/// The values of a key that is a choice, and what others do.
struct Choice {
    const char* letters;
    double low;
    double high;
    const char* others;
};

void checkChoice(const TextCheck& check, const KeyText& key) {
    static constexpr Choice choices[] = {
        {"WV", -2, 2, "above 2 it closes the upper face as 1 does, below -2 it imposes as -1 does"},
        {"WP", -1, 1, "only the sign counts"},
        {"WT", -1, 1, "only the sign counts"},
        {"WC", -1, 1, "above 1 it does nothing, below -1 it holds as -1 does"},
        {"SW", 1, 11, "there is no such quantity"}};
    for (const Choice& choice : choices) {
        const bool isOutside = key.value < choice.low || key.value > choice.high;
        if (key.key->letters == choice.letters && isOutside)
            check.add("no-such-choice", named(*key.key) + " takes " + generalText(static_cast<float>(choice.low))
                                            + " to " + generalText(static_cast<float>(choice.high)) + "; "
                                            + choice.others);
    }
    const bool isUnread = key.key->index == KeyIndex::parameter && (key.index < 11 || key.index > 15);
    if (isUnread)
        check.add("no-such-index", "nothing reads GP " + generalText(static_cast<float>(key.index)), Severity::note);
}

/// The largest number that the field of a key holds; infinite where it is no whole number.
struct LargestWhole {
    double operator()(std::monostate) const { return HUGE_VAL; }

    template <class Number>
    double operator()(Number SimState::*) const {
        return largest(Number());
    }

    template <class Number>
    double operator()(Array<Number> SimState::*) const {
        return largest(Number());
    }

    template <class Number>
    double operator()(CellTable<Number> SimState::*) const {
        return largest(Number());
    }

    template <class Number>
    static double largest(Number) {
        return std::is_integral_v<Number> ? static_cast<double>(std::numeric_limits<Number>::max()) : HUGE_VAL;
    }
};

} // namespace

std::string_view bareText(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \"\t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \"\t") - first + 1);
}

std::string withUnit(double value, std::string_view unit) {
    return generalText(static_cast<float>(value)) + (unit.empty() ? "" : " " + std::string(unit));
}

std::string named(const Key& key) { return std::string(key.letters) + " (" + std::string(key.meaning) + ")"; }

void checkValue(const TextCheck& check, const KeyText& key) {
    const std::string is = named(*key.key) + " is " + withUnit(key.value, key.key->unit);
    if (!std::isfinite(static_cast<float>(key.value))) {
        check.add("not-finite", is + ", which is beyond the numbers of a field", Severity::error);
        return;
    }
    addRange(check, key, is);
    checkChoice(check, key);
    const double most = std::visit(LargestWhole(), key.key->target);
    if (std::abs(key.value) > most)
        check.add("limited", is + "; it is limited to " + std::to_string(static_cast<std::int64_t>(most)));
    else if (most < HUGE_VAL && key.value != std::floor(key.value))
        check.add("not-whole", is + "; it is rounded to a whole number");
}

} // namespace norvane
