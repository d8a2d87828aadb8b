// Numbers in any text, held against the C library; and a stop file of the same bytes.

#include "core/checkstop.h"
#include "core/number_text.h"
#include "exchange/number_items.h"
#include "fuzz_folder.h"
#include "geometry/text_encoding.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace norvane;

namespace {

/// Whole items in the forms that both know are the same number.
void compareItems(std::string_view text) {
    NumberItems items{text};
    for (;;) {
        double number = 0;
        const ItemKind kind = readNumber(items, number);
        if (kind == ItemKind::endOfText) return;
        if (kind != ItemKind::number) continue;
        const std::string item(text.substr(items.item, items.next - items.item));
        const double known = std::strtod(item.c_str(), nullptr);
        require(known == number || (std::isnan(known) && std::isnan(number)), "an item is the number of the C library");
    }
}

/// A number that was read, written and read again is the same within the digits of the text.
void goThroughText(double number) {
    if (!(std::abs(number) < 1.79769313486231e308)) return; // rounded up, the largest ones are infinite
    require(numericPrefix(generalText(number)) == number || std::abs(number) < 1e-300
                || std::abs(numericPrefix(generalText(number)) / number - 1) < 1e-14,
            "a double keeps 15 digits");
    const auto single = static_cast<float>(std::fmax(std::fmin(number, 3e38), -3e38));
    if (std::fabs(single) < 1e-37f) return; // of fewer digits
    require(std::abs(numericPrefix(generalText(single)) / double(single) - 1) < 5.1e-7, "a single keeps 7 digits");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    static const bool entered = (enterEmptyFolder(), true);
    require(entered, "there is a folder");
    const std::string_view text = asText(bytes, length);
    std::size_t read = 0;
    const double number = numericPrefix(text, read);
    require(read <= length && (read > 0 || number == 0), "what is read lies in the text");
    if (read > 0) {
        const std::string head(text.substr(0, read));
        require(std::strtod(head.c_str(), nullptr) == number, "a prefix is the number of the C library");
    }
    goThroughText(number);
    compareItems(text);
    compareItems(toUtf8(std::string(text)));
    double raw = 0;
    std::memcpy(&raw, bytes, std::min(length, sizeof raw));
    goThroughText(raw);

    SimState sim;
    StopFileWatch watch;
    writeBytes(sim.stopFileName, text);
    pollCheckstop(sim, {}, {}, watch);
    require(!sim.stopFlag || bytesOf(sim.stopFileName) == " 0 \r\n", "a stop that was taken is cleared");
    return 0;
}
