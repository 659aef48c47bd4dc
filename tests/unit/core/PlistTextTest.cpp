// The XML text written in pieces (for the rules' fingerprint, which saved games keep) must be
// the very text the file writer writes, or every saved game would stop matching its rules.
#include <gtest/gtest.h>

#include <string>

#include "core/PlistFile.h"
#include "core/PlistText.h"

namespace tolvar {
namespace {

std::string inPieces(const Value& v) {
    std::string text;
    writeXmlPropertyList(v, [&text](std::string_view piece) { text += piece; });
    return text;
}

Value nested(Value inner, int levels) {
    for (int i = 0; i < levels; ++i) inner = Value::array({std::move(inner)});
    return inner;
}

TEST(PlistText, PiecesMakeTheWritersTextForEveryKind) {
    Dictionary mixed;
    mixed.set("Flag", Value::boolean(true));
    mixed.set("Off", Value::boolean(false));
    mixed.set("Small", Value::integer(7));
    mixed.set("Negative", Value::integer(-9223372036854775807LL - 1));
    mixed.set("Large", Value::integer(9223372036854775807LL));
    mixed.set("Text", Value::string("a <b> & c"));
    mixed.set("", Value::string(""));
    mixed.set("k&<>", Value::string("\xC3\xA9t\xC3\xA9"));
    mixed.set("Real", Value::real(0.1));
    mixed.set("Whole", Value::real(3.0));
    mixed.set("Zero", Value::real(0.0));
    mixed.set("Tiny", Value::real(-1.5e-300));
    mixed.set("When", Value::date(Date{694224000.5}));
    mixed.set("EmptyArray", Value::array());
    mixed.set("EmptyDict", Value::dictionary());
    // Data and a zero byte in a text are left to the library, for the whole value.
    Dictionary withData = mixed;
    withData.set("Bytes", Value::data(Data{{0, 1, 2, 250, 251, 252, 253}}));
    Dictionary withZero = mixed;
    withZero.set(std::string("a\0b", 3), Value::string(std::string("a\0c", 3)));
    Dictionary many;
    for (int i = 0; i < 40; ++i) many.set("key" + std::to_string(i), Value::integer(i));
    const Value cases[] = {
        Value::integer(5),
        Value::string("top"),
        Value::dictionary(mixed),
        Value::array({Value::dictionary(mixed), Value::dictionary(many), Value::array({Value::real(2.5)})}),
        nested(Value::dictionary(mixed), 12),
        nested(Value::dictionary(withData), 10),
        Value::dictionary(withZero),
        nested(Value::integer(1), 300),  // past the nesting the writer takes: nothing is written
    };
    for (const Value& v : cases) EXPECT_EQ(inPieces(v), toXmlPropertyList(v));
}

}  // namespace
}  // namespace tolvar
