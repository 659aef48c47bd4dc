// The keys of a rules dictionary, at every level, with the kind of value each one is read as and
// the value it takes when absent. The reader builds games from these tables and the rules
// checker judges files by them, so the two always agree on what a key means.
#pragma once

#include <cstdint>
#include <span>

#include "core/Translate.h"
#include "rules/GameInfo.h"

namespace tolvar::rulekeys {

// How a key's value is read.
enum class Kind {
    Number,     // a 32-bit number (integer, real, boolean or string of digits)
    Byte,       // a number of which only the low 8 bits are kept (0 to 255)
    Character,  // a number kept as one signed character (-128 to 127; 0 is no key)
    String,
    Array,
    Dictionary,
};

struct Key {
    const char* name;
    Kind kind;
    std::int32_t fallback;  // the value when absent (numbers only)
    std::uint8_t GameInfo::*field = nullptr;  // the game's byte field the key fills, if any
};

// The rules dictionary of a game.
inline constexpr const char* kGameName = "GameName";
inline constexpr const char* kGameDescription = "GameDescription";
inline constexpr const char* kBoardWidth = "BoardWidth";
inline constexpr const char* kBoardHeight = "BoardHeight";
inline constexpr const char* kNumColors = "NumColors";
inline constexpr const char* kNumShapes = "NumShapes";
inline constexpr const char* kSquareShapes = "SquareShapes";
inline constexpr const char* kHasLauncher = "HasLauncher";
inline constexpr const char* kScoreMultiplier = "ScoreMultiplier";
inline constexpr const char* kSupportedEvents = "SupportedEvents";
inline constexpr const char* kSupportedUserEvents = "SupportedUserEvents";
inline constexpr const char* kCompletionCriteria = "CompletionCriteria";
inline constexpr const char* kVariableList = "VariableList";
// An event.
inline constexpr const char* kEventID = "EventID";
inline constexpr const char* kEventType = "EventType";
inline constexpr const char* kActionList = "ActionList";
// An action.
inline constexpr const char* kActionID = "ActionID";
inline constexpr const char* kActionType = "ActionType";
inline constexpr const char* kActionCriteria = "ActionCriteria";
inline constexpr const char* kMinPieces = "MinPieces";
inline constexpr const char* kRemovePieces = "RemovePieces";
inline constexpr const char* kAmount = "Amount";
inline constexpr const char* kDirection = "Direction";
inline constexpr const char* kLowerIsBetter = "LowerIsBetter";
inline constexpr const char* kMessage = "Message";
inline constexpr const char* kVariableID = "VariableID";
inline constexpr const char* kSound = "Sound";  // a sound the action plays (rules/SoundNames.h)
// A user event.
inline constexpr const char* kUserEventID = "UserEventID";
inline constexpr const char* kUserEventType = "UserEventType";
inline constexpr const char* kUserEventCharacter = "UserEventCharacter";
inline constexpr const char* kMinimumPieces = "MinimumPieces";
inline constexpr const char* kUserEventTriggerAction = "UserEventTriggerAction";
// A completion criterion.
inline constexpr const char* kCompletionID = "CompletionID";
inline constexpr const char* kCompletionType = "CompletionType";
inline constexpr const char* kCompletionValue = "CompletionValue";
// A variable (its VariableID is the action's key of that name).
inline constexpr const char* kVariableValue = "VariableValue";

inline constexpr Key kGameKeys[] = {
    {kGameName, Kind::String, 0},
    {kGameDescription, Kind::String, 0},
    {kBoardWidth, Kind::Byte, 5, &GameInfo::boardWidth},
    {kBoardHeight, Kind::Byte, 5, &GameInfo::boardHeight},
    {"HasLauncher", Kind::Byte, 0, &GameInfo::hasLauncher},
    {kScoreMultiplier, Kind::Number, 1},
    {kNumShapes, Kind::Byte, 1, &GameInfo::numShapes},
    {kNumColors, Kind::Byte, 4, &GameInfo::numColors},
    {"SetupRandomFill", Kind::Byte, 0, &GameInfo::setupRandomFill},
    {"SetupMaxLinearColors", Kind::Byte, 0, &GameInfo::setupMaxLinearColors},
    {"SetupMaxLinearShapes", Kind::Byte, 0, &GameInfo::setupMaxLinearShapes},
    {kSquareShapes, Kind::Byte, 0, &GameInfo::squareShapes},
    {"ColorsMatchShapes", Kind::Byte, 0, &GameInfo::colorsMatchShapes},
    {"HolesAllowed", Kind::Byte, 0, &GameInfo::holesAllowed},
    {kSupportedEvents, Kind::Array, 0},
    {kSupportedUserEvents, Kind::Array, 0},
    {kCompletionCriteria, Kind::Array, 0},
    {kVariableList, Kind::Array, 0},
};

inline constexpr Key kEventKeys[] = {
    {kEventID, Kind::Number, 0},
    {kEventType, Kind::Number, 0},
    {kActionList, Kind::Array, 0},
};

inline constexpr Key kActionKeys[] = {
    {kActionID, Kind::Number, 0},
    {kActionType, Kind::Number, 0},
    {kActionCriteria, Kind::Number, 0},
    {kMinPieces, Kind::Number, 0},
    {kRemovePieces, Kind::Number, 0},
    {kAmount, Kind::Number, 0},
    {kLowerIsBetter, Kind::Number, 0},
    {kDirection, Kind::Number, 0},
    {kMessage, Kind::String, 0},
    {kVariableID, Kind::Number, 0},
    {kSound, Kind::String, 0},
};

inline constexpr Key kUserEventKeys[] = {
    {kUserEventID, Kind::Number, 0},
    {kUserEventType, Kind::Number, 0},
    {kUserEventTriggerAction, Kind::Dictionary, 0},
    {kUserEventCharacter, Kind::Character, 0},
    {kMinimumPieces, Kind::Number, 0},
};

inline constexpr Key kCompletionKeys[] = {
    {kCompletionID, Kind::Number, 0},
    {kCompletionType, Kind::Number, 0},
    {kCompletionValue, Kind::Number, 0},
};

inline constexpr Key kVariableKeys[] = {
    {kVariableID, Kind::Number, 0},
    {kVariableValue, Kind::Number, 0},
};

// Every level of a rules dictionary, by what one of its dictionaries is.
struct Level {
    const char* what;  // "a game", "an event", ...
    std::span<const Key> keys;
};
// The names are marked for the catalogue; the checker shows them in the player's language.
inline constexpr Level kGameLevel{N_("a game"), kGameKeys};
inline constexpr Level kEventLevel{N_("an event"), kEventKeys};
inline constexpr Level kActionLevel{N_("an action"), kActionKeys};
inline constexpr Level kUserEventLevel{N_("a user event"), kUserEventKeys};
inline constexpr Level kCompletionLevel{N_("a completion criterion"), kCompletionKeys};
inline constexpr Level kVariableLevel{N_("a variable"), kVariableKeys};
inline constexpr Level kLevels[] = {kGameLevel,      kEventLevel,      kActionLevel,
                                    kUserEventLevel, kCompletionLevel, kVariableLevel};

// The entry of keys named name, or nullptr.
const Key* findKey(std::span<const Key> keys, const char* name);

}  // namespace tolvar::rulekeys
