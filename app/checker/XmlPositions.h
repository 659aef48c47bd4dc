// Where each value of an XML property list stands in its text: the offset of every element and
// of every dictionary key, indexed like the values, with the line and column worked out from the
// offset when asked. The property-list reader knows no lines; this scanner finds them, and says
// where the text stops being well formed. A few numbers are kept per element, so the index stays
// a small part of the text's size.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace tolvar::checker {

struct TextPosition {
    int line = 0;    // 1-based; 0 when unknown
    int column = 0;  // 1-based, in bytes
};

// The value elements of one text. It refers to the text, which must outlive it.
class XmlPositions {
public:
    using Node = std::uint32_t;  // a value element, numbered in the order they open
    static constexpr Node kNone = ~Node{0};

    Node root() const { return elements_.empty() ? kNone : 0; }
    // The element's '<'.
    TextPosition at(Node node) const;
    // A dictionary's values pair with its keys; an array's items have none.
    std::size_t itemCount(Node node) const;
    Node item(Node node, std::size_t i) const;
    // True when the key before the i-th value of a dictionary is key.
    bool keyIs(Node node, std::size_t i, std::string_view key) const;
    // The value under key (the last one when a key is repeated), or kNone; where the key stands.
    Node valueOf(Node node, std::string_view key, TextPosition* keyPosition = nullptr) const;

private:
    friend class XmlScanner;
    static constexpr std::uint32_t kNoOffset = ~std::uint32_t{0};
    struct Element {
        std::uint32_t offset = 0;               // the element's '<'
        std::uint32_t keyOffset = kNoOffset;    // the '<key>' naming it, inside a dictionary
        std::uint32_t keyBegin = 0;             // the key's text, when written without references
        std::uint32_t keyLength = kNoOffset;    // kNoOffset: the key is in decodedKeys_
        std::uint32_t firstChild = 0;           // its items: children_[firstChild ...]
        std::uint32_t childCount = 0;
    };
    TextPosition positionOf(std::uint32_t offset) const;
    std::string_view keyOf(Node node) const;

    std::string_view text_;
    std::vector<Element> elements_;
    std::vector<Node> children_;
    std::vector<std::uint32_t> lineStarts_;  // the offset of each line's first byte
    std::unordered_map<Node, std::string> decodedKeys_;  // keys with references or CDATA
};

struct XmlProblem {
    TextPosition at;
    std::string message;
};

// Nesting deeper than this is refused, as the property-list reader refuses it.
inline constexpr int kMaxXmlDepth = 256;

// The value elements under <plist> (or the document's root value), or where and why the text is
// not a well-formed property list. Never recurses on the input's nesting.
std::variant<XmlPositions, XmlProblem> scanXmlPositions(const std::string& text);

}  // namespace tolvar::checker
