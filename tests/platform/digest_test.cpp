#include "platform/digest.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

std::uint64_t crcOf(std::string_view text) {
    Crc64 crc;
    crc.add(text);
    return crc.value();
}

std::string shaOf(std::string_view text) {
    Sha256 sha;
    sha.add(text);
    return sha.text();
}

TEST(digest, hasThePublishedCheckValues) {
    EXPECT_EQ(hexText(crcOf("123456789")), "995dc9bbdf1939fa");
    EXPECT_EQ(crcOf(""), 0u);
    EXPECT_EQ(shaOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(shaOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(shaOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(shaOf(std::string(1000000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(digest, takesATextInAnyPieces) {
    std::string text;
    for (int k = 0; k < 300; ++k) text += static_cast<char>(k * 7);
    for (std::size_t cut = 0; cut <= text.size(); cut += 13) {
        Crc64 crc;
        Sha256 sha;
        for (const std::string_view part :
             {std::string_view(text).substr(0, cut), std::string_view(text).substr(cut)}) {
            crc.add(part);
            sha.add(part);
        }
        EXPECT_EQ(crc.value(), crcOf(text)) << cut;
        EXPECT_EQ(sha.text(), shaOf(text)) << cut;
    }
}

} // namespace
} // namespace norvane
