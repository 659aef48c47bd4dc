// A value of a rules file together with where it stands, and the list the checker's findings go
// to. Shared by the key checks and the game checks.
#pragma once

#include <string>
#include <vector>

#include "checker/RulesChecker.h"
#include "rules/RulesKeys.h"

namespace tolvar::checker {

struct Located {
    const Value* value = nullptr;
    const XmlPositions* positions = nullptr;  // nullptr when the text's positions are unknown
    XmlPositions::Node node = XmlPositions::kNone;  // its element, when known
    std::string path;
    TextPosition at;  // the value's element
    TextPosition keyAt;  // the key naming it, when it stands under a key
    std::string key;  // that key

    const Dictionary* dict() const { return value ? value->asDictionary() : nullptr; }
    const Array* array() const { return value ? value->asArray() : nullptr; }
    // The value under key of this dictionary (its value is nullptr when absent).
    Located field(const std::string& name) const;
    // Entry i of this array.
    Located item(std::size_t i) const;
};

class Reporter {
public:
    Reporter(std::string game, std::vector<Problem>& problems) : game_(std::move(game)), problems_(problems) {}

    // A finding about the value at where (at its key when onKey), named by key.
    void add(Severity severity, const Located& where, const std::string& key, const std::string& message,
             bool onKey = false);
    const std::string& game() const { return game_; }

private:
    std::string game_;
    std::vector<Problem>& problems_;
};

// "an integer", "a string", "an array", ... for a message.
std::string kindName(const Value& value);

// Unknown keys (with the nearest known one) and values of the wrong kind or that the engine would
// wrap or cut, for one dictionary of the given level.
void checkKeys(const Located& dict, const rulekeys::Level& level, Reporter& report);

}  // namespace tolvar::checker
