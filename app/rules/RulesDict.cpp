#include "rules/RulesDict.h"

#include <cstdio>

namespace tolvar {

namespace {

// A dictionary entry of the expected kind, or nothing. Entries of another kind count as absent;
// an array entry that is not a dictionary reads as an empty dictionary (every key absent).
const Dictionary kEmptyDictionary;

const Dictionary& asDictionaryOrEmpty(const Value& value) {
    const Dictionary* d = value.asDictionary();
    return d ? *d : kEmptyDictionary;
}

// A number key read with the rules' number reading; absent keys and keys whose value has no
// number give nothing.
std::optional<std::int32_t> readNumber(const Dictionary& dict, const char* key) {
    const Value* v = dict.find(key);
    if (!v) return std::nullopt;
    return v->intValue();
}

std::int32_t readNumberOr(const Dictionary& dict, const char* key, std::int32_t fallback) {
    return readNumber(dict, key).value_or(fallback);
}

std::uint8_t low8(std::int32_t v) { return static_cast<std::uint8_t>(static_cast<std::uint32_t>(v) & 0xffu); }

const std::string* readString(const Dictionary& dict, const char* key) {
    const Value* v = dict.find(key);
    return v ? v->asString() : nullptr;
}

const Array* readArray(const Dictionary& dict, const char* key) {
    const Value* v = dict.find(key);
    return v ? v->asArray() : nullptr;
}

std::unique_ptr<GameAction> makeAction(const Dictionary& dict) {
    auto action = std::make_unique<GameAction>();
    action->actionID = static_cast<std::uint32_t>(readNumberOr(dict, "ActionID", 0));
    action->actionType = static_cast<std::uint32_t>(readNumberOr(dict, "ActionType", 0));
    action->actionCriteria = static_cast<std::uint32_t>(readNumberOr(dict, "ActionCriteria", 0));
    action->minPieces = readNumberOr(dict, "MinPieces", 0);
    action->removePieces = readNumberOr(dict, "RemovePieces", 0);
    if (dict.find("Amount")) {
        printf("setting action to amount.\n");
        action->amount = readNumberOr(dict, "Amount", 0);
    }
    if (dict.find("LowerIsBetter")) {
        printf("setting lower is better.\n");
        action->lowerIsBetter = static_cast<std::uint32_t>(readNumberOr(dict, "LowerIsBetter", 0));
    }
    if (dict.find("Direction")) action->direction = readNumberOr(dict, "Direction", 0);
    if (const std::string* message = readString(dict, "Message")) action->message = *message;
    if (dict.find("VariableID"))
        action->variableID = static_cast<std::uint32_t>(readNumberOr(dict, "VariableID", 0));
    return action;
}

void readEvents(const Array& entries, GameInfo& info) {
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto event = std::make_unique<SupportedEvent>();
        event->eventID = static_cast<std::uint32_t>(readNumberOr(dict, "EventID", 0));
        event->eventType = static_cast<std::uint32_t>(readNumberOr(dict, "EventType", 0));
        if (const Array* actionList = readArray(dict, "ActionList")) {
            std::unique_ptr<GameAction> head;
            for (const Value& actionEntry : *actionList) {
                auto action = makeAction(asDictionaryOrEmpty(actionEntry));
                printf("Adding action %d to event %d\n", static_cast<int>(action->actionID),
                       static_cast<int>(event->eventID));
                action->next = std::move(head);
                head = std::move(action);
            }
            event->actions = std::move(head);
        }
        event->next = std::move(info.events);
        info.events = std::move(event);
    }
}

void readUserEvents(const Array& entries, GameInfo& info, ActionsMenu& menu) {
    int counter = 0;
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto userEvent = std::make_unique<SupportedUserEvent>();
        userEvent->userEventID = static_cast<std::uint32_t>(readNumberOr(dict, "UserEventID", 0));
        userEvent->userEventType = static_cast<std::uint32_t>(readNumberOr(dict, "UserEventType", 0));
        if (const Value* trigger = dict.find("UserEventTriggerAction"))
            userEvent->triggerAction = makeAction(asDictionaryOrEmpty(*trigger));
        // The key is read as a signed 8-bit character: only the low 8 bits count.
        const auto character = static_cast<std::int8_t>(low8(readNumberOr(dict, "UserEventCharacter", 0)));
        if (character != 0) {
            userEvent->userEventCharacter = character;
            ++counter;
            menu.bindUserEvent(counter, userEvent->userEventType, character);
        }
        const std::int32_t minimum = readNumberOr(dict, "MinimumPieces", 0);
        if (minimum != 0) userEvent->minimumPieces = static_cast<std::uint32_t>(minimum);
        userEvent->next = std::move(info.userEvents);
        info.userEvents = std::move(userEvent);
    }
}

void readCompletionCriteria(const Array& entries, GameInfo& info) {
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto criterion = std::make_unique<CompletionCriterion>();
        criterion->completionID = static_cast<std::uint32_t>(readNumberOr(dict, "CompletionID", 0));
        criterion->completionType = static_cast<std::uint32_t>(readNumberOr(dict, "CompletionType", 0));
        criterion->completionValue = static_cast<std::uint32_t>(readNumberOr(dict, "CompletionValue", 0));
        criterion->next = std::move(info.completionCriteria);
        info.completionCriteria = std::move(criterion);
    }
}

void readVariables(const Array& entries, GameInfo& info) {
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto variable = std::make_unique<GameVariable>();
        variable->variableID = static_cast<std::uint32_t>(readNumberOr(dict, "VariableID", 0));
        // Sign-extended: a value of -1 starts with every bit set.
        variable->variableValue =
            static_cast<std::uint64_t>(static_cast<std::int64_t>(readNumberOr(dict, "VariableValue", 0)));
        variable->next = std::move(info.variables);
        info.variables = std::move(variable);
    }
}

}  // namespace

std::unique_ptr<GameInfo> createStructsFromRulesDict(const Value* rulesDict, ActionsMenu& menu) {
    if (!rulesDict || !rulesDict->isDictionary()) return nullptr;
    const Dictionary& rules = *rulesDict->asDictionary();
    auto info = std::make_unique<GameInfo>();

    info->boardWidth = low8(readNumberOr(rules, "BoardWidth", 5));
    info->boardHeight = low8(readNumberOr(rules, "BoardHeight", 5));
    info->hasLauncher = low8(readNumberOr(rules, "HasLauncher", 0));
    info->scoreMultiplier =
        static_cast<std::uint64_t>(static_cast<std::int64_t>(readNumberOr(rules, "ScoreMultiplier", 1)));
    info->numShapes = low8(readNumberOr(rules, "NumShapes", 1));
    info->numColors = low8(readNumberOr(rules, "NumColors", 4));
    info->setupRandomFill = low8(readNumberOr(rules, "SetupRandomFill", 0));
    info->setupMaxLinearColors = low8(readNumberOr(rules, "SetupMaxLinearColors", 0));
    info->setupMaxLinearShapes = low8(readNumberOr(rules, "SetupMaxLinearShapes", 0));
    info->squareShapes = low8(readNumberOr(rules, "SquareShapes", 0));
    info->colorsMatchShapes = low8(readNumberOr(rules, "ColorsMatchShapes", 0));
    info->holesAllowed = low8(readNumberOr(rules, "HolesAllowed", 0));
    const std::string* name = readString(rules, "GameName");
    info->gameName = name ? *name : std::string("Unknown");
    const std::string* description = readString(rules, "GameDescription");
    info->descriptionText = description ? *description : std::string("Unknown");

    if (const Array* events = readArray(rules, "SupportedEvents")) readEvents(*events, *info);
    if (const Array* userEvents = readArray(rules, "SupportedUserEvents"))
        readUserEvents(*userEvents, *info, menu);
    if (const Array* criteria = readArray(rules, "CompletionCriteria"))
        readCompletionCriteria(*criteria, *info);
    if (const Array* variables = readArray(rules, "VariableList")) readVariables(*variables, *info);
    return info;
}

}  // namespace tolvar
