#include "system/HexText.h"

#include <gmock/gmock.h>

#include <optional>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace {

using Bytes = std::vector<uint8_t>;

TEST(BytesToHexTextTest, WritesTwoUpperCaseDigitsAByte) {
    const uint8_t bytes[] = {0x00, 0x09, 0xA0, 0x5F, 0xFF, 0xEE};

    EXPECT_STREQ(bytesToHexText(bytes, 5).get(), "0009A05FFF");
}

TEST(BytesToHexTextTest, NoBytesGiveNull) {
    const uint8_t byte = 1;

    EXPECT_EQ(bytesToHexText(nullptr, 1), nullptr);
    EXPECT_EQ(bytesToHexText(&byte, 0), nullptr);
}

TEST(HexTextToBytesTest, ReadsPairsOfDigitsOfEitherCase) {
    std::unique_ptr<uint8_t[]> bytes;
    size_t count = 0;

    ASSERT_TRUE(hexTextToBytes("00afAFaF90", bytes, count));

    EXPECT_THAT(Bytes(bytes.get(), bytes.get() + count), ElementsAre(0x00, 0xAF, 0xAF, 0xAF, 0x90));
}

TEST(HexTextToBytesTest, EmptyTextGivesAnEmptyBuffer) {
    std::unique_ptr<uint8_t[]> bytes;
    size_t count = 1;

    EXPECT_TRUE(hexTextToBytes("", bytes, count));

    EXPECT_NE(bytes, nullptr);
    EXPECT_EQ(count, 0u);
}

TEST(HexTextToBytesTest, RefusesAnythingElseAndLeavesTheOutputs) {
    for (const char* text : {static_cast<const char*>(nullptr), "0", "001", "0g", "G0", "00 1",
                             "0/", "0:", "0@", "0`", "-1", "0x", "00zz", "\xC0\xC1"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        std::unique_ptr<uint8_t[]> bytes;
        size_t count = 77;

        EXPECT_FALSE(hexTextToBytes(text, bytes, count));

        EXPECT_EQ(bytes, nullptr);
        EXPECT_EQ(count, 77u);
    }
}

TEST(HexTextTest, BytesComeBackFromTheirText) {
    const uint8_t written[] = {0x12, 0x80, 0x00, 0xFF};
    std::unique_ptr<uint8_t[]> bytes;
    size_t count = 0;

    ASSERT_TRUE(hexTextToBytes(bytesToHexText(written, 4).get(), bytes, count));

    EXPECT_THAT(Bytes(bytes.get(), bytes.get() + count), ElementsAre(0x12, 0x80, 0x00, 0xFF));
}

/// The bytes that the text gives, or nothing when it is refused.
std::optional<Bytes> readSpaced(const char* text) {
    uint8_t bytes[16] = {};
    size_t count = 77;
    if (spacedHexToBytes(text, bytes, count))
        return Bytes(bytes, bytes + count);
    EXPECT_EQ(count, 77u) << "a refused text sets no count";
    return std::nullopt;
}

TEST(SpacedHexToBytesTest, ReadsNumbersOfOneOrTwoDigits) {
    EXPECT_THAT(readSpaced("12 3 aF 0"), Optional(ElementsAre(0x12, 0x03, 0xAF, 0x00)));
    EXPECT_THAT(readSpaced("f"), Optional(ElementsAre(0x0F)));
}

TEST(SpacedHexToBytesTest, BeginsANumberAfterTwoDigits) {
    EXPECT_THAT(readSpaced("ABC"), Optional(ElementsAre(0xAB, 0x0C)));
    EXPECT_THAT(readSpaced("01020304"), Optional(ElementsAre(0x01, 0x02, 0x03, 0x04)));
    EXPECT_THAT(readSpaced("ABC DE"), Optional(ElementsAre(0xAB, 0x0C, 0xDE)));
}

TEST(SpacedHexToBytesTest, BlanksAloneGiveNoByte) {
    EXPECT_THAT(readSpaced(""), Optional(IsEmpty()));
    EXPECT_THAT(readSpaced("   "), Optional(IsEmpty()));
    EXPECT_THAT(readSpaced("  1   2  "), Optional(ElementsAre(0x01, 0x02)));
}

TEST(SpacedHexToBytesTest, RefusesWhatIsNeitherDigitNorBlank) {
    for (const char* text : {"g", "1 2 x", "0x12", "1\t2", "1,2", "-1", "12\n", "1 \xE9"})
        EXPECT_EQ(readSpaced(text), std::nullopt) << text;
}

}  // namespace
