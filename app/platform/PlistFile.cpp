#include "platform/PlistFile.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <sys/stat.h>

#include "platform/PlistCalls.h"

extern "C" void plist_get_uid_val(plist_t node, std::uint64_t* val);

namespace tolvar {

namespace {

// Deeper structures are refused: no rules or score file nests more than a handful of levels,
// and refusing early keeps the conversion's recursion shallow.
constexpr int kMaxDepth = 256;

// Files above this size are not property lists the game wrote or could use.
constexpr std::uintmax_t kMaxFileSize = 64u * 1024u * 1024u;

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

std::uint64_t readBigEndian(const unsigned char* p, std::size_t size) {
    std::uint64_t v = 0;
    for (std::size_t i = 0; i < size; ++i) v = (v << 8) | p[i];
    return v;
}

// True when a binary property list holds a text with a zero byte (or a zero UTF-16 unit). The
// reading library stops the program when such a text is a dictionary key, so these files are
// refused before they are parsed; the game never writes such texts. Anything this scan cannot
// make sense of is left to the parser, which refuses it.
bool binaryHasZeroInText(const std::string& bytes) {
    constexpr std::size_t kTrailer = 32;
    const std::size_t n = bytes.size();
    if (n < 8 + kTrailer) return false;
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* trailer = p + n - kTrailer;
    const std::size_t offsetSize = trailer[6];
    const std::uint64_t objectCount = readBigEndian(trailer + 8, 8);
    const std::uint64_t tableOffset = readBigEndian(trailer + 24, 8);
    if (offsetSize < 1 || offsetSize > 8 || tableOffset >= n - kTrailer) return false;
    if (objectCount > (n - kTrailer - tableOffset) / offsetSize) return false;
    for (std::uint64_t i = 0; i < objectCount; ++i) {
        const std::uint64_t offset = readBigEndian(p + tableOffset + i * offsetSize, offsetSize);
        if (offset >= n) continue;
        const unsigned marker = p[offset];
        const unsigned type = marker >> 4;
        if (type != 0x5 && type != 0x6 && type != 0x7) continue;  // ASCII, UTF-16, UTF-8 texts
        std::uint64_t length = marker & 0xF;
        std::uint64_t pos = offset + 1;
        if (length == 0xF) {
            if (pos >= n || (p[pos] >> 4) != 0x1) continue;
            const std::size_t intSize = std::size_t{1} << (p[pos] & 0xF);
            if (intSize > 8 || pos + 1 + intSize > n) continue;
            length = readBigEndian(p + pos + 1, intSize);
            pos += 1 + intSize;
        }
        const std::uint64_t unit = type == 0x6 ? 2 : 1;
        const std::uint64_t available = (n - pos) / unit;
        const std::uint64_t count = length < available ? length : available;
        for (std::uint64_t k = 0; k < count; ++k) {
            if (unit == 1 ? p[pos + k] == 0 : (p[pos + 2 * k] == 0 && p[pos + 2 * k + 1] == 0)) return true;
        }
    }
    return false;
}

struct ConvertError {
    std::string reason;
};

std::optional<Value> fromNode(plist_t node, int depth, ConvertError& error) {
    if (depth > kMaxDepth) {
        error.reason = "nested more than " + std::to_string(kMaxDepth) + " levels deep";
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
        case PLIST_ARRAY: {
            Array array;
            const std::uint32_t n = plist_array_get_size(node);
            array.reserve(n);
            for (std::uint32_t i = 0; i < n; ++i) {
                plist_t item = plist_array_get_item(node, i);
                if (!item) continue;
                auto value = fromNode(item, depth + 1, error);
                if (!value) return std::nullopt;
                array.push_back(std::move(*value));
            }
            return Value::array(std::move(array));
        }
        case PLIST_DICT: {
            Dictionary dict;
            plist_dict_iter rawIter = nullptr;
            plist_dict_new_iter(node, &rawIter);
            std::unique_ptr<void, CFree> iter(rawIter);
            if (!iter) return Value::dictionary();
            for (;;) {
                char* rawKey = nullptr;
                plist_t item = nullptr;
                plist_dict_next_item(node, iter.get(), &rawKey, &item);
                std::unique_ptr<char, CFree> key(rawKey);
                if (!item) break;
                auto value = fromNode(item, depth + 1, error);
                if (!value) return std::nullopt;
                // The file's key order is kept; a repeated key keeps its first place, last value.
                dict.set(key ? std::string(key.get()) : std::string(), std::move(*value));
            }
            return Value::dictionary(std::move(dict));
        }
        case PLIST_NONE:
            break;
    }
    error.reason = "holds a value of an unknown kind";
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

std::variant<Value, PlistError> parsePropertyList(const std::string& bytes) {
    if (bytes.empty()) return PlistError{"the file is empty"};
    if (bytes.size() > kMaxFileSize) return PlistError{"too large to be a property list"};
    const auto length = static_cast<std::uint32_t>(bytes.size());
    plist_t raw = nullptr;
    const bool binary = plist_is_binary(bytes.data(), length) != 0;
    if (binary && binaryHasZeroInText(bytes)) return PlistError{"holds a text with a zero byte"};
    if (binary)
        plist_from_bin(bytes.data(), length, &raw);
    else
        plist_from_xml(bytes.data(), length, &raw);
    NodePtr root(raw);
    if (!root) {
        return PlistError{binary ? "not a readable binary property list (damaged or truncated)"
                                 : "not a property list (or a truncated or damaged one)"};
    }
    ConvertError error;
    auto value = fromNode(root.get(), 0, error);
    if (!value) return PlistError{error.reason};
    return std::move(*value);
}

std::variant<Value, PlistError> readPropertyListFile(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        if (errno == ENOENT) return PlistError{"no such file"};
        return PlistError{std::string("cannot be read: ") + std::strerror(errno)};
    }
    if (S_ISDIR(info.st_mode)) return PlistError{"is a folder, not a file"};
    if (static_cast<std::uintmax_t>(info.st_size) > kMaxFileSize)
        return PlistError{"too large to be a property list"};
    std::ifstream in(path, std::ios::binary);
    if (!in) return PlistError{std::string("cannot be read: ") + std::strerror(errno)};
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) return PlistError{"cannot be read: input error"};
    return parsePropertyList(bytes);
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

bool writePropertyListFile(const std::string& path, const Value& value) {
    const std::string xml = toXmlPropertyList(value);
    if (xml.empty()) return false;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(xml.data(), static_cast<std::streamsize>(xml.size()));
    out.flush();
    return static_cast<bool>(out);
}

}  // namespace tolvar
