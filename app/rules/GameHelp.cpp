#include "rules/GameHelp.h"

#include <string_view>

#include "core/Translate.h"
#include "rules/ActionsMenu.h"
#include "rules/GameInfo.h"
#include "rules/ShownText.h"

namespace tolvar {

namespace {
std::int32_t numberOr(const Dictionary& dict, const char* key, std::int32_t fallback) {
    const Value* v = dict.find(key);
    return v ? v->intValue().value_or(fallback) : fallback;
}

std::string_view stringOr(const Dictionary& dict, const char* key) {
    const Value* v = dict.find(key);
    const std::string* s = v ? v->asString() : nullptr;
    return s ? std::string_view(*s) : std::string_view();
}
}  // namespace

std::string inputHelpLine(std::uint32_t userEventType, std::int8_t character, std::int32_t minimumPieces) {
    if (character != 0) {
        const char* title = ActionsMenu::titleForUserEventType(userEventType);
        return keyEquivalentLabel(character) + ": " + (title ? title : tr("Action"));
    }
    switch (userEventType) {
        case kUserEventSelectColorRegion:
            if (minimumPieces > 1) return trf("Click a region of %s or more", std::to_string(minimumPieces));
            return tr("Click a piece to select its region");
        case kUserEventSwapAdjacent: return tr("Drag a piece onto a neighbour");
        default: return {};
    }
}

GameHelp gameHelp(const Value* rules) {
    GameHelp help;
    const Dictionary* dict = rules ? rules->asDictionary() : nullptr;
    if (!dict) return help;
    help.title = shownLine(stringOr(*dict, "GameName"), kShownNameCharacters);
    help.description = shownDescription(stringOr(*dict, "GameDescription"));
    const Value* userEvents = dict->find("SupportedUserEvents");
    const Array* entries = userEvents ? userEvents->asArray() : nullptr;
    if (!entries) return help;
    for (const Value& entry : *entries) {
        const Dictionary* input = entry.asDictionary();
        if (!input) continue;
        // Keys are read as the game reads them: a signed 8-bit character, only the low 8 bits count.
        const auto character = static_cast<std::int8_t>(numberOr(*input, "UserEventCharacter", 0) & 0xff);
        std::string line = inputHelpLine(static_cast<std::uint32_t>(numberOr(*input, "UserEventType", 0)), character,
                                         numberOr(*input, "MinimumPieces", 0));
        if (line.empty()) continue;
        if (help.inputs.size() == kShownInputs) {
            help.inputs.push_back(tr("\xE2\x80\xA6 and more inputs"));
            break;
        }
        help.inputs.push_back(std::move(line));
    }
    return help;
}

}  // namespace tolvar
