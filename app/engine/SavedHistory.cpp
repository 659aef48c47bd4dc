#include "engine/SavedHistory.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "core/PlistFile.h"
#include "engine/SavedGame.h"

namespace tolvar {

namespace {

constexpr const char* kDoneKey = "Done";
constexpr const char* kUndoneKey = "Undone";
constexpr const char* kInputsKey = "Inputs";
// A move is a click (a press and a release), a key or a menu item; a few more are read, none kept.
constexpr std::size_t kMaxInputsPerMove = 8;
// The text of a key event: a character, or a few for a composed one.
constexpr std::size_t kMaxCharacterBytes = 32;

Value inputValue(const PlayerInput& in) {
    Dictionary d;
    d.set("Type", Value::integer(in.event.type));
    d.set("KeyCode", Value::integer(in.event.keyCode));
    d.set("Characters", Value::string(in.event.characters));
    d.set("X", Value::integer(std::bit_cast<std::uint32_t>(in.event.x)));
    d.set("Y", Value::integer(std::bit_cast<std::uint32_t>(in.event.y)));
    if (in.fromMenu) d.set("MenuCharacter", Value::integer(in.menuCharacter));
    return Value::dictionary(std::move(d));
}

Value moveValue(const GameInfo& game, const Move& move) {
    Dictionary d;
    addSnapshotEntries(d, game, move.before, BoardForm::Packed);
    Array inputs;
    for (const PlayerInput& in : move.inputs) inputs.push_back(inputValue(in));
    d.set(kInputsKey, Value::array(std::move(inputs)));
    return Value::dictionary(std::move(d));
}

// What a move's text adds to the file, written as deep as it lies there (the game's dictionary,
// the history, its list), each level indenting its lines; a little more, with the levels' own.
std::size_t textSize(const Value& move) {
    Dictionary history;
    history.set(kDoneKey, Value::array({move}));
    Dictionary game;
    game.set(kHistoryKey, Value::dictionary(std::move(history)));
    return toXmlPropertyList(Value::dictionary(std::move(game))).size();
}

// Reads the integer under key within [low, high]; false (with why) when it is not one.
bool integerWithin(const Dictionary& d, const char* key, std::int64_t low, std::int64_t high, std::int64_t& out,
                   std::string& why) {
    const Value* v = d.find(key);
    if (!v || !v->isInteger() || *v->asInteger() < low || *v->asInteger() > high) {
        why = std::string("an input's \"") + key + "\" is missing or not within " + std::to_string(low) + " to " +
              std::to_string(high);
        return false;
    }
    out = *v->asInteger();
    return true;
}

std::optional<PlayerInput> inputFrom(const Value& v, std::string& why) {
    const Dictionary* d = v.asDictionary();
    if (!d) {
        why = "an input is not a dictionary";
        return std::nullopt;
    }
    PlayerInput in;
    std::int64_t type = 0, code = 0, x = 0, y = 0;
    constexpr std::int64_t kBits = std::numeric_limits<std::uint32_t>::max();
    if (!integerWithin(*d, "Type", kEventTypeMouseDown, kEventTypeKeyDown, type, why) ||
        !integerWithin(*d, "KeyCode", 0, std::numeric_limits<std::uint16_t>::max(), code, why) ||
        !integerWithin(*d, "X", 0, kBits, x, why) || !integerWithin(*d, "Y", 0, kBits, y, why))
        return std::nullopt;
    if (type != kEventTypeMouseDown && type != kEventTypeMouseUp && type != kEventTypeKeyDown) {
        why = "an input is no press, release or key";
        return std::nullopt;
    }
    const Value* characters = d->find("Characters");
    if (!characters || !characters->isString() || characters->asString()->size() > kMaxCharacterBytes) {
        why = "an input's \"Characters\" is missing or longer than " + std::to_string(kMaxCharacterBytes) + " bytes";
        return std::nullopt;
    }
    in.event.type = type;
    in.event.keyCode = static_cast<std::uint16_t>(code);
    in.event.characters = *characters->asString();
    in.event.x = std::bit_cast<float>(static_cast<std::uint32_t>(x));
    in.event.y = std::bit_cast<float>(static_cast<std::uint32_t>(y));
    if (!std::isfinite(in.event.x) || !std::isfinite(in.event.y)) {
        why = "an input is at no point of the window";
        return std::nullopt;
    }
    if (d->find("MenuCharacter")) {
        std::int64_t c = 0;
        if (!integerWithin(*d, "MenuCharacter", std::numeric_limits<std::int8_t>::min(),
                           std::numeric_limits<std::int8_t>::max(), c, why))
            return std::nullopt;
        in.fromMenu = true;
        in.menuCharacter = static_cast<std::int8_t>(c);
    }
    return in;
}

std::optional<Move> moveFrom(const Value& v, const GameInfo& game, std::string& why) {
    const Dictionary* d = v.asDictionary();
    if (!d) {
        why = "a move is not a dictionary";
        return std::nullopt;
    }
    std::variant<GameSnapshot, std::string> before = snapshotFromEntries(*d, game, BoardForm::Packed);
    if (std::string* problem = std::get_if<std::string>(&before)) {
        why = "a move: " + *problem;
        return std::nullopt;
    }
    const Value* inputs = d->find(kInputsKey);
    if (!inputs || !inputs->isArray() || inputs->asArray()->empty() || inputs->asArray()->size() > kMaxInputsPerMove) {
        why = "a move has not 1 to " + std::to_string(kMaxInputsPerMove) + " inputs";
        return std::nullopt;
    }
    Move move{std::move(std::get<GameSnapshot>(before)), {}};
    for (const Value& input : *inputs->asArray()) {
        std::optional<PlayerInput> in = inputFrom(input, why);
        if (!in) return std::nullopt;
        move.inputs.push_back(std::move(*in));
    }
    return move;
}

bool movesFrom(const Dictionary& d, const char* key, const GameInfo& game, std::vector<Move>& out, std::string& why) {
    const Value* list = d.find(key);
    if (!list || !list->isArray()) {
        why = std::string("\"") + key + "\" is missing or not a list";
        return false;
    }
    for (const Value& v : *list->asArray()) {
        std::optional<Move> move = moveFrom(v, game, why);
        if (!move) return false;
        out.push_back(std::move(*move));
    }
    return true;
}

}  // namespace

Value historyValue(const GameInfo& game, const MoveHistory& history) {
    // The moves nearest the game as it stands go in first, one to undo and one to redo in turn,
    // until the next one does not fit; the nearest goes in whatever its size.
    const std::deque<Move>& done = history.done();
    const std::vector<Move>& undone = history.undone();
    Array keptDone, keptUndone;  // nearest first
    std::size_t left = kHistoryBytesSaved;
    auto keep = [&](const Move& move, Array& into) {
        Value v = moveValue(game, move);
        const std::size_t size = textSize(v);
        if (size > left && !(keptDone.empty() && keptUndone.empty())) return false;
        left -= std::min(size, left);
        into.push_back(std::move(v));
        return true;
    };
    for (std::size_t i = 0; i < std::max(done.size(), undone.size()); ++i) {
        if (i < done.size() && !keep(done[done.size() - 1 - i], keptDone)) break;
        if (i < undone.size() && !keep(undone[undone.size() - 1 - i], keptUndone)) break;
    }
    Dictionary d;
    d.set(kDoneKey, Value::array(Array(std::make_move_iterator(keptDone.rbegin()), std::make_move_iterator(keptDone.rend()))));
    d.set(kUndoneKey,
          Value::array(Array(std::make_move_iterator(keptUndone.rbegin()), std::make_move_iterator(keptUndone.rend()))));
    return Value::dictionary(std::move(d));
}

std::variant<SavedMoves, std::string> historyFrom(const Value& history, const GameInfo& game) {
    const Dictionary* d = history.asDictionary();
    if (!d) return std::string("it is not a dictionary");
    SavedMoves moves;
    std::string why;
    if (!movesFrom(*d, kDoneKey, game, moves.done, why) || !movesFrom(*d, kUndoneKey, game, moves.undone, why))
        return why;
    return moves;
}

}  // namespace tolvar
