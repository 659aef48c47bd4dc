#include "checker/XmlPositions.h"

#include "core/Translate.h"
#include "core/Utf8.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace tolvar::checker {

TextPosition XmlPositions::positionOf(std::uint32_t offset) const {
    const auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
    if (next == lineStarts_.begin()) return {1, static_cast<int>(offset) + 1};
    return {static_cast<int>(next - lineStarts_.begin()), static_cast<int>(offset - *(next - 1)) + 1};
}

TextPosition XmlPositions::at(Node node) const { return positionOf(elements_[node].offset); }

std::size_t XmlPositions::itemCount(Node node) const { return elements_[node].childCount; }

XmlPositions::Node XmlPositions::item(Node node, std::size_t i) const {
    const Element& e = elements_[node];
    return i < e.childCount ? children_[e.firstChild + i] : kNone;
}

std::string_view XmlPositions::keyOf(Node node) const {
    const Element& e = elements_[node];
    if (e.keyOffset == kNoOffset) return {};
    if (e.keyLength != kNoOffset) return text_.substr(e.keyBegin, e.keyLength);
    const auto decoded = decodedKeys_.find(node);
    return decoded == decodedKeys_.end() ? std::string_view() : std::string_view(decoded->second);
}

bool XmlPositions::keyIs(Node node, std::size_t i, std::string_view key) const {
    const Node value = item(node, i);
    return value != kNone && elements_[value].keyOffset != kNoOffset && keyOf(value) == key;
}

XmlPositions::Node XmlPositions::valueOf(Node node, std::string_view key, TextPosition* keyPosition) const {
    for (std::size_t i = itemCount(node); i-- > 0;) {
        if (!keyIs(node, i, key)) continue;
        const Node value = item(node, i);
        if (keyPosition) *keyPosition = positionOf(elements_[value].keyOffset);
        return value;
    }
    return kNone;
}

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool isValueElement(std::string_view name) {
    static const char* const kNames[] = {"dict", "array", "string", "integer", "real",
                                         "date", "data",  "true",   "false"};
    for (const char* n : kNames)
        if (name == n) return true;
    return false;
}

}  // namespace

class XmlScanner {
public:
    explicit XmlScanner(const std::string& text) : t_(text) { out_.text_ = text; }

    std::variant<XmlPositions, XmlProblem> run();

private:
    using Node = XmlPositions::Node;
    struct Frame {
        std::string_view name;
        Node node = XmlPositions::kNone;  // none for <plist>
        TextPosition at;
        bool hasKey = false;  // a dictionary's key waits for its value
        std::string key;
        std::uint32_t keyOffset = 0;
        std::uint32_t keyBegin = 0;  // where the key's text starts
        std::vector<Node> items;
    };

    TextPosition here() const { return {line_, static_cast<int>(pos_ - lineStart_) + 1}; }
    void moveTo(std::size_t to) {
        to = std::min(to, t_.size());
        while (pos_ < to) {
            const void* newline = std::memchr(t_.data() + pos_, '\n', to - pos_);
            if (!newline) {
                pos_ = to;
                return;
            }
            pos_ = static_cast<std::size_t>(static_cast<const char*>(newline) - t_.data()) + 1;
            ++line_;
            lineStart_ = pos_;
            out_.lineStarts_.push_back(static_cast<std::uint32_t>(lineStart_));
        }
    }
    bool at(const char* word) const { return t_.compare(pos_, std::strlen(word), word) == 0; }
    // Moves past the next occurrence of end; false (at the end of the text) when there is none.
    bool skipPast(const char* end) {
        const std::size_t found = t_.find(end, pos_);
        if (found == std::string::npos) {
            moveTo(t_.size());
            return false;
        }
        moveTo(found + std::strlen(end));
        return true;
    }
    XmlProblem problem(TextPosition where, std::string message) const { return {where, std::move(message)}; }
    static std::string describe(const Frame& f) {
        return trf("<%s> opened at line %s, column %s", std::string(f.name), std::to_string(f.at.line),
                   std::to_string(f.at.column));
    }
    Node newElement(std::size_t offset) {
        out_.elements_.push_back({});
        out_.elements_.back().offset = static_cast<std::uint32_t>(offset);
        return static_cast<Node>(out_.elements_.size() - 1);
    }

    // The text of a leaf element up to its end tag, with references and CDATA resolved (into out
    // when it is not null).
    std::optional<XmlProblem> readContent(std::string_view name, std::string* out);
    std::optional<XmlProblem> openElement(TextPosition where, std::size_t offset, std::string_view name, bool empty);
    std::optional<XmlProblem> closeElement(TextPosition where, std::string_view name);
    std::optional<XmlProblem> addValue(TextPosition where, Node node);

    const std::string& t_;
    std::size_t pos_ = 0;
    int line_ = 1;
    std::size_t lineStart_ = 0;
    std::vector<Frame> stack_;
    Node root_ = XmlPositions::kNone;
    XmlPositions out_;
};

std::optional<XmlProblem> XmlScanner::readContent(std::string_view name, std::string* out) {
    const std::string endTag = "</" + std::string(name);
    while (pos_ < t_.size()) {
        const char c = t_[pos_];
        if (c == '<') {
            if (at("<![CDATA[")) {
                const std::size_t start = pos_ + 9;
                const TextPosition opened = here();
                if (!skipPast("]]>")) return problem(opened, tr("a CDATA section is never closed"));
                if (out) out->append(t_, start, pos_ - 3 - start);
                continue;
            }
            if (at("<!--")) {
                const TextPosition opened = here();
                if (!skipPast("-->")) return problem(opened, tr("a comment is never closed"));
                continue;
            }
            if (at(endTag.c_str())) {
                const TextPosition where = here();
                moveTo(pos_ + endTag.size());
                while (pos_ < t_.size() && isSpace(t_[pos_])) moveTo(pos_ + 1);
                if (pos_ >= t_.size() || t_[pos_] != '>')
                    return problem(where, trf("the end tag </%s> is not closed with '>'", std::string(name)));
                moveTo(pos_ + 1);
                return std::nullopt;
            }
            return problem(here(), trf("an element inside <%s>, which holds only text", std::string(name)));
        }
        if (c == '&') {
            const std::size_t semi = t_.find(';', pos_);
            if (semi == std::string::npos || semi - pos_ > 12)
                return problem(here(), tr("an '&' that starts no character reference"));
            const std::string ref = t_.substr(pos_ + 1, semi - pos_ - 1);
            std::string resolved;
            if (ref == "lt") resolved = "<";
            else if (ref == "gt") resolved = ">";
            else if (ref == "amp") resolved = "&";
            else if (ref == "quot") resolved = "\"";
            else if (ref == "apos") resolved = "'";
            else if (ref.size() > 1 && ref[0] == '#') {
                const bool hex = ref[1] == 'x' || ref[1] == 'X';
                const std::string digits = ref.substr(hex ? 2 : 1);
                if (digits.empty() || digits.find_first_not_of(hex ? "0123456789abcdefABCDEF" : "0123456789") !=
                                          std::string::npos)
                    return problem(here(), trf("the character reference &%s; is not a number", ref));
                resolved = utf8(static_cast<char32_t>(std::stoul(digits, nullptr, hex ? 16 : 10) & 0x1FFFFF));
            } else {
                return problem(here(), trf("an unknown entity &%s;", ref));
            }
            if (out) *out += resolved;
            moveTo(semi + 1);
            continue;
        }
        // Plain text up to the next markup or reference, in one step.
        const std::size_t next = std::min(t_.find_first_of("<&", pos_), t_.size());
        if (out) out->append(t_, pos_, next - pos_);
        moveTo(next);
    }
    return problem(here(), trf("the text ends inside <%s>", std::string(name)));
}

std::optional<XmlProblem> XmlScanner::addValue(TextPosition where, Node node) {
    if (stack_.empty()) {
        if (root_ != XmlPositions::kNone) return problem(where, tr("a second value after the root value"));
        root_ = node;
        return std::nullopt;
    }
    Frame& parent = stack_.back();
    if (parent.name == "plist") {
        if (!parent.items.empty()) return problem(where, tr("<plist> holds more than one value"));
    } else if (parent.name == "dict") {
        if (!parent.hasKey) return problem(where, tr("a value without a <key> before it in <dict>"));
        XmlPositions::Element& e = out_.elements_[node];
        e.keyOffset = parent.keyOffset;
        // A key written as plain text is found again in the text; one with references is kept.
        if (t_.compare(parent.keyBegin, parent.key.size(), parent.key) == 0 &&
            t_.compare(parent.keyBegin + parent.key.size(), 5, "</key") == 0) {
            e.keyBegin = parent.keyBegin;
            e.keyLength = static_cast<std::uint32_t>(parent.key.size());
        } else {
            out_.decodedKeys_[node] = std::move(parent.key);
        }
        parent.key.clear();
        parent.hasKey = false;
    } else if (parent.name != "array") {
        return problem(where, trf("a value inside <%s>", std::string(parent.name)));
    }
    parent.items.push_back(node);
    return std::nullopt;
}

std::optional<XmlProblem> XmlScanner::openElement(TextPosition where, std::size_t offset, std::string_view name,
                                                  bool empty) {
    if (name == "plist") {
        if (!stack_.empty() || root_ != XmlPositions::kNone) return problem(where, tr("<plist> inside another element"));
        if (!empty) {
            stack_.push_back(Frame{});
            stack_.back().name = name;
            stack_.back().at = where;
        }
        return std::nullopt;
    }
    if (name == "key") {
        if (stack_.empty() || stack_.back().name != "dict") return problem(where, tr("<key> outside a <dict>"));
        if (stack_.back().hasKey)
            return problem(where, trf("two keys in a row in <dict>: the key \"%s\" has no value", stack_.back().key));
        const std::size_t keyBegin = pos_;
        std::string key;
        if (!empty)
            if (auto p = readContent(name, &key)) return p;
        Frame& dict = stack_.back();
        dict.hasKey = true;
        dict.key = std::move(key);
        dict.keyOffset = static_cast<std::uint32_t>(offset);
        dict.keyBegin = static_cast<std::uint32_t>(empty ? offset : keyBegin);
        return std::nullopt;
    }
    if (!isValueElement(name)) return problem(where, trf("an unknown element <%s>", std::string(name)));
    const Node node = newElement(offset);
    if (name == "dict" || name == "array") {
        if (empty) return addValue(where, node);
        if (static_cast<int>(stack_.size()) > kMaxXmlDepth)
            return problem(where, trf("nested more than %s levels deep", std::to_string(kMaxXmlDepth)));
        stack_.push_back(Frame{});
        stack_.back().name = name;
        stack_.back().node = node;
        stack_.back().at = where;
        return std::nullopt;
    }
    if (!empty) {
        const bool flag = name == "true" || name == "false";
        std::string content;
        if (auto p = readContent(name, flag ? &content : nullptr)) return p;
        if (flag && content.find_first_not_of(" \t\r\n") != std::string::npos)
            return problem(where, trf("<%s> holds text", std::string(name)));
    }
    return addValue(where, node);
}

std::optional<XmlProblem> XmlScanner::closeElement(TextPosition where, std::string_view name) {
    if (stack_.empty()) return problem(where, trf("the end tag </%s> closes nothing", std::string(name)));
    if (stack_.back().name != name)
        return problem(where, trf("the end tag </%s> where </%s> closes %s", std::string(name),
                                  std::string(stack_.back().name), describe(stack_.back())));
    Frame frame = std::move(stack_.back());
    stack_.pop_back();
    if (frame.hasKey)
        return problem(out_.positionOf(frame.keyOffset), trf("the key \"%s\" has no value before </dict>", frame.key));
    if (frame.name == "plist") {
        if (frame.items.empty()) return problem(where, tr("<plist> holds no value"));
        root_ = frame.items.front();
        return std::nullopt;
    }
    XmlPositions::Element& e = out_.elements_[frame.node];
    e.firstChild = static_cast<std::uint32_t>(out_.children_.size());
    e.childCount = static_cast<std::uint32_t>(frame.items.size());
    out_.children_.insert(out_.children_.end(), frame.items.begin(), frame.items.end());
    return addValue(frame.at, frame.node);
}

std::variant<XmlPositions, XmlProblem> XmlScanner::run() {
    out_.lineStarts_.push_back(0);
    if (at("\xEF\xBB\xBF")) pos_ = lineStart_ = out_.lineStarts_.front() = 3;
    while (pos_ < t_.size()) {
        const char c = t_[pos_];
        if (isSpace(c)) {
            moveTo(pos_ + 1);
            continue;
        }
        const TextPosition where = here();
        const std::size_t offset = pos_;
        if (c != '<') return problem(where, tr("text where an element is expected"));
        if (at("<?")) {
            if (!skipPast("?>")) return problem(where, tr("a processing instruction is never closed"));
            continue;
        }
        if (at("<!--")) {
            if (!skipPast("-->")) return problem(where, tr("a comment is never closed"));
            continue;
        }
        if (at("<!")) {
            if (!skipPast(">")) return problem(where, tr("a declaration is never closed"));
            continue;
        }
        const bool closing = at("</");
        moveTo(pos_ + (closing ? 2 : 1));
        const std::size_t nameStart = pos_;
        while (pos_ < t_.size() && !isSpace(t_[pos_]) && t_[pos_] != '>' && t_[pos_] != '/' && t_[pos_] != '<')
            moveTo(pos_ + 1);
        const std::string_view name = std::string_view(t_).substr(nameStart, pos_ - nameStart);
        if (name.empty()) return problem(where, tr("a '<' that starts no element"));
        // Attributes are skipped; a quoted value may hold '>'.
        char quote = 0;
        while (pos_ < t_.size() && (quote || (t_[pos_] != '>' && t_[pos_] != '<'))) {
            if (quote && t_[pos_] == quote) quote = 0;
            else if (!quote && (t_[pos_] == '"' || t_[pos_] == '\'')) quote = t_[pos_];
            moveTo(pos_ + 1);
        }
        if (pos_ >= t_.size() || t_[pos_] != '>')
            return problem(where, trf("the tag <%s is not closed with '>'", std::string(name)));
        const bool empty = t_[pos_ - 1] == '/';
        moveTo(pos_ + 1);
        std::optional<XmlProblem> p = closing ? closeElement(where, name) : openElement(where, offset, name, empty);
        if (p) return *p;
    }
    if (!stack_.empty()) return problem(here(), trf("the text ends before the end tag of %s", describe(stack_.back())));
    if (root_ == XmlPositions::kNone) return problem(here(), tr("no property-list value in the text"));
    // Values are numbered as they open, so the root value is the first.
    return std::move(out_);
}

std::variant<XmlPositions, XmlProblem> scanXmlPositions(const std::string& text) { return XmlScanner(text).run(); }

}  // namespace tolvar::checker
