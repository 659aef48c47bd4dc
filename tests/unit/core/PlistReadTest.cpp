// Reading property lists: what the reading library would wrap, clamp or drop in silence is
// refused with the keys and the value. (A pipe, a socket or a device in place of a file: the
// hostile-file suite.)
#include <gtest/gtest.h>

#include "RegularFile.h"
#include "core/PlistFile.h"
#include "core/Utf8.h"

namespace tolvar {
namespace {

const char* kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";

std::string xmlGame(const std::string& entries) {
    return std::string(kHead) + "<dict><key>G</key><dict>" + entries + "</dict></dict></plist>\n";
}

// Why bytes are refused, or "" when they read.
std::string refusal(std::string_view bytes) {
    auto read = parsePropertyList(bytes);
    const PlistError* error = std::get_if<PlistError>(&read);
    return error ? error->reason : std::string();
}

TEST(PlistRead, IntegersOutside64BitsAreRefusedWithTheirKeysAndValue) {
    const std::pair<const char*, bool> cases[] = {
        {"18446744073709551615", false}, {"-9223372036854775808", false}, {"0xFFFFFFFFFFFFFFFF", false},
        {"18446744073709551616", true},  {"-9223372036854775809", true},  {"0x10000000000000000", true},
        {" 1000000000000000000000000000000 ", true}};
    for (const auto& [written, refused] : cases) {
        SCOPED_TRACE(written);
        const std::string why = refusal(xmlGame("<key>A</key><array><integer>1</integer><dict><key>ScoreMultiplier</key>"
                                                "<integer>" + std::string(written) + "</integer></dict></array>"));
        if (!refused) {
            EXPECT_EQ(why, "");
            continue;
        }
        std::string trimmed(written);
        trimmed.erase(0, trimmed.find_first_not_of(' '));
        trimmed.erase(trimmed.find_last_not_of(' ') + 1);
        EXPECT_EQ(why.find("G/A/1/ScoreMultiplier: the integer " + trimmed + " does not fit in 64 bits"), 0u) << why;
    }
}

// A binary file {"G": {"A": n}} with n written on 16 bytes.
std::string binaryWide(const unsigned char (&value)[16]) {
    std::string b = "bplist00";
    const auto add = [&b](std::initializer_list<unsigned char> bytes) { b.append(bytes.begin(), bytes.end()); };
    add({0xD1, 0x01, 0x02, 0x51, 'G', 0xD1, 0x03, 0x04, 0x51, 'A', 0x14});  // objects at 8, 11, 13, 16, 18
    b.append(reinterpret_cast<const char*>(value), 16);
    const std::size_t table = b.size();
    add({8, 11, 13, 16, 18});
    add({0, 0, 0, 0, 0, 0, 1, 1});                         // offset and reference sizes
    add({0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0});  // 5 objects, the first is the root
    add({0, 0, 0, 0, 0, 0, 0, static_cast<unsigned char>(table)});
    return b;
}

TEST(PlistRead, SixteenByteIntegersOfABinaryFileMustFitIn64Bits) {
    const unsigned char max64[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const unsigned char minus1[16] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                      0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const unsigned char two64[16] = {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    const unsigned char belowMin[16] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                        0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(refusal(binaryWide(max64)), "");
    EXPECT_EQ(refusal(binaryWide(minus1)), "");
    EXPECT_EQ(refusal(binaryWide(two64)).find("G/A: the integer 18446744073709551616 does not fit"), 0u)
        << refusal(binaryWide(two64));
    EXPECT_EQ(refusal(binaryWide(belowMin)).find("G/A: the integer -9223372036854775809 does not fit"), 0u);
}

// A key written many times, counted, and a byte-order mark: the hostile-file suite. The same key in
// two dictionaries is no repetition, nor is a key inside a comment or a text.
TEST(PlistRead, AKeyOnceInEachDictionaryIsNoRepetition) {
    EXPECT_EQ(refusal(xmlGame("<key>A</key><dict><key>A</key><true/></dict><!-- <key>A</key> -->"
                              "<key>B</key><string><![CDATA[<key>A</key>]]></string>")),
              "");
    EXPECT_NE(refusal(xmlGame("<key>A</key><true/><key>A</key><true/>")), "");
}

TEST(Messages, JsonTextsStayUtf8AndPathsStayOnOneLine) {
    const std::pair<std::string, std::string> utf8Cases[] = {
        {"plain é ✓ 😀", "plain é ✓ 😀"}, {"a\xE9z", "a\uFFFDz"}, {"\xC0\xAF", "\uFFFD\uFFFD"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"}, {"cut \xE2\x9C", "cut \uFFFD\uFFFD"}, {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}};
    for (const auto& [raw, valid] : utf8Cases) EXPECT_EQ(validUtf8(raw), valid);
    EXPECT_EQ(shownPath("a\nb\tc\x1b" "d/é"), "a\\nb\\tc\\x1bd/é");
}

}  // namespace
}  // namespace tolvar
