#include "engine/Engine.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <variant>

#include "engine/BoardLayout.h"
#include "engine/BoardNumbers.h"
#include "engine/BoardSetup.h"
#include "engine/Completion.h"
#include "engine/Dispatcher.h"
#include "engine/EngineContext.h"
#include "engine/MoveHistory.h"
#include "engine/SavedGame.h"
#include "engine/UserInput.h"
#include "rules/GameOptions.h"
#include "rules/RulesDict.h"

namespace tolvar {

struct Engine::Impl {
    Impl(View& view, Host& host, const GameOutput& out) : ctx(view, host, out), dispatcher(ctx), input(ctx) {}

    EngineContext ctx;
    Dispatcher dispatcher;
    UserInput input;
    MoveHistory history;
    unsigned historyBoard = 0;  // the board the history belongs to
    std::optional<BoardCell> cursor;
    bool finished = false;    // the best-score check of this board has run
    std::string fingerprint;  // of the running game's rules
    std::optional<GameSnapshot> beforeLastTick;  // the game before the last tick, when that changed it
    bool timersScheduled = false;
    // The game window shows the board. A game left for the main window takes no input: the
    // main window's clicks and keys are not moves on a board nobody sees.
    bool shown = false;

    bool playing() const { return ctx.hasGame() && ctx.game().hasBoard() && ctx.gamePaused == 0; }
    // The board takes the player's moves: shown, played, and its start has run.
    bool previewable() const { return shown && playing() && ctx.gameStarted == 0; }

    // Acts on one input and records what it changed as a move.
    void play(const PlayerInput& in, bool redoing) {
        beforeLastTick.reset();
        history.beforeInput(ctx);
        if (!in.fromMenu) {
            input.handleEvent(in.event);
        } else if (const SupportedUserEvent* u = input.charIsUserAction(in.menuCharacter)) {
            input.processUserEvent(*u);
        }
        if (ctx.boardsDealt != historyBoard) {
            forgetBoard();
            return;
        }
        history.afterInput(ctx, in, redoing);
    }

    // The board is shown from now on; the event the host holds came before it and is not played.
    void show() {
        shown = true;
        input.skipCurrentEvent();
    }

    // What belonged to the board that went: its moves and the cursor.
    void forgetBoard() {
        finished = false;
        beforeLastTick.reset();
        history.forget();
        cursor.reset();
        historyBoard = ctx.boardsDealt;
    }

    // The running game as a saved game, in the state given, with its number and its moves.
    Value saved(const GameSnapshot& state) const {
        SavedPlay play;
        play.snapshot = state;
        play.boardNumber = ctx.boardNumber;
        play.history = &history;
        return savedGameValue(ctx.game(), play, fingerprint);
    }

    // A mouse-down and mouse-up at the centre of the cursor's cell.
    void pressCursor() {
        const BoardLayout layout = computeBoardLayout(ctx.game());
        CurrentEvent click;
        click.x = layout.left + (static_cast<float>(cursor->column) + 0.5f) * layout.w;
        click.y = layout.m + (static_cast<float>(cursor->row) + 0.5f) * layout.h;
        click.type = kEventTypeMouseDown;
        play({click}, false);
        click.type = kEventTypeMouseUp;
        if (cursor) play({click}, false);
    }
};

std::string unplayableReason(const GameInfo& game) {
    auto is = [](const char* key, int value) {
        // Built by appending: g++ 12 at -O3 takes a prepend for an overlapping copy.
        std::string text = "\"";
        text += key;
        text += "\" is ";
        text += std::to_string(value);
        return text;
    };
    if (game.boardWidth == 0) return is("BoardWidth", 0);
    if (game.boardHeight == 0) return is("BoardHeight", 0);
    if (game.numColors == 0) return is("NumColors", 0);
    if (game.numShapes == 0) return is("NumShapes", 0);
    if (game.setupMaxLinearColors != 0 && game.numColors < 2)
        return is("SetupMaxLinearColors", game.setupMaxLinearColors) + " while " +
               is("NumColors", game.numColors);
    if (game.setupMaxLinearColors != 0 && game.setupRandomFill == 0)
        return is("SetupMaxLinearColors", game.setupMaxLinearColors) + " while " +
               is("SetupRandomFill", 0);
    return {};
}

namespace {

// A saved game's entry for the choices it was started with.
constexpr const char* kSavedOptions = "Options";

// The choices that change rules: those that differ from the rules' own values.
GameOptions optionsChanging(const Value& rules, const GameOptions& options) {
    const Dictionary* dict = rules.asDictionary();
    if (!dict || options.empty()) return {};
    GameInfo own;
    readGameSettings(*dict, own);
    return optionsDifferingFrom(own, options);
}

// The saved game with the choices it was started with, when there are any.
Value withOptions(Value saved, const GameOptions& options) {
    if (Dictionary* d = saved.asDictionary(); d && !options.empty())
        d->set(kSavedOptions, Value::dictionary(optionsDictionary(options)));
    return saved;
}

GameOptions savedOptions(const Value& saved) {
    const Dictionary* d = saved.asDictionary();
    const Value* options = d ? d->find(kSavedOptions) : nullptr;
    const Dictionary* chosen = options ? options->asDictionary() : nullptr;
    return chosen ? optionsFromDictionary(*chosen) : GameOptions();
}

}  // namespace

Engine::Engine(View& view, Host& host, const GameOutput& out) : impl_(std::make_unique<Impl>(view, host, out)) {}
Engine::~Engine() = default;

void Engine::startGame(const Value* currentRules, ActionsMenu& menu, const GameOptions& options,
                       std::optional<std::uint32_t> board) {
    EngineContext& ctx = impl_->ctx;
    // The previous game goes, whatever comes next.
    ctx.forgetGesture();
    std::unique_ptr<GameInfo>& gameInfo = ctx.gameInfo;
    gameInfo.reset();
    if (!currentRules) return;
    // The fingerprint is of the rules as written: a saved game is continued with its choices.
    impl_->fingerprint = rulesFingerprint(*currentRules);
    ctx.options = optionsChanging(*currentRules, options);
    const Value played = rulesWithOptions(*currentRules, ctx.options);
    gameInfo = createStructsFromRulesDict(&played, menu, ctx.out);
    if (!gameInfo) return;
    if (const std::string reason = unplayableReason(*gameInfo); !reason.empty()) {
        const std::string message =
            "The game \"" + gameInfo->gameName + "\" cannot be played: " + reason + ".";
        gameInfo.reset();
        ctx.host.runAlert(" ", message, "OK");
        return;
    }
    ctx.host.showGameWindow();
    impl_->show();
    dealBoard(ctx, board ? *board : pickBoardNumber(ctx));
    ++ctx.boardsDealt;
    impl_->forgetBoard();
    ctx.view.drawBoard(ctx.game());
    ctx.host.hideMainWindow();
    ctx.gameStarted = 1;
    ctx.gamePaused = 0;
    if (ctx.host.scoresTimerRunning()) ctx.host.stopScoresTimer();
    if (!impl_->timersScheduled) {
        impl_->timersScheduled = true;
        ctx.host.scheduleEngineTimers();
    }
}

void Engine::returnToMain() {
    EngineContext& ctx = impl_->ctx;
    if (ctx.host.scoresTimerRunning()) ctx.host.stopScoresTimer();
    ctx.gamePaused = 0;
    impl_->cursor.reset();
    impl_->shown = false;
    ctx.host.hideGameWindow();
    ctx.host.showMainWindow();
}

void Engine::checkMenuAction(const ActionsMenu& menu, int itemIndex) {
    if (!impl_->ctx.hasGame()) return;
    if (itemIndex < 0 || itemIndex >= ActionsMenu::kItemCount) return;
    EngineContext& ctx = impl_->ctx;
    if (impl_->input.currentEvent().type == kEventTypeKeyDown || ctx.gamePaused != 0) return;
    const ActionsMenuItem& item = menu.item(itemIndex);
    if (!item.enabled) return;
    PlayerInput chosen;
    chosen.fromMenu = true;
    chosen.menuCharacter = item.keyEquivalent;
    impl_->play(chosen, false);
}

void Engine::processEvents() {
    EngineContext& ctx = impl_->ctx;
    // The window plays what the tick shows after it has run; a quit meanwhile keeps the game as
    // it was before the tick, which then runs again in full.
    if (ctx.hasGame() && ctx.game().hasBoard() && (ctx.game().eventQueue || ctx.gameStarted != 0))
        impl_->beforeLastTick = takeSnapshot(ctx);
    else
        impl_->beforeLastTick.reset();
    impl_->dispatcher.processEvents();
    // No undo past the best-score check of a finished game, and no cursor on its score screen.
    if (impl_->ctx.gamePaused != 0 && impl_->ctx.hasGame()) {
        impl_->history.forget();
        impl_->cursor.reset();
        impl_->finished = true;
    }
}

void Engine::checkUserEvents() {
    const std::optional<CurrentEvent> event = impl_->input.newEvent();
    if (!event || !impl_->shown) return;
    if (event->type == kEventTypeMouseDown) impl_->cursor.reset();
    if (event->type == kEventTypeMouseDown || event->type == kEventTypeMouseUp ||
        event->type == kEventTypeKeyDown)
        impl_->play({*event}, false);
}

void Engine::takeInput(const CurrentEvent& event) {
    if (event.type == kEventTypeKeyDown && cursorKey(event)) return;
    impl_->input.setCurrentEvent(event);
    checkUserEvents();
}

void Engine::newGame() {
    if (!impl_->ctx.hasGame() || !impl_->ctx.game().hasBoard()) return;
    impl_->show();  // also from the main window, whose game comes to the front
    impl_->input.restartGame();
    impl_->forgetBoard();
}

std::uint32_t Engine::boardNumber() const { return impl_->ctx.hasGame() ? impl_->ctx.boardNumber : 0; }
void Engine::seedBoardPicks(std::uint32_t seed) { impl_->ctx.boardPicks.seed(seed); }

bool Engine::canUndo() const { return impl_->playing() && impl_->history.canUndo(); }
bool Engine::canRedo() const { return impl_->playing() && impl_->history.canRedo(); }

bool Engine::undo() {
    if (!canUndo()) return false;
    impl_->beforeLastTick.reset();
    restoreSnapshot(impl_->ctx, impl_->history.undo()->before);
    impl_->ctx.view.drawBoard(impl_->ctx.game());
    return true;
}

bool Engine::redo() {
    if (!canRedo()) return false;
    const std::optional<Move> move = impl_->history.takeRedo();
    restoreSnapshot(impl_->ctx, move->before);
    for (const PlayerInput& in : move->inputs) impl_->play(in, true);
    impl_->ctx.view.drawBoard(impl_->ctx.game());
    return true;
}

Hint Engine::hint() const {
    if (!impl_->playing()) return {};
    return findHint(impl_->ctx.game(), impl_->ctx.out);
}

std::optional<MovePreview> Engine::previewClick(float x, float y) const {
    if (!impl_->previewable()) return std::nullopt;
    return previewMove(impl_->ctx, {x, y, x, y, removeSelectionKey(impl_->ctx.game())});
}

std::optional<MovePreview> Engine::previewDrag(float x1, float y1, float x2, float y2) const {
    if (!impl_->previewable()) return std::nullopt;
    return previewMove(impl_->ctx, {x1, y1, x2, y2, 0});
}

std::optional<BoardCell> Engine::cellAt(float x, float y) const {
    if (!impl_->ctx.hasGame()) return std::nullopt;
    const GameInfo& game = impl_->ctx.game();
    const BoardPiece* piece = Board(impl_->ctx.game(), GameOutput::discarded()).getBoardPieceAtWindowX(x, y);
    if (!piece) return std::nullopt;
    const auto index = static_cast<std::uint32_t>(piece - game.board.data());
    return BoardCell{index / game.boardHeight, index % game.boardHeight};
}

bool Engine::cursorKey(const CurrentEvent& keyDown) {
    Impl& im = *impl_;
    if (keyDown.type != kEventTypeKeyDown || !im.shown || !im.playing() || im.ctx.gameStarted != 0)
        return false;
    if (im.input.charIsUserAction(firstCharacter(keyDown))) return false;  // the rules' key
    const GameInfo& game = im.ctx.game();
    const char32_t key = firstKeyCharacter(keyDown);
    int dx = 0, dy = 0;
    switch (key) {
        case kKeyLeftArrow: dx = -1; break;
        case kKeyRightArrow: dx = 1; break;
        case kKeyUpArrow: dy = 1; break;
        case kKeyDownArrow: dy = -1; break;
        case kCharacterReturn:
        case kCharacterEnter: {
            if (!im.cursor) return false;
            im.pressCursor();
            return true;
        }
        default: return false;
    }
    if (!im.cursor) {
        im.cursor = BoardCell{game.boardWidth / 2u, game.boardHeight / 2u};
    } else {
        const auto step = [](std::uint32_t at, int by, std::uint32_t size) {
            const std::int64_t to = static_cast<std::int64_t>(at) + by;
            return static_cast<std::uint32_t>(std::clamp<std::int64_t>(to, 0, size - 1));
        };
        im.cursor->column = step(im.cursor->column, dx, game.boardWidth);
        im.cursor->row = step(im.cursor->row, dy, game.boardHeight);
    }
    im.ctx.view.drawBoard(im.ctx.game());
    return true;
}

std::optional<BoardCell> Engine::cursor() const { return impl_->cursor; }

bool Engine::hasUnfinishedGame() const {
    return impl_->ctx.hasGame() && impl_->ctx.game().hasBoard() && !impl_->finished;
}

bool Engine::resumeGame() {
    if (!hasUnfinishedGame()) return false;
    EngineContext& ctx = impl_->ctx;
    ctx.host.showGameWindow();
    impl_->show();
    ctx.view.drawBoard(ctx.game());
    ctx.host.hideMainWindow();
    return true;
}

std::optional<Value> Engine::savedGame() const {
    if (!hasUnfinishedGame()) return std::nullopt;
    return withOptions(impl_->saved(takeSnapshot(impl_->ctx)), impl_->ctx.options);
}

std::optional<Value> Engine::savedGameBeforeTick() const {
    if (!impl_->beforeLastTick || !hasUnfinishedGame()) return savedGame();
    return withOptions(impl_->saved(*impl_->beforeLastTick), impl_->ctx.options);
}

std::string Engine::savedGameTitle(const Value& saved) { return tolvar::savedGameTitle(saved); }
std::uint32_t Engine::savedGameBoardNumber(const Value& saved) { return tolvar::savedGameBoardNumber(saved); }

namespace {
// A saved game checked against the rules of its title, ready to be shown; or why it cannot be.
struct Continuable {
    std::unique_ptr<GameInfo> game;
    SavedPlay play;
    std::string fingerprint;
    GameOptions options;
};

std::variant<Continuable, std::string> continuable(const Value& saved, const Value* rules, ActionsMenu& menu,
                                                   const GameOutput& out) {
    const std::string title = savedGameTitle(saved);
    if (!rules)
        return "The saved game of \"" + title + "\" cannot be continued: the rules file has no game of that name.";
    Continuable c;
    c.options = optionsChanging(*rules, savedOptions(saved));
    const Value played = rulesWithOptions(*rules, c.options);
    c.game = createStructsFromRulesDict(&played, menu, out);
    if (!c.game) return "The saved game of \"" + title + "\" cannot be continued: its rules are not a dictionary.";
    if (const std::string reason = unplayableReason(*c.game); !reason.empty())
        return "The game \"" + c.game->gameName + "\" cannot be played: " + reason + ".";
    c.fingerprint = rulesFingerprint(*rules);
    std::variant<SavedPlay, std::string> read = readSavedGame(saved, *c.game, c.fingerprint);
    if (std::string* why = std::get_if<std::string>(&read)) return std::move(*why);
    c.play = std::move(std::get<SavedPlay>(read));
    return c;
}
}  // namespace

std::string Engine::savedGameProblem(const Value& saved, const Value* rules) {
    ActionsMenu scratch;
    const auto checked = continuable(saved, rules, scratch, GameOutput::discarded());
    const std::string* why = std::get_if<std::string>(&checked);
    return why ? *why : std::string();
}

std::string Engine::continueGame(const Value& saved, const Value* rules, ActionsMenu& menu) {
    EngineContext& ctx = impl_->ctx;
    // Built aside, so a game that cannot be continued leaves the running one as it was.
    ActionsMenu scratch = menu;
    std::variant<Continuable, std::string> checked = continuable(saved, rules, scratch, ctx.out);
    if (const std::string* why = std::get_if<std::string>(&checked)) return *why;
    Continuable& c = std::get<Continuable>(checked);

    menu = scratch;
    ctx.forgetGesture();
    ctx.gameInfo = std::move(c.game);
    impl_->fingerprint = c.fingerprint;
    ctx.options = c.options;
    ctx.host.showGameWindow();
    impl_->show();
    ctx.view.clearPieceSprites(0);
    restoreSnapshot(ctx, c.play.snapshot);
    ctx.boardNumber = c.play.boardNumber;
    ++ctx.boardsDealt;
    impl_->forgetBoard();
    impl_->history.restore(std::move(c.play.moves));
    if (!c.play.historyProblem.empty())
        std::fprintf(stderr, "The saved game of \"%s\": %s.\n", ctx.game().gameName.c_str(),
                     c.play.historyProblem.c_str());
    ctx.view.drawBoard(ctx.game());
    ctx.host.hideMainWindow();
    if (ctx.host.scoresTimerRunning()) ctx.host.stopScoresTimer();
    if (!impl_->timersScheduled) {
        impl_->timersScheduled = true;
        ctx.host.scheduleEngineTimers();
    }
    return {};
}

bool Engine::performKeyEquivalent(const CurrentEvent& event) const {
    if (!impl_->ctx.hasGame() || event.type != kEventTypeKeyDown) return false;
    return impl_->input.charIsUserAction(firstCharacter(event)) != nullptr;
}

const GameInfo* Engine::game() const { return impl_->ctx.gameInfo.get(); }
GameInfo* Engine::game() { return impl_->ctx.gameInfo.get(); }
RandomSequence& Engine::random() { return impl_->ctx.random; }
GameSnapshot Engine::snapshot() const { return takeSnapshot(impl_->ctx); }
void Engine::restore(const GameSnapshot& state) { restoreSnapshot(impl_->ctx, state); }
const GameOutput& Engine::output() const { return impl_->ctx.out; }

int Engine::gameStarted() const { return impl_->ctx.gameStarted; }
int Engine::gamePaused() const { return impl_->ctx.gamePaused; }

bool Engine::hasPendingEvents() const {
    const EngineContext& ctx = impl_->ctx;
    return ctx.hasGame() && (ctx.game().eventQueue != nullptr || ctx.gameStarted != 0);
}

void Engine::printBoardColors() const {
    if (impl_->ctx.hasGame()) tolvar::printBoardColors(impl_->ctx.game(), impl_->ctx.out);
}
const BoardPiece* Engine::downPiece() const { return impl_->ctx.downPiece; }
const BoardPiece* Engine::upPiece() const { return impl_->ctx.upPiece; }

}  // namespace tolvar
