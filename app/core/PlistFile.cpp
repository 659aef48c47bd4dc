#include "core/PlistFile.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <optional>
#include <vector>
#include <limits>
#include <memory>

#include <malloc.h>
#include <plist/plist.h>

#include "RegularFile.h"


namespace tolvar {

namespace {

using plistlayout::kMaxDepth;

// Files above this size are not property lists the game wrote or could use.
constexpr std::uintmax_t kMaxFileSize = 64u * 1024u * 1024u;

// A UTF-8 byte-order mark, which some editors put before the XML declaration.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct NodeFree {
    void operator()(void* node) const { plist_free(node); }
};
using NodePtr = std::unique_ptr<void, NodeFree>;

// Keys and dictionary iterators come from the C library's own allocator and go back to it.
struct CFree {
    void operator()(void* p) const { std::free(p); }
};

struct XmlFree {
    void operator()(char* p) const { plist_to_xml_free(p); }
};

// Dictionaries of up to this many pairs free each pair once it is read.
constexpr std::uint32_t kPairsFreedUpTo = 512;

// How many array items' nodes are freed between two returns of free memory to the system.
constexpr std::size_t kValuesBetweenTrims = 65536;

// The conversion from the library's nodes to values, walking arrays and dictionaries with their
// iterators (asking an array for item i walks the list from the start each time). Each item's
// nodes are freed once it is converted, so the tree and the values are not both whole at once;
// the conversion consumes the tree.
class Conversion {
public:
    explicit Conversion(std::vector<plistlayout::WideInteger> wide) : wide_(std::move(wide)) {}

    std::optional<Value> fromNode(plist_t node, int depth);
    std::string error;
    PlistFindings findings;

private:
    // One step of the path from the top to the value being converted.
    struct Step {
        const char* key = nullptr;  // null inside an array
        std::size_t index = 0;
    };
    void note(std::string message);
    // An array item's nodes were freed; now and then the freed pages go back to the system, so
    // that the array's values, held in one block, do not come on top of the whole tree. (The
    // small blocks of a dictionary's values reuse the freed nodes' room without this.)
    void released();
    std::optional<Value> fromArray(plist_t node, int depth);
    std::optional<Value> fromDictionary(plist_t node, int depth);

    std::vector<plistlayout::WideInteger> wide_;  // in ordinal order
    std::size_t nextWide_ = 0;
    std::uint64_t integersRead_ = 0;
    std::vector<Step> path_;
    std::size_t releasedSinceTrim_ = 0;
};

void Conversion::released() {
    if (++releasedSinceTrim_ < kValuesBetweenTrims) return;
    releasedSinceTrim_ = 0;
    malloc_trim(0);
}

void Conversion::note(std::string message) {
    PlistFinding finding;
    for (const Step& step : path_) {
        if (!finding.path.empty()) finding.path += '/';
        finding.path += step.key ? std::string(step.key) : std::to_string(step.index);
        if (step.key) finding.key = step.key;
    }
    finding.message = std::move(message);
    findings.add(std::move(finding));
}

std::optional<Value> Conversion::fromArray(plist_t node, int depth) {
    Array array;
    array.reserve(plist_array_get_size(node));
    plist_array_iter rawIter = nullptr;
    plist_array_new_iter(node, &rawIter);
    std::unique_ptr<void, CFree> iter(rawIter);
    if (!iter) return Value::array();
    path_.push_back(Step{});
    for (;;) {
        plist_t item = nullptr;
        plist_array_next_item(node, iter.get(), &item);
        if (!item) break;
        path_.back().index = array.size();
        auto value = fromNode(item, depth + 1);
        if (!value) return std::nullopt;
        array.push_back(std::move(*value));
        // The iterator has moved on: the item, now the array's first node, goes at once.
        plist_free(item);
        released();
    }
    path_.pop_back();
    return Value::array(std::move(array));
}

std::optional<Value> Conversion::fromDictionary(plist_t node, int depth) {
    Dictionary dict;
    // The library finds a large dictionary's keys through a hash table, whose removals cost more
    // than the room they give back: only the pairs of smaller ones are freed as they are read
    // (a large one's values still free their own contents).
    const bool freePairs = plist_dict_get_size(node) <= kPairsFreedUpTo;
    plist_dict_iter rawIter = nullptr;
    plist_dict_new_iter(node, &rawIter);
    std::unique_ptr<void, CFree> iter(rawIter);
    if (!iter) return Value::dictionary();
    path_.push_back(Step{});
    for (;;) {
        char* rawKey = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, iter.get(), &rawKey, &item);
        std::unique_ptr<char, CFree> key(rawKey);
        if (!item) break;
        path_.back().key = key ? key.get() : "";
        std::string name = path_.back().key;
        if (dict.find(name))
            note("the key \"" + name + "\" appears more than once in one dictionary; only one of its values would be read");
        auto value = fromNode(item, depth + 1);
        if (!value) return std::nullopt;
        dict.set(std::move(name), std::move(*value));
        // The pair read is the dictionary's first (the earlier ones are gone), so the library
        // finds it at once; the iterator already stands on the next key.
        if (freePairs) plist_dict_remove_item(node, key.get());
    }
    path_.pop_back();
    return Value::dictionary(std::move(dict));
}

std::optional<Value> Conversion::fromNode(plist_t node, int depth) {
    if (depth > kMaxDepth) {
        error = "nested more than " + std::to_string(kMaxDepth) + " levels deep";
        return std::nullopt;
    }
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t b = 0;
            plist_get_bool_val(node, &b);
            return Value::boolean(b != 0);
        }
        case PLIST_UINT: {
            std::uint64_t u = 0;
            plist_get_uint_val(node, &u);
            if (nextWide_ < wide_.size() && wide_[nextWide_].ordinal == integersRead_)
                note(plistlayout::wideIntegerMessage(wide_[nextWide_++].written));
            ++integersRead_;
            return Value::integer(static_cast<std::int64_t>(u));
        }
        case PLIST_UID: {
            std::uint64_t u = 0;
            plist_get_uid_val(node, &u);
            return Value::integer(static_cast<std::int64_t>(u));
        }
        case PLIST_REAL: {
            double d = 0.0;
            plist_get_real_val(node, &d);
            return Value::real(d);
        }
        case PLIST_STRING:
        case PLIST_KEY: {
            std::uint64_t length = 0;
            const char* s = plist_get_string_ptr(node, &length);
            return Value::string(s ? std::string(s, static_cast<std::size_t>(length)) : std::string());
        }
        case PLIST_DATE: {
            std::int32_t sec = 0;
            std::int32_t usec = 0;
            plist_get_date_val(node, &sec, &usec);
            return Value::date(Date{static_cast<double>(sec) + static_cast<double>(usec) / 1e6});
        }
        case PLIST_DATA: {
            std::uint64_t length = 0;
            const char* p = plist_get_data_ptr(node, &length);
            Data data;
            if (p && length > 0) {
                const auto* bytes = reinterpret_cast<const std::uint8_t*>(p);
                data.bytes.assign(bytes, bytes + length);
            }
            return Value::data(std::move(data));
        }
        case PLIST_ARRAY:
            return fromArray(node, depth);
        case PLIST_DICT:
            return fromDictionary(node, depth);
        case PLIST_NONE:
            break;
    }
    error = "holds a value of an unknown kind";
    return std::nullopt;
}

NodePtr toNode(const Value& value, int depth) {
    if (depth > kMaxDepth) return nullptr;
    switch (value.kind()) {
        case Value::Kind::Boolean:
            return NodePtr(plist_new_bool(*value.asBoolean() ? 1 : 0));
        case Value::Kind::Integer:
            return NodePtr(plist_new_uint(static_cast<std::uint64_t>(*value.asInteger())));
        case Value::Kind::Real:
            return NodePtr(plist_new_real(*value.asReal()));
        case Value::Kind::String:
            return NodePtr(plist_new_string(value.asString()->c_str()));
        case Value::Kind::Date: {
            double seconds = value.asDate()->secondsSinceReference;
            if (!std::isfinite(seconds)) seconds = 0.0;
            double whole = std::floor(seconds);
            const double limit = static_cast<double>(std::numeric_limits<std::int32_t>::max());
            if (whole > limit) whole = limit;
            if (whole < -limit) whole = -limit;
            int usec = static_cast<int>(std::lround((seconds - whole) * 1e6));
            if (usec >= 1000000) usec = 999999;
            if (usec < 0) usec = 0;
            return NodePtr(plist_new_date(static_cast<std::int32_t>(whole), usec));
        }
        case Value::Kind::Data: {
            const auto& bytes = value.asData()->bytes;
            return NodePtr(plist_new_data(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
        }
        case Value::Kind::Array: {
            NodePtr node(plist_new_array());
            for (const Value& item : *value.asArray()) {
                NodePtr child = toNode(item, depth + 1);
                if (!child) return nullptr;
                plist_array_append_item(node.get(), child.release());
            }
            return node;
        }
        case Value::Kind::Dictionary: {
            NodePtr node(plist_new_dict());
            for (const auto& [key, item] : value.asDictionary()->entries()) {
                NodePtr child = toNode(item, depth + 1);
                if (!child) return nullptr;
                plist_dict_set_item(node.get(), key.c_str(), child.release());
            }
            return node;
        }
    }
    return nullptr;
}

}  // namespace

std::variant<ReadPropertyList, PlistError> parsePropertyListNoting(std::string_view bytes) {
    // A byte-order mark is no part of the text; the reading library would refuse the whole file.
    if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) bytes.remove_prefix(kByteOrderMark.size());
    if (bytes.empty()) return PlistError{"the file is empty"};
    if (bytes.size() > kMaxFileSize) return PlistError{"too large to be a property list"};
    const auto length = static_cast<std::uint32_t>(bytes.size());
    plist_t raw = nullptr;
    const bool binary = plist_is_binary(bytes.data(), length) != 0;
    std::vector<plistlayout::WideInteger> wide;
    PlistFindings xmlFindings;
    if (binary) {
        plistlayout::BinaryCheck check = plistlayout::checkBinary(bytes);
        if (check.problem) return PlistError{*check.problem};
        wide = std::move(check.wideIntegers);
        plist_from_bin(bytes.data(), length, &raw);
    } else {
        plistlayout::XmlCheck check = plistlayout::checkXml(bytes);
        if (check.problem) return PlistError{*check.problem};
        xmlFindings = std::move(check.findings);
        plist_from_xml(bytes.data(), length, &raw);
    }
    NodePtr root(raw);
    if (!root) {
        return PlistError{binary ? "not a readable binary property list (damaged or truncated)"
                                 : "not a property list (or a truncated or damaged one)"};
    }
    Conversion conversion(std::move(wide));
    auto value = conversion.fromNode(root.get(), 0);
    if (!value) return PlistError{conversion.error};
    root.reset();
    ReadPropertyList read{std::move(*value), binary ? std::move(conversion.findings) : std::move(xmlFindings)};
    return read;
}

std::variant<Value, PlistError> parsePropertyList(std::string_view bytes) {
    auto read = parsePropertyListNoting(bytes);
    if (auto* error = std::get_if<PlistError>(&read)) return std::move(*error);
    ReadPropertyList& list = std::get<ReadPropertyList>(read);
    if (list.findings.count == 0) return std::move(list.value);
    const PlistFinding& first = list.findings.kept.front();
    std::string reason = (first.path.empty() ? "" : first.path + ": ") + first.message;
    if (list.findings.count > 1) reason += " (and " + std::to_string(list.findings.count - 1) + " more like it)";
    return PlistError{reason};
}

std::variant<Value, PlistError> readPropertyListFile(const std::string& path) {
    auto read = readRegularFile(path, kMaxFileSize);
    if (auto* refusal = std::get_if<ReadRefusal>(&read)) return PlistError{refusal->reason};
    return parsePropertyList(std::get<std::string>(read));
}

std::string toXmlPropertyList(const Value& value) {
    NodePtr root = toNode(value, 0);
    if (!root) return std::string();
    char* raw = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root.get(), &raw, &length);
    std::unique_ptr<char, XmlFree> xml(raw);
    if (!xml) return std::string();
    return std::string(xml.get(), length);
}

std::optional<FileWriteError> writePropertyListFile(const std::string& path, const Value& value) {
    const std::string xml = toXmlPropertyList(value);
    if (xml.empty()) return FileWriteError{path, "nested too deeply to be written"};
    return writeFileAtomically(path, xml);
}

}  // namespace tolvar
