#include "platform/checksum.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

std::uint64_t crcOf(std::string_view first, std::string_view second = {}) {
    Crc64 crc;
    crc.add(first);
    crc.add(second);
    return crc.value();
}

TEST(checksum, hasThePublishedCheckValueAndTakesATextInAnyPieces) {
    EXPECT_EQ(hexText(crcOf("123456789")), "995dc9bbdf1939fa");
    EXPECT_EQ(crcOf(""), 0U);
    std::string text;
    for (int k = 0; k < 300; ++k) text += static_cast<char>(k * 7);
    for (std::size_t cut = 0; cut <= text.size(); cut += 13)
        EXPECT_EQ(crcOf(text.substr(0, cut), text.substr(cut)), crcOf(text)) << cut;
}

} // namespace
} // namespace norvane
