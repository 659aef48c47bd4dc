// Where each value of an XML property list stands in its text: the line and column of every
// element and of every dictionary key, in a tree shaped like the values. The property-list reader
// knows no lines; this scanner finds them, and says where the text stops being well formed.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace tolvar::checker {

struct TextPosition {
    int line = 0;    // 1-based; 0 when unknown
    int column = 0;  // 1-based, in bytes
};

// One value element. A dictionary's items pair with its keys; an array's items have no keys.
struct XmlNode {
    TextPosition at;  // the element's '<'
    std::vector<std::string> keys;
    std::vector<TextPosition> keyAt;  // each key's '<key>'
    std::vector<XmlNode> items;

    // The value under key (the last one when a key is repeated), or nullptr; where the key stands.
    const XmlNode* valueOf(const std::string& key, TextPosition* keyPosition = nullptr) const;
};

struct XmlProblem {
    TextPosition at;
    std::string message;
};

// Nesting deeper than this is refused, as the property-list reader refuses it.
inline constexpr int kMaxXmlDepth = 256;

// The root value under <plist> (or the document's root value), or where and why the text is not a
// well-formed property list. Never recurses on the input's nesting.
std::variant<XmlNode, XmlProblem> scanXmlPositions(const std::string& text);

}  // namespace tolvar::checker
