#include "engine/Engine.h"

#include <string>

#include "engine/BoardSetup.h"
#include "engine/Dispatcher.h"
#include "engine/EngineContext.h"
#include "engine/UserInput.h"
#include "rules/RulesDict.h"

namespace tolvar {

struct Engine::Impl {
    Impl(View& view, Host& host) : ctx(view, host), dispatcher(ctx), input(ctx) {}

    EngineContext ctx;
    Dispatcher dispatcher;
    UserInput input;
    bool timersScheduled = false;
    // Set while an engine operation runs, so a modal panel that lets the desktop deliver
    // another timer or action meanwhile cannot re-enter it.
    bool busy = false;

    struct Busy {
        explicit Busy(bool& flag) : flag_(flag) { flag_ = true; }
        ~Busy() { flag_ = false; }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;
        bool& flag_;
    };
};

namespace {
// Why the rules of game cannot be played, or an empty text when they can.
std::string unplayableReason(const GameInfo& game) {
    auto is = [](const char* key, int value) {
        return "\"" + std::string(key) + "\" is " + std::to_string(value);
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
}  // namespace

Engine::Engine(View& view, Host& host) : impl_(std::make_unique<Impl>(view, host)) {}
Engine::~Engine() = default;

void Engine::startGame(const Value* currentRules, ActionsMenu& menu) {
    if (impl_->busy) return;
    Impl::Busy busy(impl_->busy);
    EngineContext& ctx = impl_->ctx;
    // The previous game goes, whatever comes next.
    ctx.forgetGesture();
    gameInfo.reset();
    if (!currentRules) return;
    gameInfo = createStructsFromRulesDict(currentRules, menu);
    if (!gameInfo) return;
    if (const std::string reason = unplayableReason(*gameInfo); !reason.empty()) {
        const std::string message =
            "The game \"" + gameInfo->gameName + "\" cannot be played: " + reason + ".";
        gameInfo.reset();
        ctx.host.runAlert(" ", message, "OK");
        return;
    }
    ctx.host.showGameWindow();
    setupGame(*gameInfo, ctx.view);
    ctx.view.drawBoard();
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
    ctx.host.hideGameWindow();
    ctx.host.showMainWindow();
}

void Engine::checkMenuAction(const ActionsMenu& menu, int itemIndex) {
    if (impl_->busy || !gameInfo) return;
    if (itemIndex < 0 || itemIndex >= ActionsMenu::kItemCount) return;
    EngineContext& ctx = impl_->ctx;
    if (ctx.host.currentEvent().type == kEventTypeKeyDown || ctx.gamePaused != 0) return;
    const ActionsMenuItem& item = menu.item(itemIndex);
    if (!item.enabled) return;
    Impl::Busy busy(impl_->busy);
    if (const SupportedUserEvent* u = impl_->input.charIsUserAction(item.keyEquivalent))
        impl_->input.processUserEvent(*u);
}

void Engine::processEvents() {
    if (impl_->busy) return;
    Impl::Busy busy(impl_->busy);
    impl_->dispatcher.processEvents();
}

void Engine::checkUserEvents() {
    if (impl_->busy) return;
    Impl::Busy busy(impl_->busy);
    impl_->input.checkUserEvents();
}

bool Engine::performKeyEquivalent(const CurrentEvent& event) const {
    if (!gameInfo || event.type != kEventTypeKeyDown) return false;
    const std::int8_t c = event.characters.empty() ? 0 : static_cast<std::int8_t>(event.characters[0]);
    return impl_->input.charIsUserAction(c) != nullptr;
}

int Engine::gameStarted() const { return impl_->ctx.gameStarted; }
int Engine::gamePaused() const { return impl_->ctx.gamePaused; }

void Engine::printBoardColors() const {
    if (gameInfo) tolvar::printBoardColors(*gameInfo);
}
const BoardPiece* Engine::downPiece() const { return impl_->ctx.downPiece; }
const BoardPiece* Engine::upPiece() const { return impl_->ctx.upPiece; }

}  // namespace tolvar
