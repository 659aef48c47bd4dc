// The in-memory property-list values: number reading, ordered dictionaries, sharing, equality.
#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

#include "platform/PropertyList.h"

using namespace tolvar;

namespace {
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
}  // namespace

TEST(IntValue, IntegersKeepTheirLow32BitsAsSigned) {
    EXPECT_EQ(Value::integer(7).intValue(), 7);
    EXPECT_EQ(Value::integer(-7).intValue(), -7);
    EXPECT_EQ(Value::integer(0x100000005LL).intValue(), 5);
    EXPECT_EQ(Value::integer(0xFFFFFFFFLL).intValue(), -1);
    EXPECT_EQ(Value::integer(0x80000000LL).intValue(), kMin);
    EXPECT_EQ(Value::integer(-0x100000001LL).intValue(), -1);
}

TEST(IntValue, RealsTruncateTowardZeroAndSaturate) {
    EXPECT_EQ(Value::real(3.9).intValue(), 3);
    EXPECT_EQ(Value::real(-3.9).intValue(), -3);
    EXPECT_EQ(Value::real(1e20).intValue(), kMax);
    EXPECT_EQ(Value::real(-1e20).intValue(), kMin);
    EXPECT_EQ(Value::real(2147483647.5).intValue(), kMax);
    EXPECT_EQ(Value::real(std::numeric_limits<double>::infinity()).intValue(), kMax);
    EXPECT_EQ(Value::real(std::nan("")).intValue(), 0);
}

TEST(IntValue, StringsReadLikeAtoiAndSaturate) {
    EXPECT_EQ(Value::string(" -12abc").intValue(), -12);
    EXPECT_EQ(Value::string("\t\n +42").intValue(), 42);
    EXPECT_EQ(Value::string("99999999999").intValue(), kMax);
    EXPECT_EQ(Value::string("-99999999999").intValue(), kMin);
    EXPECT_EQ(Value::string("-2147483648").intValue(), kMin);
    EXPECT_EQ(Value::string("2147483647").intValue(), kMax);
    EXPECT_EQ(Value::string("abc").intValue(), 0);
    EXPECT_EQ(Value::string("").intValue(), 0);
    EXPECT_EQ(Value::string("- 5").intValue(), 0);
    EXPECT_EQ(Value::string("12 34").intValue(), 12);
    EXPECT_EQ(Value::string("00000000000000000000000009").intValue(), 9);
}

TEST(IntValue, BooleansAreOneAndZeroContainersHaveNone) {
    EXPECT_EQ(Value::boolean(true).intValue(), 1);
    EXPECT_EQ(Value::boolean(false).intValue(), 0);
    EXPECT_FALSE(Value::array().intValue().has_value());
    EXPECT_FALSE(Value::dictionary().intValue().has_value());
    EXPECT_FALSE(Value::data(Data{{1, 2}}).intValue().has_value());
    EXPECT_FALSE(Value::date(Date{5.0}).intValue().has_value());
}

TEST(Dictionary, KeepsInsertionOrderAndReplacesInPlace) {
    Dictionary d;
    d.set("zeta", Value::integer(1));
    d.set("alpha", Value::integer(2));
    d.set("mid", Value::integer(3));
    d.set("zeta", Value::string("again"));
    ASSERT_EQ(d.size(), 3u);
    EXPECT_EQ(d.entries()[0].first, "zeta");
    EXPECT_EQ(d.entries()[1].first, "alpha");
    EXPECT_EQ(d.entries()[2].first, "mid");
    ASSERT_NE(d.find("zeta"), nullptr);
    EXPECT_EQ(*d.find("zeta")->asString(), "again");
    EXPECT_EQ(d.find("nothing"), nullptr);

    EXPECT_TRUE(d.erase("alpha"));
    EXPECT_FALSE(d.erase("alpha"));
    ASSERT_EQ(d.size(), 2u);
    EXPECT_EQ(d.entries()[1].first, "mid");
}

TEST(Value, CopiesShareTheirContainers) {
    Value dict = Value::dictionary();
    Value copy = dict;
    copy.asDictionary()->set("key", Value::integer(9));
    ASSERT_NE(dict.asDictionary()->find("key"), nullptr);

    Value array = Value::array();
    Value arrayCopy = array;
    arrayCopy.asArray()->push_back(Value::boolean(true));
    EXPECT_EQ(array.asArray()->size(), 1u);

    EXPECT_EQ(Value::integer(1).asArray(), nullptr);
    EXPECT_EQ(Value::string("x").asDictionary(), nullptr);
}

TEST(Value, EqualityIsDeepAndIgnoresKeyOrder) {
    Dictionary a;
    a.set("x", Value::integer(1));
    a.set("y", Value::array({Value::string("s"), Value::real(1.5)}));
    Dictionary b;
    b.set("y", Value::array({Value::string("s"), Value::real(1.5)}));
    b.set("x", Value::integer(1));
    EXPECT_EQ(Value::dictionary(a), Value::dictionary(b));

    b.set("x", Value::integer(2));
    EXPECT_FALSE(Value::dictionary(a) == Value::dictionary(b));
    b.set("x", Value::integer(1));
    b.set("z", Value::integer(1));
    EXPECT_FALSE(Value::dictionary(a) == Value::dictionary(b));

    EXPECT_FALSE(Value::integer(1) == Value::real(1.0));
    EXPECT_FALSE(Value::integer(1) == Value::boolean(true));
    EXPECT_FALSE(Value::array({Value::integer(1), Value::integer(2)}) ==
                 Value::array({Value::integer(2), Value::integer(1)}));
    EXPECT_EQ(Value::data(Data{{1, 2, 3}}), Value::data(Data{{1, 2, 3}}));
}

TEST(Date, CountsFromTheStartOf2001) {
    EXPECT_DOUBLE_EQ(Date::fromUnixTime(978307200.0).secondsSinceReference, 0.0);
    EXPECT_DOUBLE_EQ(Date{86400.0}.unixTime(), 978307200.0 + 86400.0);
    const double now = Date::now().unixTime();
    EXPECT_NEAR(now, static_cast<double>(std::time(nullptr)), 5.0);
}
