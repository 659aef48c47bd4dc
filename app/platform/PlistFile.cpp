#include "platform/PlistFile.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <optional>
#include <vector>
#include <fstream>
#include <limits>
#include <memory>
#include <sys/stat.h>

#include <plist/plist.h>


namespace tolvar {

namespace {

// Deeper structures are refused: no rules or score file nests more than a handful of levels,
// and refusing early keeps the conversion's recursion shallow.
constexpr int kMaxDepth = 256;

// A binary file may refer to one object many times; past this many values it is refused.
constexpr std::uint64_t kMaxBinaryValues = 4'000'000;

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

// The reading library parses nested arrays and dictionaries by recursion, without a limit, and
// stops the program on a dictionary key with a zero byte inside. So before handing it any bytes,
// the layout is checked here: nesting deeper than kMaxDepth and texts with zero bytes are refused.
// Whatever these scans cannot make sense of is left to the parser, which refuses it.

// The object table of a binary property list, from its 32-byte trailer.
struct BinaryLayout {
    const unsigned char* p = nullptr;
    std::size_t size = 0;
    std::size_t offsetSize = 0;
    std::size_t refSize = 0;
    std::uint64_t objectCount = 0;
    std::uint64_t rootObject = 0;
    std::uint64_t tableOffset = 0;

    std::uint64_t objectOffset(std::uint64_t i) const {
        return readBigEndian(p + tableOffset + i * offsetSize, offsetSize);
    }

    // The length of the object at offset and where its contents start; false when unreadable.
    bool lengthAt(std::uint64_t offset, std::uint64_t& length, std::uint64_t& contents) const {
        if (offset >= size) return false;
        length = p[offset] & 0xF;
        contents = offset + 1;
        if (length != 0xF) return true;
        if (contents >= size || (p[contents] >> 4) != 0x1) return false;
        const std::size_t intSize = std::size_t{1} << (p[contents] & 0xF);
        if (intSize > 8 || contents + 1 + intSize > size) return false;
        length = readBigEndian(p + contents + 1, intSize);
        contents += 1 + intSize;
        return true;
    }
};

std::optional<BinaryLayout> binaryLayout(const std::string& bytes) {
    constexpr std::size_t kTrailer = 32;
    BinaryLayout layout;
    layout.size = bytes.size();
    if (layout.size < 8 + kTrailer) return std::nullopt;
    layout.p = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* trailer = layout.p + layout.size - kTrailer;
    layout.offsetSize = trailer[6];
    layout.refSize = trailer[7];
    layout.objectCount = readBigEndian(trailer + 8, 8);
    layout.rootObject = readBigEndian(trailer + 16, 8);
    layout.tableOffset = readBigEndian(trailer + 24, 8);
    if (layout.offsetSize < 1 || layout.offsetSize > 8 || layout.refSize < 1 || layout.refSize > 8)
        return std::nullopt;
    if (layout.tableOffset >= layout.size - kTrailer) return std::nullopt;
    if (layout.objectCount > (layout.size - kTrailer - layout.tableOffset) / layout.offsetSize)
        return std::nullopt;
    return layout;
}

// True when a text object (ASCII, UTF-16 or UTF-8) holds a zero byte or a zero UTF-16 unit.
bool binaryHasZeroInText(const BinaryLayout& b) {
    for (std::uint64_t i = 0; i < b.objectCount; ++i) {
        const std::uint64_t offset = b.objectOffset(i);
        if (offset >= b.size) continue;
        const unsigned type = b.p[offset] >> 4;
        if (type != 0x5 && type != 0x6 && type != 0x7) continue;
        std::uint64_t length = 0;
        std::uint64_t pos = 0;
        if (!b.lengthAt(offset, length, pos)) continue;
        const std::uint64_t unit = type == 0x6 ? 2 : 1;
        const std::uint64_t available = (b.size - pos) / unit;
        const std::uint64_t count = length < available ? length : available;
        for (std::uint64_t k = 0; k < count; ++k) {
            if (unit == 1 ? b.p[pos + k] == 0 : (b.p[pos + 2 * k] == 0 && b.p[pos + 2 * k + 1] == 0))
                return true;
        }
    }
    return false;
}

// What is wrong with the shape of a binary property list's objects, or nothing: a chain of
// arrays, sets and dictionaries from the root deeper than kMaxDepth, a loop, or references shared
// so often that the values would multiply past kMaxBinaryValues once every reference is read
// (the reading library reads a shared object once per reference). Each object is visited once,
// without recursion.
std::optional<std::string> binaryShapeProblem(const BinaryLayout& b) {
    if (b.rootObject >= b.objectCount) return std::nullopt;
    // The objects a container refers to (keys and values); empty for anything else.
    auto children = [&b](std::uint64_t object, std::vector<std::uint64_t>& out) {
        out.clear();
        const std::uint64_t offset = b.objectOffset(object);
        if (offset >= b.size) return;
        const unsigned type = b.p[offset] >> 4;
        if (type != 0xA && type != 0xC && type != 0xD) return;
        std::uint64_t count = 0;
        std::uint64_t pos = 0;
        if (!b.lengthAt(offset, count, pos)) return;
        const std::uint64_t available = (b.size - pos) / b.refSize;
        if (count > available || (type == 0xD && count * 2 > available)) return;
        const std::uint64_t refs = type == 0xD ? count * 2 : count;
        for (std::uint64_t k = 0; k < refs; ++k) {
            const std::uint64_t child = readBigEndian(b.p + pos + k * b.refSize, b.refSize);
            if (child < b.objectCount) out.push_back(child);
        }
    };
    const std::string tooDeep = "nested more than " + std::to_string(kMaxDepth) + " levels deep";
    enum : std::uint8_t { kUnseen, kOpen, kDone };
    const auto count = static_cast<std::size_t>(b.objectCount);
    std::vector<std::uint8_t> state(count, kUnseen);
    std::vector<int> height(count, 0);
    std::vector<std::uint64_t> values(count, 1);  // values once every reference is read
    struct Frame {
        std::uint64_t object;
        std::vector<std::uint64_t> children;
        std::size_t next = 0;
    };
    std::vector<Frame> stack;
    stack.push_back(Frame{b.rootObject, {}, 0});
    children(b.rootObject, stack.back().children);
    state[b.rootObject] = kOpen;
    auto addChild = [&](std::uint64_t parent, std::uint64_t child) {
        height[parent] = std::max(height[parent], height[child] + 1);
        values[parent] = std::min<std::uint64_t>(values[parent] + values[child], kMaxBinaryValues + 1);
    };
    while (!stack.empty()) {
        if (stack.size() > static_cast<std::size_t>(kMaxDepth) + 1) return tooDeep;
        Frame& top = stack.back();
        if (top.next < top.children.size()) {
            const std::uint64_t child = top.children[top.next++];
            if (state[child] == kOpen) return std::string("refers to itself in a loop");
            if (state[child] == kDone) {
                addChild(top.object, child);
            } else {
                state[child] = kOpen;
                Frame frame{child, {}, 0};
                children(child, frame.children);
                stack.push_back(std::move(frame));
            }
            continue;
        }
        const std::uint64_t finished = top.object;
        state[finished] = kDone;
        stack.pop_back();
        if (height[finished] > kMaxDepth) return tooDeep;
        if (values[finished] > kMaxBinaryValues) return std::string("holds too many values once its shared parts are counted");
        if (!stack.empty()) addChild(stack.back().object, finished);
    }
    return std::nullopt;
}

// True when arrays and dictionaries in an XML property list nest deeper than kMaxDepth.
// Comments are skipped; an empty element ("<array/>") does not nest.
bool xmlTooDeep(const std::string& xml) {
    int depth = 0;
    const std::size_t n = xml.size();
    auto startsWith = [&xml, n](std::size_t at, const char* word) {
        const std::size_t len = std::strlen(word);
        return at + len <= n && xml.compare(at, len, word) == 0;
    };
    auto nameEndsAt = [&xml, n](std::size_t at) {
        return at >= n || xml[at] == '>' || xml[at] == '/' || xml[at] == ' ' || xml[at] == '\t' ||
               xml[at] == '\n' || xml[at] == '\r';
    };
    for (std::size_t i = xml.find('<'); i != std::string::npos && i < n; i = xml.find('<', i + 1)) {
        if (startsWith(i, "<!--")) {
            const std::size_t close = xml.find("-->", i + 4);
            if (close == std::string::npos) break;
            i = close;
            continue;
        }
        const bool closing = i + 1 < n && xml[i + 1] == '/';
        const std::size_t nameAt = i + (closing ? 2 : 1);
        std::size_t nameLength = 0;
        if (startsWith(nameAt, "array")) nameLength = 5;
        else if (startsWith(nameAt, "dict")) nameLength = 4;
        if (nameLength == 0 || !nameEndsAt(nameAt + nameLength)) continue;
        if (closing) {
            if (depth > 0) --depth;
            continue;
        }
        const std::size_t end = xml.find('>', nameAt);
        if (end != std::string::npos && xml[end - 1] == '/') continue;  // empty element
        if (++depth > kMaxDepth) return true;
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
    if (binary) {
        if (auto layout = binaryLayout(bytes)) {
            if (binaryHasZeroInText(*layout)) return PlistError{"holds a text with a zero byte"};
            if (auto problem = binaryShapeProblem(*layout)) return PlistError{*problem};
        }
    } else if (xmlTooDeep(bytes)) {
        return PlistError{"nested more than " + std::to_string(kMaxDepth) + " levels deep"};
    }
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
    // A pipe or a device could keep the reader waiting or reading forever.
    if (!S_ISREG(info.st_mode)) return PlistError{"is not a regular file"};
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

std::optional<FileWriteError> writePropertyListFile(const std::string& path, const Value& value) {
    const std::string xml = toXmlPropertyList(value);
    if (xml.empty()) return FileWriteError{path, "nested too deeply to be written"};
    return writeFileAtomically(path, xml);
}

}  // namespace tolvar
