#include "rules/RulesDict.h"

#include <cstdio>

#include "rules/RulesKeys.h"

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

std::unique_ptr<GameAction> makeAction(const Dictionary& dict, const GameOutput& out) {
    auto action = std::make_unique<GameAction>();
    action->actionID = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kActionID, 0));
    action->actionType = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kActionType, 0));
    action->actionCriteria = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kActionCriteria, 0));
    action->minPieces = readNumberOr(dict, rulekeys::kMinPieces, 0);
    action->removePieces = readNumberOr(dict, rulekeys::kRemovePieces, 0);
    if (dict.find(rulekeys::kAmount)) {
        out.print("setting action to amount.\n");
        action->amount = readNumberOr(dict, rulekeys::kAmount, 0);
    }
    if (dict.find(rulekeys::kLowerIsBetter)) {
        out.print("setting lower is better.\n");
        action->lowerIsBetter = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kLowerIsBetter, 0));
    }
    if (dict.find(rulekeys::kDirection)) action->direction = readNumberOr(dict, rulekeys::kDirection, 0);
    if (const std::string* message = readString(dict, rulekeys::kMessage)) action->message = *message;
    if (const std::string* sound = readString(dict, rulekeys::kSound)) action->sound = *sound;
    if (dict.find(rulekeys::kVariableID))
        action->variableID = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kVariableID, 0));
    return action;
}

void readEvents(const Array& entries, GameInfo& info, const GameOutput& out) {
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto event = std::make_unique<SupportedEvent>();
        event->eventID = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kEventID, 0));
        event->eventType = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kEventType, 0));
        if (const Array* actionList = readArray(dict, rulekeys::kActionList)) {
            std::unique_ptr<GameAction> head;
            for (const Value& actionEntry : *actionList) {
                auto action = makeAction(asDictionaryOrEmpty(actionEntry), out);
                out.print("Adding action %d to event %d\n", static_cast<int>(action->actionID),
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

void readUserEvents(const Array& entries, GameInfo& info, ActionsMenu& menu, const GameOutput& out) {
    int counter = 0;
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto userEvent = std::make_unique<SupportedUserEvent>();
        userEvent->userEventID = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kUserEventID, 0));
        userEvent->userEventType = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kUserEventType, 0));
        if (const Value* trigger = dict.find(rulekeys::kUserEventTriggerAction))
            userEvent->triggerAction = makeAction(asDictionaryOrEmpty(*trigger), out);
        // The key is read as a signed 8-bit character: only the low 8 bits count.
        const auto character = static_cast<std::int8_t>(low8(readNumberOr(dict, rulekeys::kUserEventCharacter, 0)));
        if (character != 0) {
            userEvent->userEventCharacter = character;
            ++counter;
            menu.bindUserEvent(counter, userEvent->userEventType, character);
        }
        const std::int32_t minimum = readNumberOr(dict, rulekeys::kMinimumPieces, 0);
        if (minimum != 0) userEvent->minimumPieces = static_cast<std::uint32_t>(minimum);
        userEvent->next = std::move(info.userEvents);
        info.userEvents = std::move(userEvent);
    }
}

void readCompletionCriteria(const Array& entries, GameInfo& info) {
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto criterion = std::make_unique<CompletionCriterion>();
        criterion->completionID = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kCompletionID, 0));
        criterion->completionType = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kCompletionType, 0));
        criterion->completionValue = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kCompletionValue, 0));
        criterion->next = std::move(info.completionCriteria);
        info.completionCriteria = std::move(criterion);
    }
}

void readVariables(const Array& entries, GameInfo& info) {
    for (const Value& entry : entries) {
        const Dictionary& dict = asDictionaryOrEmpty(entry);
        auto variable = std::make_unique<GameVariable>();
        variable->variableID = static_cast<std::uint32_t>(readNumberOr(dict, rulekeys::kVariableID, 0));
        // Sign-extended: a value of -1 starts with every bit set.
        variable->variableValue =
            static_cast<std::uint64_t>(static_cast<std::int64_t>(readNumberOr(dict, rulekeys::kVariableValue, 0)));
        variable->next = std::move(info.variables);
        info.variables = std::move(variable);
    }
}

}  // namespace

void readGameSettings(const Dictionary& rules, GameInfo& info) {
    for (const rulekeys::Key& key : rulekeys::kGameKeys)
        if (key.field) info.*key.field = low8(readNumberOr(rules, key.name, key.fallback));
    info.scoreMultiplier = static_cast<std::uint64_t>(
        static_cast<std::int64_t>(readNumberOr(rules, rulekeys::kScoreMultiplier, 1)));
}

std::unique_ptr<GameInfo> createStructsFromRulesDict(const Value* rulesDict, ActionsMenu& menu, const GameOutput& out) {
    if (!rulesDict || !rulesDict->isDictionary()) return nullptr;
    const Dictionary& rules = *rulesDict->asDictionary();
    auto info = std::make_unique<GameInfo>();
    readGameSettings(rules, *info);
    const std::string* name = readString(rules, rulekeys::kGameName);
    info->gameName = name ? *name : std::string("Unknown");
    const std::string* description = readString(rules, rulekeys::kGameDescription);
    info->descriptionText = description ? *description : std::string("Unknown");

    if (const Array* events = readArray(rules, rulekeys::kSupportedEvents)) readEvents(*events, *info, out);
    if (const Array* userEvents = readArray(rules, rulekeys::kSupportedUserEvents))
        readUserEvents(*userEvents, *info, menu, out);
    if (const Array* criteria = readArray(rules, rulekeys::kCompletionCriteria))
        readCompletionCriteria(*criteria, *info);
    if (const Array* variables = readArray(rules, rulekeys::kVariableList)) readVariables(*variables, *info);
    return info;
}

}  // namespace tolvar
