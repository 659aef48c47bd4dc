#include "ScriptRunner.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdlib>
#include <optional>
#include <variant>
#include <vector>

#include "core/DataFolder.h"
#include "engine/BoardNumbers.h"
#include "core/Translate.h"
#include "core/PlistFile.h"
#include "engine/GameLimits.h"
#include "rules/RulesDict.h"

namespace tolvar::sim {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::vector<std::string> words(const std::string& line) {
    std::vector<std::string> out;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && isBlank(line[i])) ++i;
        std::size_t j = i;
        while (j < line.size() && !isBlank(line[j])) ++j;
        if (j > i) out.push_back(line.substr(i, j - i));
        i = j;
    }
    return out;
}

std::string trim(const std::string& text) {
    std::size_t a = 0, b = text.size();
    while (a < b && isBlank(text[a])) ++a;
    while (b > a && isBlank(text[b - 1])) --b;
    return text.substr(a, b - a);
}

bool parseNumber(const std::string& word, float& out) {
    const char* begin = word.c_str();
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(begin, &end);
    if (end == begin || *end != '\0') return false;
    out = static_cast<float>(value);
    return true;
}

bool parseCount(const std::string& word, unsigned long& out) {
    if (word.empty() || word[0] < '0' || word[0] > '9') return false;
    char* end = nullptr;
    errno = 0;
    out = std::strtoul(word.c_str(), &end, 10);
    return *end == '\0' && errno == 0;
}

// The key code and characters of a key name; each key has a code of its own.
bool keyFor(const std::string& name, std::uint16_t& code, std::string& characters) {
    struct Named {
        const char* name;
        char32_t character;
    };
    static constexpr Named kNamed[] = {
        {"esc", U'\x1b'},         {"space", U' '},          {"enter", kCharacterReturn},
        {"left", kKeyLeftArrow},  {"right", kKeyRightArrow}, {"up", kKeyUpArrow},
        {"down", kKeyDownArrow},  {"home", kKeyHome},        {"end", kKeyEnd},
        {"delete", kKeyDelete},
    };
    for (const Named& key : kNamed) {
        if (name != key.name) continue;
        code = key.character == U'\x1b' ? kKeyCodeEscape
                                         : static_cast<std::uint16_t>(300 + (&key - kNamed));
        characters = utf8(key.character);
        if (key.character == U' ') code = 100 + 32;
        return true;
    }
    unsigned long f = 0;
    if (name.size() >= 2 && name[0] == 'f' && parseCount(name.substr(1), f) && f >= 1 && f <= 24) {
        code = static_cast<std::uint16_t>(400 + f);
        characters = utf8(static_cast<char32_t>(kKeyF1 + f - 1));
        return true;
    }
    if (name.size() == 1 && name[0] > 32 && name[0] < 127) {
        code = static_cast<std::uint16_t>(100 + name[0]);
        characters = name;
        return true;
    }
    return false;
}

}  // namespace

const char* ScriptRunner::commandHelp() {
    return N_(
           "  select TITLE       choose the game titled TITLE in the game menu\n"
           "  start              start the chosen game (Start in the main window) on a board whose\n"
           "                     number is picked from the --seed\n"
           "  board N            start the chosen game on board number N (the same N, the same board)\n"
           "  size W H, size default\n"
           "                     the chosen game's board is W columns and H rows from its next start, or\n"
           "                     as its rules say (W and H within what the rules checker accepts)\n"
           "  colors N, colors default\n"
           "                     the chosen game deals N colours from its next start, or as its rules say\n"
           "  return             go back to the main window\n"
           "  tick [N]           run N ticks of the event timer (1 when not given)\n"
           "  down X Y, up X Y, move X Y\n"
           "                     a mouse button press, release or move at window point X Y (origin lower left)\n"
           "  click X Y          press and release at X Y\n"
           "  drag X1 Y1 X2 Y2   press at X1 Y1, release at X2 Y2\n"
           "  keydown K, keyup K, key K\n"
           "                     a key press, release, or both (K: one character, space, esc, enter,\n"
           "                     left, right, up, down, home, end, delete, or f1 to f24)\n"
           "  menu N             choose item N (1 to 8) of the Actions menu\n"
           "  undo, redo         take back the last move, or play the undone move again\n"
           "  new                a new board of the running game, as Escape deals it\n"
           "  hint               the cells of a move the game's end test finds\n"
           "  preview X Y, preview X1 Y1 X2 Y2\n"
           "                     the score once a click at X Y (then the game's remove key, when it has\n"
           "                     one), or a drag, and every event it causes have run: \"preview score=S\",\n"
           "                     or \"preview none\" when the game takes no move there; changes nothing\n"
           "  cursor             where the keyboard cursor is\n"
           "  save FILE, continue FILE\n"
           "                     write the unfinished game to FILE, or continue the game saved there\n"
           "  show               the board as the player sees it: top row first, empty cells '.',\n"
           "                     selected pieces in brackets\n"
           "  board              the game's own colour dump: one line per column, bottom first\n"
           "  dump               every cell: column, row, piece number, colour, shape, selection\n"
           "  state              score, multiplier, started, paused and the board's number\n"
           "  # ...              a comment\n");
}

ScriptRunner::ScriptRunner(GameLibrary& library, ActionsMenu& menu, std::uint32_t seed)
    : library_(library),
      menu_(menu),
      scores_(tolvarFolderPath()),
      host_(scores_, stdout),
      view_(host_, stdout),
      engine_(view_, host_) {
    engine_.seedBoardPicks(seed);
}

int ScriptRunner::run(std::FILE* in) {
    std::string line;
    long number = 0;
    bool more = true;
    while (more) {
        line.clear();
        int c;
        while ((c = std::fgetc(in)) != EOF && c != '\n') line.push_back(static_cast<char>(c));
        more = c != EOF;
        if (!more && line.empty()) break;
        ++number;
        const std::string reason = runLine(line);
        if (!reason.empty()) {
            std::fflush(stdout);
            std::fprintf(stderr, "tolvar-sim: line %ld: %s\n", number, reason.c_str());
            return 2;
        }
    }
    return 0;
}

std::string ScriptRunner::pointerEvent(std::int64_t type, const std::string& xs,
                                       const std::string& ys) {
    float x = 0, y = 0;
    if (!parseNumber(xs, x)) return "bad number \"" + xs + "\"";
    if (!parseNumber(ys, y)) return "bad number \"" + ys + "\"";
    CurrentEvent event;
    event.type = type;
    event.x = x;
    event.y = y;
    engine_.takeInput(event);
    return {};
}

std::string ScriptRunner::keyEvent(std::int64_t type, const std::string& key) {
    std::uint16_t code = 0;
    std::string characters;
    if (!keyFor(key, code, characters)) return "bad key \"" + key + "\"";
    CurrentEvent event;
    event.type = type;
    event.keyCode = code;
    event.characters = characters;
    engine_.takeInput(event);  // as the game window gives it: the cursor keys go to the cursor first
    return {};
}

std::string ScriptRunner::runLine(const std::string& line) {
    const std::vector<std::string> w = words(line);
    if (w.empty() || w[0][0] == '#') return {};
    const std::string& command = w[0];
    auto arity = [&](std::size_t n) { return w.size() == n + 1; };
    const std::string wrongCount = "wrong number of arguments to " + command;

    if (command == "select") {
        const std::string title = trim(trim(line).substr(command.size()));
        const auto& titles = library_.gameMenu();
        if (std::find(titles.begin(), titles.end(), title) == titles.end())
            return "no game titled \"" + title + "\" in the game menu";
        library_.selectGame(title);
        return {};
    }
    if (command == "start") {
        if (!arity(0)) return wrongCount;
        engine_.startGame(library_.currentRules(), menu_, options_[library_.selectedTitle()]);
        return {};
    }
    if (command == "size" || command == "colors") return chooseOptions(w);
    if (command == "return") {
        if (!arity(0)) return wrongCount;
        engine_.returnToMain();
        return {};
    }
    if (command == "tick") {
        if (w.size() > 2) return wrongCount;
        unsigned long n = 1;
        if (w.size() == 2 && !parseCount(w[1], n)) return "bad count \"" + w[1] + "\"";
        for (unsigned long i = 0; i < n; ++i) engine_.processEvents();
        return {};
    }
    if (command == "down" || command == "up" || command == "move") {
        if (!arity(2)) return wrongCount;
        const std::int64_t type = command == "down" ? kEventTypeMouseDown
                                  : command == "up" ? kEventTypeMouseUp
                                                    : kEventTypeMouseMoved;
        return pointerEvent(type, w[1], w[2]);
    }
    if (command == "click" || command == "drag") {
        const bool click = command == "click";
        if (!arity(click ? 2 : 4)) return wrongCount;
        float probe = 0;
        for (std::size_t i = 1; i < w.size(); ++i)
            if (!parseNumber(w[i], probe)) return "bad number \"" + w[i] + "\"";
        pointerEvent(kEventTypeMouseDown, w[1], w[2]);
        return click ? pointerEvent(kEventTypeMouseUp, w[1], w[2])
                     : pointerEvent(kEventTypeMouseUp, w[3], w[4]);
    }
    if (command == "preview") {
        if (!arity(2) && !arity(4)) return wrongCount;
        float at[4] = {};
        for (std::size_t i = 1; i < w.size(); ++i)
            if (!parseNumber(w[i], at[i - 1])) return "bad number \"" + w[i] + "\"";
        const std::optional<MovePreview> preview =
            arity(2) ? engine_.previewClick(at[0], at[1]) : engine_.previewDrag(at[0], at[1], at[2], at[3]);
        if (preview)
            std::printf("preview score=%" PRIu64 "\n", preview->score);
        else
            std::printf("preview none\n");
        return {};
    }
    if (command == "keydown" || command == "keyup" || command == "key") {
        if (!arity(1)) return wrongCount;
        std::uint16_t code = 0;
        std::string characters;
        if (!keyFor(w[1], code, characters)) return "bad key \"" + w[1] + "\"";
        if (command == "keyup") return keyEvent(kEventTypeKeyUp, w[1]);
        keyEvent(kEventTypeKeyDown, w[1]);
        return command == "key" ? keyEvent(kEventTypeKeyUp, w[1]) : std::string();
    }
    if (command == "menu") {
        if (!arity(1)) return wrongCount;
        unsigned long n = 0;
        if (!parseCount(w[1], n) || n < 1 || n > static_cast<unsigned long>(ActionsMenu::kItemCount))
            return "no menu item \"" + w[1] + "\" (1 to 8)";
        engine_.checkMenuAction(menu_, static_cast<int>(n - 1));
        return {};
    }
    if (command == "undo" || command == "redo" || command == "new") {
        if (!arity(0)) return wrongCount;
        if (command == "new") {
            engine_.newGame();
        } else if (!(command == "undo" ? engine_.undo() : engine_.redo())) {
            std::printf("nothing to %s\n", command.c_str());
        }
        return {};
    }
    if (command == "save" || command == "continue") {
        const std::string file = trim(trim(line).substr(command.size()));
        if (file.empty()) return wrongCount;
        if (command == "save") {
            const std::optional<Value> saved = engine_.savedGame();
            if (!saved) return "no unfinished game to save";
            if (const auto error = writePropertyListFile(file, *saved)) return error->message();
            return {};
        }
        auto read = readPropertyListFile(file);
        if (const PlistError* error = std::get_if<PlistError>(&read))
            return "cannot read " + file + ": " + error->reason;
        const Value& saved = std::get<Value>(read);
        const Dictionary* games = library_.allGameRules() ? library_.allGameRules()->asDictionary() : nullptr;
        const Value* rules = games ? games->find(Engine::savedGameTitle(saved)) : nullptr;
        if (const std::string why = engine_.continueGame(saved, rules, menu_); !why.empty())
            std::printf("cannot continue: %s\n", why.c_str());
        return {};
    }
    if (command == "hint" || command == "cursor") {
        if (!arity(0)) return wrongCount;
        std::vector<BoardCell> cells = engine_.hint().cells;
        if (command == "cursor") {
            cells.clear();
            if (const auto at = engine_.cursor()) cells.push_back(*at);
        }
        std::printf("%s", command.c_str());
        for (const BoardCell& cell : cells) std::printf(" %u,%u", cell.column, cell.row);
        std::printf("%s\n", cells.empty() ? " none" : "");
        return {};
    }
    if (command == "board") {
        if (arity(0)) {
            engine_.printBoardColors();
            return {};
        }
        if (!arity(1)) return wrongCount;
        std::string why;
        const std::optional<std::uint32_t> number = parseBoardNumber(w[1], &why);
        if (!number) return why;
        engine_.startGame(library_.currentRules(), menu_, options_[library_.selectedTitle()], *number);
        return {};
    }
    if (command == "show") {
        if (!arity(0)) return wrongCount;
        showBoard();
        return {};
    }
    if (command == "dump") {
        if (!arity(0)) return wrongCount;
        dumpBoard();
        return {};
    }
    if (command == "state") {
        if (!arity(0)) return wrongCount;
        printState();
        return {};
    }
    return "unknown command \"" + command + "\"";
}

std::string ScriptRunner::chooseOptions(const std::vector<std::string>& w) {
    const bool size = w[0] == "size";
    const bool reset = w.size() == 2 && w[1] == "default";
    if (!reset && w.size() != (size ? 3u : 2u)) return "wrong number of arguments to " + w[0];
    const Value* rules = library_.currentRules();
    if (!rules || !rules->asDictionary()) return "no game chosen";
    GameInfo own;
    readGameSettings(*rules->asDictionary(), own);
    GameOptions chosen = options_[library_.selectedTitle()];
    if (reset) {
        (size ? chosen.boardWidth : chosen.numColors).reset();
        if (size) chosen.boardHeight.reset();
    } else {
        // Each number first within a byte, then within what the game accepts.
        const std::pair<const char*, std::optional<std::uint8_t> GameOptions::*> fields[] = {
            {"width", &GameOptions::boardWidth}, {"height", &GameOptions::boardHeight}};
        for (std::size_t i = 1; i < w.size(); ++i) {
            unsigned long n = 0;
            const char* what = size ? fields[i - 1].first : "number of colours";
            if (!parseCount(w[i], n)) return "bad " + std::string(what) + " \"" + w[i] + "\"";
            if (n == 0 || n > kMostBoardSide) n = 0;  // out of every range: named below
            auto& field = size ? chosen.*fields[i - 1].second : chosen.numColors;
            field = static_cast<std::uint8_t>(n);
        }
    }
    if (const std::string problem = optionsProblem(own, chosen); !problem.empty()) return problem;
    options_[library_.selectedTitle()] = chosen;
    return {};
}

void ScriptRunner::dumpBoard() const {
    const GameInfo* gameInfo = engine_.game();
    if (!gameInfo) return;
    const std::size_t h = gameInfo->boardHeight;
    for (std::size_t n = 0; n < gameInfo->board.size() && h > 0; ++n) {
        const BoardPiece& p = gameInfo->board[n];
        std::printf("cell %zu %zu id=%" PRIu32 " color=%d shape=%d selected=%d\n", n / h, n % h,
                    p.pieceID, static_cast<int>(p.colorIndex), static_cast<int>(p.shapeIndex),
                    static_cast<int>(p.selected));
    }
}

void ScriptRunner::showBoard() const {
    const GameInfo* gameInfo = engine_.game();
    if (!gameInfo || !gameInfo->hasBoard()) {
        std::printf("show: no board\n");
        return;
    }
    const int w = gameInfo->boardWidth, h = gameInfo->boardHeight;
    const int digits = static_cast<int>(std::to_string(static_cast<int>(gameInfo->numColors)).size());
    for (int y = h - 1; y >= 0; --y) {
        std::string row;
        for (int x = 0; x < w; ++x) {
            const BoardPiece& p = gameInfo->board[static_cast<std::size_t>(x) * static_cast<std::size_t>(h) +
                                                  static_cast<std::size_t>(y)];
            std::string cell = p.pieceID == 0 ? "." : std::to_string(static_cast<int>(p.colorIndex));
            cell.insert(0, static_cast<std::size_t>(std::max(0, digits - static_cast<int>(cell.size()))), ' ');
            const bool selected = p.pieceID != 0 && p.selected != 0;
            row += (selected ? "[" : " ") + cell + (selected ? "]" : " ");
        }
        while (!row.empty() && row.back() == ' ') row.pop_back();
        std::printf("%s\n", row.c_str());
    }
}

void ScriptRunner::printState() const {
    const GameInfo* gameInfo = engine_.game();
    const std::uint64_t score = gameInfo ? gameInfo->score : 0;
    const std::uint64_t multiplier = gameInfo ? gameInfo->scoreMultiplier : 0;
    std::printf("state score=%" PRIu64 " multiplier=%" PRIu64 " started=%d paused=%d board=%" PRIu32 "\n", score,
                multiplier, engine_.gameStarted(), engine_.gamePaused(), engine_.boardNumber());
}

}  // namespace tolvar::sim
