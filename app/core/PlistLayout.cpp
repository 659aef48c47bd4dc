#include "core/PlistLayout.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace tolvar {

void PlistFindings::add(PlistFinding finding) {
    ++count;
    if (kept.size() < kMaxPlistFindings) kept.push_back(std::move(finding));
}

namespace plistlayout {

std::string wideIntegerMessage(const std::string& written) {
    return "the integer " + written + " does not fit in 64 bits (from -9223372036854775808 to 18446744073709551615)";
}

namespace {

// The reading library parses nested arrays and dictionaries by recursion, without a limit, and
// stops the program on a dictionary key with a zero byte inside. So before handing it any bytes,
// the layout is checked here: nesting deeper than kMaxDepth and texts with zero bytes are refused.
// Whatever these scans cannot make sense of is left to the parser, which refuses it.

std::uint64_t readBigEndian(const unsigned char* p, std::size_t size) {
    std::uint64_t v = 0;
    for (std::size_t i = 0; i < size; ++i) v = (v << 8) | p[i];
    return v;
}

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

std::optional<BinaryLayout> binaryLayout(std::string_view bytes) {
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

__extension__ typedef unsigned __int128 Wide;

// The decimal text of a 16-byte big-endian two's-complement integer.
std::string decimal128(const unsigned char* p) {
    Wide v = 0;
    for (int i = 0; i < 16; ++i) v = (v << 8) | p[i];
    const bool negative = (p[0] & 0x80) != 0;
    if (negative) v = ~v + 1;
    std::string digits;
    do {
        digits.push_back(static_cast<char>('0' + static_cast<int>(v % 10)));
        v /= 10;
    } while (v != 0);
    if (negative) digits.push_back('-');
    std::reverse(digits.begin(), digits.end());
    return digits;
}

// True when a 16-byte integer object (marker 0x14) holds a value outside 64 bits: its high half
// is neither all zero (0 to 2^64 - 1) nor the sign extension of a negative 64-bit value.
bool wideOutside64(const unsigned char* p) {
    const bool highZero = std::all_of(p, p + 8, [](unsigned char c) { return c == 0x00; });
    const bool highOnes = std::all_of(p, p + 8, [](unsigned char c) { return c == 0xFF; });
    return !(highZero || (highOnes && (p[8] & 0x80) != 0));
}

constexpr unsigned char kWideIntegerMarker = 0x14;

bool isWideOutside64(const BinaryLayout& b, std::uint64_t object) {
    const std::uint64_t offset = b.objectOffset(object);
    return offset + 17 <= b.size && b.p[offset] == kWideIntegerMarker && wideOutside64(b.p + offset + 1);
}

// The integers outside 64 bits, numbered in the order the reader meets integer values: from the
// root, depth first, each reference read again (as the reading library copies shared objects).
// The shape check has already bounded that walk to kMaxBinaryValues values without loops.
std::vector<WideInteger> wideIntegers(const BinaryLayout& b) {
    std::vector<WideInteger> out;
    bool any = false;
    for (std::uint64_t i = 0; i < b.objectCount && !any; ++i) any = isWideOutside64(b, i);
    if (!any || b.rootObject >= b.objectCount) return out;
    std::uint64_t ordinal = 0;
    std::vector<std::uint64_t> pending{b.rootObject};  // objects still to visit, the next on top
    while (!pending.empty()) {
        const std::uint64_t object = pending.back();
        pending.pop_back();
        const std::uint64_t offset = b.objectOffset(object);
        if (offset >= b.size) continue;
        const unsigned type = b.p[offset] >> 4;
        if (type == 0x1) {
            if (isWideOutside64(b, object)) out.push_back({ordinal, decimal128(b.p + offset + 1)});
            ++ordinal;
            continue;
        }
        if (type != 0xA && type != 0xC && type != 0xD) continue;
        std::uint64_t count = 0;
        std::uint64_t pos = 0;
        if (!b.lengthAt(offset, count, pos)) continue;
        const std::uint64_t refs = type == 0xD ? count * 2 : count;
        if (refs > (b.size - pos) / b.refSize) continue;
        // A dictionary's keys come first, then its values; only the values hold integers.
        const std::uint64_t first = type == 0xD ? count : 0;
        for (std::uint64_t k = refs; k-- > first;) {
            const std::uint64_t child = readBigEndian(b.p + pos + k * b.refSize, b.refSize);
            if (child < b.objectCount) pending.push_back(child);
        }
    }
    return out;
}

// The XML scan. It follows the elements as the reading library does, without building anything
// but a stack of the open arrays and dictionaries and the keys of each open dictionary.
class XmlScan {
public:
    explicit XmlScan(std::string_view text) : t_(text) {}
    XmlCheck run();

private:
    struct Frame {
        bool dict = false;
        std::string_view label;       // the key this container stands under, when it does
        std::size_t labelIndex = 0;   // its index in the parent array otherwise
        bool underKey = false;
        std::string_view pendingKey;  // a dictionary's key waiting for its value
        std::size_t nextIndex = 0;    // an array's next index
        std::unordered_set<std::string_view> keys;
    };

    std::size_t endOfElement(std::size_t contentStart, std::string_view name);
    // The path to the value about to be read in the innermost container, and its nearest key.
    std::string pathHere(std::string* key) const;
    // The innermost container has read one value.
    void valueRead();
    void checkInteger(std::size_t tagAt, std::string_view content);

    std::string_view t_;
    std::vector<Frame> stack_;
    XmlCheck out_;
    std::size_t nextCdata_ = 0;
    bool cdataSearched_ = false;
};

std::size_t XmlScan::endOfElement(std::size_t from, std::string_view name) {
    const std::string close = "</" + std::string(name);
    for (;;) {
        const std::size_t end = t_.find(close, from);
        // The next CDATA section is looked for again only once the scan has passed the last one
        // found, so that a text without any is not searched to its end at every element.
        if (nextCdata_ != std::string_view::npos && (nextCdata_ < from || !cdataSearched_)) {
            nextCdata_ = t_.find("<![CDATA[", from);
            cdataSearched_ = true;
        }
        const std::size_t cdata = nextCdata_;
        if (cdata == std::string_view::npos || end == std::string_view::npos || end < cdata) return end;
        const std::size_t cdataEnd = t_.find("]]>", cdata);
        if (cdataEnd == std::string_view::npos) return std::string_view::npos;
        from = cdataEnd + 3;
    }
}

std::string XmlScan::pathHere(std::string* key) const {
    std::string path;
    auto add = [&path](std::string_view part) {
        if (!path.empty()) path += '/';
        path += part;
    };
    std::string_view nearest;
    // stack_[0] stands for <plist> and stack_[1] for the root value, which has no name.
    for (std::size_t i = 2; i < stack_.size(); ++i) {
        const Frame& f = stack_[i];
        if (f.underKey) nearest = f.label;
        add(f.underKey ? std::string(f.label) : std::to_string(f.labelIndex));
    }
    if (stack_.size() > 1) {
        const Frame& top = stack_.back();
        if (top.dict) nearest = top.pendingKey;
        add(top.dict ? std::string(top.pendingKey) : std::to_string(top.nextIndex));
    }
    if (key) *key = std::string(nearest);
    return path;
}

void XmlScan::valueRead() {
    if (stack_.empty()) return;
    Frame& top = stack_.back();
    if (top.dict) top.pendingKey = {};
    else ++top.nextIndex;
}

// Read as the reading library reads it (an optional sign, then a number in C's notation:
// 0x for hexadecimal, a leading 0 for octal), but without its wrapping and clamping.
void XmlScan::checkInteger(std::size_t tagAt, std::string_view content) {
    std::size_t a = content.find_first_not_of(" \t\r\n");
    const std::size_t b = content.find_last_not_of(" \t\r\n");
    if (a == std::string_view::npos) return;
    const std::string_view written = content.substr(a, b - a + 1);
    const bool negative = content[a] == '-';
    if (content[a] == '-' || content[a] == '+') ++a;
    unsigned base = 10;
    if (b > a + 1 && content[a] == '0' && (content[a + 1] == 'x' || content[a + 1] == 'X')) base = 16, a += 2;
    else if (b > a && content[a] == '0') base = 8;
    const Wide limit = negative ? (Wide{1} << 63) : ~std::uint64_t{0};
    Wide value = 0;
    bool outside = false;
    for (std::size_t i = a; i <= b; ++i) {
        const char c = content[i];
        unsigned digit = 0;
        if (c >= '0' && c <= '9') digit = static_cast<unsigned>(c - '0');
        else if (c >= 'a' && c <= 'f') digit = static_cast<unsigned>(c - 'a' + 10);
        else if (c >= 'A' && c <= 'F') digit = static_cast<unsigned>(c - 'A' + 10);
        else return;  // not a plain number: the library reads what it reads
        if (digit >= base) return;
        if (!outside) value = value * base + digit;
        outside = outside || value > limit;
    }
    if (!outside) return;
    PlistFinding finding;
    finding.path = pathHere(&finding.key);
    finding.offset = tagAt;
    finding.message = wideIntegerMessage(std::string(written));
    out_.findings.add(std::move(finding));
}

XmlCheck XmlScan::run() {
    const std::string tooDeep = "nested more than " + std::to_string(kMaxDepth) + " levels deep";
    for (std::size_t i = t_.find('<'); i != std::string_view::npos; i = t_.find('<', i + 1)) {
        for (const char* skipped : {"<!--", "<![CDATA[", "<?", "<!"}) {
            if (t_.compare(i, std::strlen(skipped), skipped) != 0) continue;
            const char* end = skipped[1] == '?' ? "?>" : skipped[2] == '-' ? "-->" : skipped[2] == '[' ? "]]>" : ">";
            const std::size_t close = t_.find(end, i);
            if (close == std::string_view::npos) return std::move(out_);
            i = close;
            break;
        }
        if (t_[i] != '<') continue;
        const bool closing = i + 1 < t_.size() && t_[i + 1] == '/';
        const std::size_t nameAt = i + (closing ? 2 : 1);
        const std::size_t nameEnd = std::min(t_.find_first_of(" \t\r\n/>", nameAt), t_.size());
        const std::string_view name = t_.substr(nameAt, nameEnd - nameAt);
        const std::size_t tagEnd = t_.find('>', nameEnd);
        if (tagEnd == std::string_view::npos) return std::move(out_);
        const bool empty = t_[tagEnd - 1] == '/';
        const bool container = name == "dict" || name == "array";
        if (closing) {
            if (container && stack_.size() > 1) {
                stack_.pop_back();
                valueRead();
            }
            i = tagEnd;
            continue;
        }
        if (name == "plist") {
            if (stack_.empty()) stack_.push_back(Frame{});
            i = tagEnd;
            continue;
        }
        if (stack_.empty()) stack_.push_back(Frame{});  // a document without <plist>
        if (container && !empty) {
            if (static_cast<int>(stack_.size()) > kMaxDepth) {
                out_.problem = tooDeep;
                return std::move(out_);
            }
            Frame frame;
            frame.dict = name == "dict";
            const Frame& parent = stack_.back();
            frame.underKey = parent.dict;
            frame.label = parent.pendingKey;
            frame.labelIndex = parent.nextIndex;
            stack_.push_back(std::move(frame));
            i = tagEnd;
            continue;
        }
        std::size_t contentEnd = tagEnd + 1;
        if (!empty) {
            contentEnd = endOfElement(tagEnd + 1, name);
            if (contentEnd == std::string_view::npos) return std::move(out_);
        }
        const std::string_view content = empty ? std::string_view() : t_.substr(tagEnd + 1, contentEnd - tagEnd - 1);
        if (name == "key") {
            Frame& dict = stack_.back();
            if (dict.dict && !dict.keys.insert(content).second) {
                dict.pendingKey = content;
                PlistFinding finding;
                finding.path = pathHere(&finding.key);
                finding.offset = i;
                finding.message = "the key \"" + std::string(content) +
                                  "\" appears more than once in one dictionary; only one of its values would be read";
                out_.findings.add(std::move(finding));
            }
            dict.pendingKey = content;
        } else {
            if (name == "integer") checkInteger(i, content);
            valueRead();
        }
        i = empty ? tagEnd : contentEnd;
    }
    return std::move(out_);
}

}  // namespace

BinaryCheck checkBinary(std::string_view bytes) {
    BinaryCheck out;
    const auto layout = binaryLayout(bytes);
    if (!layout) return out;
    if (binaryHasZeroInText(*layout)) {
        out.problem = "holds a text with a zero byte";
        return out;
    }
    out.problem = binaryShapeProblem(*layout);
    if (!out.problem) out.wideIntegers = wideIntegers(*layout);
    return out;
}

XmlCheck checkXml(std::string_view text) { return XmlScan(text).run(); }

}  // namespace plistlayout
}  // namespace tolvar
