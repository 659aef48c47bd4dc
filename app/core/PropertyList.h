// Property-list values: the in-memory form of "RulesDict.dict" and "BestScores.dict".
//
// A value is one of the property-list kinds. Arrays and dictionaries are shared (copying a
// Value copies a handle, as the game keeps references into the loaded rules), and a dictionary
// keeps its keys in the order they were read or inserted, so the game menu follows the file.
//
// Reading and writing files lives in PlistFile.h; nothing here knows the on-disk formats.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace tolvar {

class Value;

// A moment in time, seconds since 1 January 2001 00:00:00 UTC (the property-list epoch).
struct Date {
    double secondsSinceReference = 0.0;
    static Date now();
    static Date fromUnixTime(double unixSeconds);
    double unixTime() const;
    bool operator==(const Date&) const = default;
};

struct Data {
    std::vector<std::uint8_t> bytes;
    bool operator==(const Data&) const = default;
};

using Array = std::vector<Value>;

// Keys in insertion order. A rules file may hold many thousands of games, so past a handful of
// keys they are found through a hash index, which holds each key's hash and position (not a copy
// of the key: a game's title can be megabytes long).
class Dictionary {
public:
    const Value* find(const std::string& key) const;
    Value* find(const std::string& key);
    // Replaces the value of an existing key in place, or appends the key at the end.
    void set(std::string key, Value value);
    bool erase(const std::string& key);
    std::size_t size() const;  // defined below, once Value is complete
    bool empty() const;
    const std::vector<std::pair<std::string, Value>>& entries() const { return entries_; }

private:
    // Smaller dictionaries (every game's rules) are searched in order, without an index.
    static constexpr std::size_t kIndexedFrom = 16;
    std::size_t positionOf(const std::string& key) const;  // entries_.size() when absent
    void indexFrom(std::size_t first);
    void append(std::string&& key, Value value);  // a key not there yet

    std::vector<std::pair<std::string, Value>> entries_;
    std::unordered_multimap<std::size_t, std::size_t> positions_;  // hash of a key -> its index in entries_
};

class Value {
public:
    enum class Kind { Boolean, Integer, Real, String, Date, Data, Array, Dictionary };

    Value() : v_(std::int64_t{0}) {}
    static Value boolean(bool b) { Value x; x.v_ = b; return x; }
    static Value integer(std::int64_t i) { Value x; x.v_ = i; return x; }
    static Value real(double d) { Value x; x.v_ = d; return x; }
    static Value string(std::string s) { Value x; x.v_ = std::move(s); return x; }
    static Value date(tolvar::Date d) { Value x; x.v_ = d; return x; }
    static Value data(tolvar::Data d) { Value x; x.v_ = std::move(d); return x; }
    static Value array(tolvar::Array a = {}) { Value x; x.v_ = std::make_shared<tolvar::Array>(std::move(a)); return x; }
    static Value dictionary(tolvar::Dictionary d = {}) { Value x; x.v_ = std::make_shared<tolvar::Dictionary>(std::move(d)); return x; }

    Kind kind() const { return static_cast<Kind>(v_.index()); }
    bool isBoolean() const { return kind() == Kind::Boolean; }
    bool isInteger() const { return kind() == Kind::Integer; }
    bool isReal() const { return kind() == Kind::Real; }
    bool isString() const { return kind() == Kind::String; }
    bool isDate() const { return kind() == Kind::Date; }
    bool isData() const { return kind() == Kind::Data; }
    bool isArray() const { return kind() == Kind::Array; }
    bool isDictionary() const { return kind() == Kind::Dictionary; }

    // Typed access; each returns nullptr when the value is of another kind.
    const bool* asBoolean() const { return std::get_if<bool>(&v_); }
    const std::int64_t* asInteger() const { return std::get_if<std::int64_t>(&v_); }
    const double* asReal() const { return std::get_if<double>(&v_); }
    const std::string* asString() const { return std::get_if<std::string>(&v_); }
    const tolvar::Date* asDate() const { return std::get_if<tolvar::Date>(&v_); }
    const tolvar::Data* asData() const { return std::get_if<tolvar::Data>(&v_); }
    const tolvar::Array* asArray() const;
    tolvar::Array* asArray();
    const tolvar::Dictionary* asDictionary() const;
    tolvar::Dictionary* asDictionary();

    // The rules' number reading ("intValue"): an integer keeps its low 32 bits as a signed value;
    // a real is truncated toward zero (saturating at the int32 range); true and false are 1 and 0;
    // a string reads like C atoi (leading blanks, a sign, digits), saturating at the int32 range,
    // 0 without digits. Arrays, dictionaries, data and dates have no number: nullopt, so the
    // caller's default applies.
    std::optional<std::int32_t> intValue() const;

    // Deep equality (shared containers compared by content).
    bool operator==(const Value& other) const;

private:
    std::variant<bool, std::int64_t, double, std::string, tolvar::Date, tolvar::Data,
                 std::shared_ptr<tolvar::Array>, std::shared_ptr<tolvar::Dictionary>> v_;
};

inline std::size_t Dictionary::size() const { return entries_.size(); }
inline bool Dictionary::empty() const { return entries_.empty(); }

}  // namespace tolvar
