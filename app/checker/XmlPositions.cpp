#include "checker/XmlPositions.h"

#include "platform/Utf8.h"

#include <cstring>
#include <optional>

namespace tolvar::checker {

const XmlNode* XmlNode::valueOf(const std::string& key, TextPosition* keyPosition) const {
    for (std::size_t i = keys.size(); i-- > 0;) {
        if (keys[i] != key || i >= items.size()) continue;
        if (keyPosition) *keyPosition = keyAt[i];
        return &items[i];
    }
    return nullptr;
}

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool isValueElement(const std::string& name) {
    static const char* const kNames[] = {"dict", "array", "string", "integer", "real",
                                         "date", "data",  "true",   "false"};
    for (const char* n : kNames)
        if (name == n) return true;
    return false;
}

class Scanner {
public:
    explicit Scanner(const std::string& text) : t_(text) {}

    std::variant<XmlNode, XmlProblem> run();

private:
    struct Frame {
        std::string name;
        XmlNode node;
        bool hasKey = false;  // a dictionary's key waits for its value
        std::string key;
        TextPosition keyAt;
    };

    TextPosition here() const { return {line_, static_cast<int>(pos_ - lineStart_) + 1}; }
    void moveTo(std::size_t to) {
        to = std::min(to, t_.size());
        for (; pos_ < to; ++pos_)
            if (t_[pos_] == '\n') {
                ++line_;
                lineStart_ = pos_ + 1;
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
        return "<" + f.name + "> opened at line " + std::to_string(f.node.at.line) + ", column " +
               std::to_string(f.node.at.column);
    }

    // The text of a leaf element up to its end tag, with references and CDATA resolved.
    std::optional<XmlProblem> readContent(const std::string& name, std::string& out);
    std::optional<XmlProblem> openElement(TextPosition where, const std::string& name, bool empty);
    std::optional<XmlProblem> closeElement(TextPosition where, const std::string& name);
    std::optional<XmlProblem> addValue(TextPosition where, XmlNode node);

    const std::string& t_;
    std::size_t pos_ = 0;
    int line_ = 1;
    std::size_t lineStart_ = 0;
    std::vector<Frame> stack_;
    std::optional<XmlNode> root_;
};

std::optional<XmlProblem> Scanner::readContent(const std::string& name, std::string& out) {
    const std::string endTag = "</" + name;
    while (pos_ < t_.size()) {
        const char c = t_[pos_];
        if (c == '<') {
            if (at("<![CDATA[")) {
                const std::size_t start = pos_ + 9;
                const TextPosition opened = here();
                if (!skipPast("]]>")) return problem(opened, "a CDATA section is never closed");
                out.append(t_, start, pos_ - 3 - start);
                continue;
            }
            if (at("<!--")) {
                const TextPosition opened = here();
                if (!skipPast("-->")) return problem(opened, "a comment is never closed");
                continue;
            }
            if (at(endTag.c_str())) {
                const TextPosition where = here();
                moveTo(pos_ + endTag.size());
                while (pos_ < t_.size() && isSpace(t_[pos_])) moveTo(pos_ + 1);
                if (pos_ >= t_.size() || t_[pos_] != '>')
                    return problem(where, "the end tag </" + name + "> is not closed with '>'");
                moveTo(pos_ + 1);
                return std::nullopt;
            }
            return problem(here(), "an element inside <" + name + ">, which holds only text");
        }
        if (c == '&') {
            const std::size_t semi = t_.find(';', pos_);
            if (semi == std::string::npos || semi - pos_ > 12)
                return problem(here(), "an '&' that starts no character reference");
            const std::string ref = t_.substr(pos_ + 1, semi - pos_ - 1);
            if (ref == "lt") out += '<';
            else if (ref == "gt") out += '>';
            else if (ref == "amp") out += '&';
            else if (ref == "quot") out += '"';
            else if (ref == "apos") out += '\'';
            else if (ref.size() > 1 && ref[0] == '#') {
                const bool hex = ref[1] == 'x' || ref[1] == 'X';
                const std::string digits = ref.substr(hex ? 2 : 1);
                if (digits.empty() || digits.find_first_not_of(hex ? "0123456789abcdefABCDEF" : "0123456789") !=
                                          std::string::npos)
                    return problem(here(), "the character reference &" + ref + "; is not a number");
                out += utf8(static_cast<char32_t>(std::stoul(digits, nullptr, hex ? 16 : 10) & 0x1FFFFF));
            } else {
                return problem(here(), "an unknown entity &" + ref + ";");
            }
            moveTo(semi + 1);
            continue;
        }
        out += c;
        moveTo(pos_ + 1);
    }
    return problem(here(), "the text ends inside <" + name + ">");
}

std::optional<XmlProblem> Scanner::addValue(TextPosition where, XmlNode node) {
    if (stack_.empty()) {
        if (root_) return problem(where, "a second value after the root value");
        root_ = std::move(node);
        return std::nullopt;
    }
    Frame& parent = stack_.back();
    if (parent.name == "plist") {
        if (!parent.node.items.empty()) return problem(where, "<plist> holds more than one value");
    } else if (parent.name == "dict") {
        if (!parent.hasKey) return problem(where, "a value without a <key> before it in <dict>");
        parent.node.keys.push_back(std::move(parent.key));
        parent.node.keyAt.push_back(parent.keyAt);
        parent.hasKey = false;
    } else if (parent.name != "array") {
        return problem(where, "a value inside <" + parent.name + ">");
    }
    parent.node.items.push_back(std::move(node));
    return std::nullopt;
}

std::optional<XmlProblem> Scanner::openElement(TextPosition where, const std::string& name, bool empty) {
    if (name == "plist") {
        if (!stack_.empty() || root_) return problem(where, "<plist> inside another element");
        if (!empty) stack_.push_back(Frame{name, XmlNode{where, {}, {}, {}}, false, {}, {}});
        return std::nullopt;
    }
    if (name == "key") {
        if (stack_.empty() || stack_.back().name != "dict") return problem(where, "<key> outside a <dict>");
        if (stack_.back().hasKey)
            return problem(where, "two keys in a row in <dict>: the key \"" + stack_.back().key + "\" has no value");
        std::string key;
        if (!empty)
            if (auto p = readContent(name, key)) return p;
        Frame& dict = stack_.back();
        dict.hasKey = true;
        dict.key = std::move(key);
        dict.keyAt = where;
        return std::nullopt;
    }
    if (!isValueElement(name)) return problem(where, "an unknown element <" + name + ">");
    XmlNode node{where, {}, {}, {}};
    if (name == "dict" || name == "array") {
        if (empty) return addValue(where, std::move(node));
        if (static_cast<int>(stack_.size()) > kMaxXmlDepth)
            return problem(where, "nested more than " + std::to_string(kMaxXmlDepth) + " levels deep");
        stack_.push_back(Frame{name, std::move(node), false, {}, {}});
        return std::nullopt;
    }
    if (!empty) {
        std::string content;
        if (auto p = readContent(name, content)) return p;
        if ((name == "true" || name == "false") && content.find_first_not_of(" \t\r\n") != std::string::npos)
            return problem(where, "<" + name + "> holds text");
    }
    return addValue(where, std::move(node));
}

std::optional<XmlProblem> Scanner::closeElement(TextPosition where, const std::string& name) {
    if (stack_.empty()) return problem(where, "the end tag </" + name + "> closes nothing");
    if (stack_.back().name != name)
        return problem(where, "the end tag </" + name + "> where </" + stack_.back().name + "> closes " +
                                  describe(stack_.back()));
    Frame frame = std::move(stack_.back());
    stack_.pop_back();
    if (frame.hasKey)
        return problem(frame.keyAt, "the key \"" + frame.key + "\" has no value before </dict>");
    if (frame.name == "plist") {
        if (frame.node.items.empty()) return problem(where, "<plist> holds no value");
        root_ = std::move(frame.node.items.front());
        return std::nullopt;
    }
    return addValue(frame.node.at, std::move(frame.node));
}

std::variant<XmlNode, XmlProblem> Scanner::run() {
    if (at("\xEF\xBB\xBF")) pos_ = lineStart_ = 3;
    while (pos_ < t_.size()) {
        const char c = t_[pos_];
        if (isSpace(c)) {
            moveTo(pos_ + 1);
            continue;
        }
        const TextPosition where = here();
        if (c != '<') return problem(where, "text where an element is expected");
        if (at("<?")) {
            if (!skipPast("?>")) return problem(where, "a processing instruction is never closed");
            continue;
        }
        if (at("<!--")) {
            if (!skipPast("-->")) return problem(where, "a comment is never closed");
            continue;
        }
        if (at("<!")) {
            if (!skipPast(">")) return problem(where, "a declaration is never closed");
            continue;
        }
        const bool closing = at("</");
        moveTo(pos_ + (closing ? 2 : 1));
        const std::size_t nameStart = pos_;
        while (pos_ < t_.size() && !isSpace(t_[pos_]) && t_[pos_] != '>' && t_[pos_] != '/' && t_[pos_] != '<')
            moveTo(pos_ + 1);
        const std::string name = t_.substr(nameStart, pos_ - nameStart);
        if (name.empty()) return problem(where, "a '<' that starts no element");
        // Attributes are skipped; a quoted value may hold '>'.
        char quote = 0;
        while (pos_ < t_.size() && (quote || (t_[pos_] != '>' && t_[pos_] != '<'))) {
            if (quote && t_[pos_] == quote) quote = 0;
            else if (!quote && (t_[pos_] == '"' || t_[pos_] == '\'')) quote = t_[pos_];
            moveTo(pos_ + 1);
        }
        if (pos_ >= t_.size() || t_[pos_] != '>') return problem(where, "the tag <" + name + " is not closed with '>'");
        const bool empty = t_[pos_ - 1] == '/';
        moveTo(pos_ + 1);
        std::optional<XmlProblem> p = closing ? closeElement(where, name) : openElement(where, name, empty);
        if (p) return *p;
    }
    if (!stack_.empty()) return problem(here(), "the text ends before the end tag of " + describe(stack_.back()));
    if (!root_) return problem(here(), "no property-list value in the text");
    return std::move(*root_);
}

}  // namespace

std::variant<XmlNode, XmlProblem> scanXmlPositions(const std::string& text) { return Scanner(text).run(); }

}  // namespace tolvar::checker
