#include "core/PropertyList.h"

#include <chrono>
#include <functional>
#include <cmath>
#include <limits>

namespace tolvar {

namespace {
// Seconds between the Unix epoch and 1 January 2001 00:00:00 UTC.
constexpr double kReferenceDateUnixTime = 978307200.0;

std::int32_t saturateToInt32(long double v) {
    if (v >= static_cast<long double>(std::numeric_limits<std::int32_t>::max()))
        return std::numeric_limits<std::int32_t>::max();
    if (v <= static_cast<long double>(std::numeric_limits<std::int32_t>::min()))
        return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(v);
}

// Reads like atoi: leading blanks, an optional sign, then digits; stops at the first other
// character. Saturates at the 32-bit range instead of overflowing.
std::int32_t readLeadingInteger(const std::string& s) {
    std::size_t i = 0;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t' || s[i] == '\n' || s[i] == '\r' ||
                            s[i] == '\f' || s[i] == '\v'))
        ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) {
        negative = s[i] == '-';
        ++i;
    }
    // Accumulate in 64 bits, clamping as soon as the magnitude passes the 32-bit range.
    constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    std::int64_t magnitude = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
        magnitude = magnitude * 10 + (s[i] - '0');
        if (magnitude > kLimit) magnitude = kLimit;
    }
    std::int64_t value = negative ? -magnitude : magnitude;
    if (value > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
    if (value < std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(value);
}
}  // namespace

Date Date::now() {
    using namespace std::chrono;
    const double unixSeconds =
        duration_cast<duration<double>>(system_clock::now().time_since_epoch()).count();
    return fromUnixTime(unixSeconds);
}

Date Date::fromUnixTime(double unixSeconds) {
    return Date{unixSeconds - kReferenceDateUnixTime};
}

double Date::unixTime() const { return secondsSinceReference + kReferenceDateUnixTime; }

std::size_t Dictionary::positionOf(const std::string& key) const {
    if (entries_.size() < kIndexedFrom) {
        for (std::size_t i = 0; i < entries_.size(); ++i)
            if (entries_[i].first == key) return i;
        return entries_.size();
    }
    const auto [first, last] = positions_.equal_range(std::hash<std::string>{}(key));
    for (auto at = first; at != last; ++at)
        if (entries_[at->second].first == key) return at->second;
    return entries_.size();
}

void Dictionary::indexFrom(std::size_t first) {
    if (entries_.size() < kIndexedFrom) {
        positions_.clear();
        return;
    }
    if (first == 0) positions_.clear();
    for (std::size_t i = first; i < entries_.size(); ++i)
        positions_.emplace(std::hash<std::string>{}(entries_[i].first), i);
}

const Value* Dictionary::find(const std::string& key) const {
    const std::size_t at = positionOf(key);
    return at == entries_.size() ? nullptr : &entries_[at].second;
}

Value* Dictionary::find(const std::string& key) {
    const std::size_t at = positionOf(key);
    return at == entries_.size() ? nullptr : &entries_[at].second;
}

void Dictionary::set(std::string key, Value value) {
    const std::size_t at = positionOf(key);
    if (at != entries_.size()) {
        entries_[at].second = std::move(value);
        return;
    }
    append(std::move(key), std::move(value));
}

void Dictionary::append(std::string&& key, Value value) {
    entries_.emplace_back(std::move(key), std::move(value));
    // The index starts once the dictionary reaches kIndexedFrom keys, then grows one key at a time.
    indexFrom(entries_.size() == kIndexedFrom ? 0 : entries_.size() - 1);
}

bool Dictionary::erase(const std::string& key) {
    const std::size_t position = positionOf(key);
    if (position == entries_.size()) return false;
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
    indexFrom(0);
    return true;
}

const Array* Value::asArray() const {
    const auto* p = std::get_if<std::shared_ptr<Array>>(&v_);
    return p ? p->get() : nullptr;
}

Array* Value::asArray() {
    auto* p = std::get_if<std::shared_ptr<Array>>(&v_);
    return p ? p->get() : nullptr;
}

const Dictionary* Value::asDictionary() const {
    const auto* p = std::get_if<std::shared_ptr<Dictionary>>(&v_);
    return p ? p->get() : nullptr;
}

Dictionary* Value::asDictionary() {
    auto* p = std::get_if<std::shared_ptr<Dictionary>>(&v_);
    return p ? p->get() : nullptr;
}

std::optional<std::int32_t> Value::intValue() const {
    switch (kind()) {
        case Kind::Boolean:
            return *asBoolean() ? 1 : 0;
        case Kind::Integer:
            // The low 32 bits, read as a signed value.
            return static_cast<std::int32_t>(static_cast<std::uint32_t>(
                static_cast<std::uint64_t>(*asInteger()) & 0xffffffffu));
        case Kind::Real: {
            const double d = *asReal();
            if (std::isnan(d)) return 0;
            return saturateToInt32(std::trunc(static_cast<long double>(d)));
        }
        case Kind::String:
            return readLeadingInteger(*asString());
        case Kind::Date:
        case Kind::Data:
        case Kind::Array:
        case Kind::Dictionary:
            break;
    }
    return std::nullopt;
}

bool Value::operator==(const Value& other) const {
    if (kind() != other.kind()) return false;
    switch (kind()) {
        case Kind::Array: {
            const Array* a = asArray();
            const Array* b = other.asArray();
            if (a == b) return true;
            return *a == *b;
        }
        case Kind::Dictionary: {
            const Dictionary* a = asDictionary();
            const Dictionary* b = other.asDictionary();
            if (a == b) return true;
            // Same keys with equal values; the order of the keys does not matter.
            if (a->size() != b->size()) return false;
            for (const auto& [key, value] : a->entries()) {
                const Value* theirs = b->find(key);
                if (!theirs || !(value == *theirs)) return false;
            }
            return true;
        }
        default:
            return v_ == other.v_;
    }
}

}  // namespace tolvar
