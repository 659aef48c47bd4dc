// Property-list files: what is written reads back the same, key order survives, and broken
// bytes give an error instead of a crash.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/PlistFile.h"

using namespace tolvar;

namespace {

Value sampleTree() {
    Dictionary inner;
    inner.set("b", Value::boolean(false));
    inner.set("a", Value::data(Data{{0, 1, 2, 255}}));
    Dictionary root;
    root.set("Zebra", Value::integer(-1));
    root.set("Apple", Value::integer(0x123456789LL));
    root.set("Mango", Value::real(-2.25));
    root.set("Text", Value::string("Caf\xc3\xa9 <&> 'quoted' \"double\""));
    root.set("When", Value::date(Date{123456789.0}));
    root.set("Yes", Value::boolean(true));
    root.set("List", Value::array({Value::integer(3), Value::string(""), Value::dictionary(inner),
                                   Value::array()}));
    root.set("Empty", Value::dictionary());
    return Value::dictionary(std::move(root));
}

Value expectValue(const std::variant<Value, PlistError>& result) {
    if (const auto* error = std::get_if<PlistError>(&result)) ADD_FAILURE() << error->reason;
    const Value* v = std::get_if<Value>(&result);
    return v ? *v : Value();
}

std::string expectError(const std::variant<Value, PlistError>& result) {
    const auto* error = std::get_if<PlistError>(&result);
    if (!error) {
        ADD_FAILURE() << "bytes were accepted";
        return {};
    }
    EXPECT_FALSE(error->reason.empty());
    return error->reason;
}

std::string nested(int levels) {
    std::string s = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
    for (int i = 0; i < levels; ++i) s += "<array>";
    s += "<integer>1</integer>";
    for (int i = 0; i < levels; ++i) s += "</array>";
    s += "</plist>\n";
    return s;
}

// A binary property list of {"zulu": 1, "alpha": [true, "x", -5, 2.5], "mid": {"k": <01 02>}}.
const unsigned char kBinary[] = {
    0x62, 0x70, 0x6c, 0x69, 0x73, 0x74, 0x30, 0x30, 0xd3, 0x01, 0x02, 0x03, 0x04, 0x05, 0x0a, 0x54,
    0x7a, 0x75, 0x6c, 0x75, 0x55, 0x61, 0x6c, 0x70, 0x68, 0x61, 0x53, 0x6d, 0x69, 0x64, 0x10, 0x01,
    0xa4, 0x06, 0x07, 0x08, 0x09, 0x09, 0x51, 0x78, 0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff,
    0xfb, 0x23, 0x40, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xd1, 0x0b, 0x0c, 0x51, 0x6b, 0x42,
    0x01, 0x02, 0x08, 0x0f, 0x14, 0x1a, 0x1e, 0x20, 0x25, 0x26, 0x28, 0x31, 0x3a, 0x3d, 0x3f, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0d, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x42};

void appendBigEndian(std::string& out, std::uint64_t v, int size) {
    for (int i = size - 1; i >= 0; --i) out.push_back(static_cast<char>((v >> (8 * i)) & 0xff));
}

// A binary property list of `levels` arrays, each holding `width` references to the next one,
// around the integer 1; with loop, the innermost array refers back to the outermost instead.
std::string chainOfArrays(int levels, int width, bool loop = false) {
    std::string out = "bplist00";
    std::vector<std::uint64_t> offsets;
    for (int i = 0; i < levels; ++i) {
        offsets.push_back(out.size());
        out.push_back(static_cast<char>(0xA0 | width));
        const int next = (loop && i == levels - 1) ? 0 : i + 1;
        for (int k = 0; k < width; ++k) appendBigEndian(out, static_cast<std::uint64_t>(next), 4);
    }
    offsets.push_back(out.size());
    out += std::string("\x10\x01", 2);
    const std::uint64_t table = out.size();
    for (std::uint64_t offset : offsets) appendBigEndian(out, offset, 4);
    out += std::string(6, '\0');
    out.push_back(4);
    out.push_back(4);
    appendBigEndian(out, offsets.size(), 8);
    appendBigEndian(out, 0, 8);
    appendBigEndian(out, table, 8);
    return out;
}

class TempDir : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "tolvar-plist-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir_ = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    std::string dir_;
};

}  // namespace

TEST(PlistXml, EveryKindReadsBackUnchangedInTheSameKeyOrder) {
    const Value tree = sampleTree();
    const std::string xml = toXmlPropertyList(tree);
    EXPECT_EQ(xml.rfind("<?xml", 0), 0u) << xml.substr(0, 40);
    EXPECT_NE(xml.find("<integer>-1</integer>"), std::string::npos);
    const Value back = expectValue(parsePropertyList(xml));
    EXPECT_EQ(back, tree);
    ASSERT_TRUE(back.isDictionary());
    std::vector<std::string> keys;
    for (const auto& entry : back.asDictionary()->entries()) keys.push_back(entry.first);
    EXPECT_EQ(keys, (std::vector<std::string>{"Zebra", "Apple", "Mango", "Text", "When", "Yes", "List",
                                              "Empty"}));
}

TEST(PlistXml, DatesBeforeAndAfterTheReferenceReadBack) {
    // XML dates carry whole seconds.
    const Value d = Value::date(Date{-1000.0});
    const Value back = expectValue(parsePropertyList(toXmlPropertyList(Value::array({d}))));
    ASSERT_TRUE(back.isArray());
    ASSERT_EQ(back.asArray()->size(), 1u);
    ASSERT_TRUE((*back.asArray())[0].isDate());
    EXPECT_NEAR((*back.asArray())[0].asDate()->secondsSinceReference, -1000.0, 1e-6);
}

TEST(PlistBinary, ReadsAllKindsInTheFilesKeyOrder) {
    const Value v = expectValue(parsePropertyList(std::string(std::begin(kBinary), std::end(kBinary))));
    ASSERT_TRUE(v.isDictionary());
    const auto& entries = v.asDictionary()->entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].first, "zulu");
    EXPECT_EQ(entries[1].first, "alpha");
    EXPECT_EQ(entries[2].first, "mid");
    EXPECT_EQ(entries[0].second, Value::integer(1));
    EXPECT_EQ(entries[1].second, Value::array({Value::boolean(true), Value::string("x"), Value::integer(-5),
                                               Value::real(2.5)}));
    Dictionary mid;
    mid.set("k", Value::data(Data{{1, 2}}));
    EXPECT_EQ(entries[2].second, Value::dictionary(mid));
}

TEST(PlistBroken, BadBytesGiveAnErrorNotACrash) {
    expectError(parsePropertyList(""));
    expectError(parsePropertyList("this is not a property list at all"));
    expectError(parsePropertyList(std::string("\0\0\0\0\0\0\0\0\0\0", 10)));
    const std::string xml = toXmlPropertyList(sampleTree());
    expectError(parsePropertyList(xml.substr(0, xml.size() / 2)));
    const std::string binary(std::begin(kBinary), std::end(kBinary));
    for (std::size_t cut : {8u, 20u, 60u, 100u, 110u}) expectError(parsePropertyList(binary.substr(0, cut)));
}

TEST(PlistBroken, BinaryTextsWithZeroBytesAreRefused) {
    // {"a\0b": 1}, {"k": "x\0y"} and {"\u00e9\0": 1} (UTF-16) as binary property lists.
    const std::string files[] = {
        std::string("\x62\x70\x6c\x69\x73\x74\x30\x30\xd1\x01\x02\x53\x61\x00\x62\x10\x01\x08\x0b\x0f\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x11", 52),
        std::string("\x62\x70\x6c\x69\x73\x74\x30\x30\xd1\x01\x02\x51\x6b\x53\x78\x00\x79\x08\x0b\x0d\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x11", 52),
        std::string("\x62\x70\x6c\x69\x73\x74\x30\x30\xd1\x01\x02\x62\x00\xe9\x00\x00\x10\x01\x08\x0b\x10\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x12", 53),
    };
    for (const std::string& file : files) {
        const std::string reason = expectError(parsePropertyList(file));
        EXPECT_NE(reason.find("zero byte"), std::string::npos) << reason;
    }
}

TEST(PlistBroken, DeepNestingIsRefusedShallowNestingIsRead) {
    expectValue(parsePropertyList(nested(200)));
    const std::string reason = expectError(parsePropertyList(nested(400)));
    EXPECT_NE(reason.find("nested"), std::string::npos) << reason;
}

TEST(PlistBroken, BinaryNestingLoopsAndRunawaySharingAreRefused) {
    // Shallow chains and modest sharing read normally, shared objects once per reference.
    Value v = expectValue(parsePropertyList(chainOfArrays(200, 1)));
    EXPECT_TRUE(v.isArray());
    v = expectValue(parsePropertyList(chainOfArrays(8, 2)));
    int depth = 0;
    for (const Value* at = &v; at->isArray(); at = &(*at->asArray())[1]) {
        ASSERT_EQ(at->asArray()->size(), 2u);
        ++depth;
    }
    EXPECT_EQ(depth, 8);

    EXPECT_NE(expectError(parsePropertyList(chainOfArrays(100000, 1))).find("nested"), std::string::npos);
    EXPECT_NE(expectError(parsePropertyList(chainOfArrays(5, 1, true))).find("loop"), std::string::npos);
    // 2^40 values once every reference is followed: refused at once rather than read forever.
    EXPECT_NE(expectError(parsePropertyList(chainOfArrays(40, 2))).find("too many values"), std::string::npos);
}

TEST(PlistBroken, DeepXmlIsRefusedBeforeParsing) {
    EXPECT_NE(expectError(parsePropertyList(nested(200000))).find("nested"), std::string::npos);
    // Empty elements and comments do not count as nesting.
    std::string flat = "<?xml version=\"1.0\"?><plist version=\"1.0\"><array>";
    for (int i = 0; i < 1000; ++i) flat += "<array/><dict/><!-- <array> -->";
    flat += "</array></plist>";
    const Value v = expectValue(parsePropertyList(flat));
    ASSERT_TRUE(v.isArray());
    EXPECT_EQ(v.asArray()->size(), 2000u);
}

TEST_F(TempDir, WrittenFileReadsBackAndMissingOrFolderPathsFail) {
    const std::string path = dir_ + "/Sample.dict";
    ASSERT_TRUE(writePropertyListFile(path, sampleTree()));
    EXPECT_EQ(expectValue(readPropertyListFile(path)), sampleTree());

    EXPECT_EQ(expectError(readPropertyListFile(dir_ + "/absent.dict")), "no such file");
    expectError(readPropertyListFile(dir_));
    EXPECT_EQ(expectError(readPropertyListFile("/dev/zero")), "is not a regular file");
    const std::string pipe = dir_ + "/pipe.dict";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(expectError(readPropertyListFile(pipe)), "is not a regular file");
    EXPECT_FALSE(writePropertyListFile(dir_ + "/no/such/folder/x.dict", sampleTree()));
}
