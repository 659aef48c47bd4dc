#include "engine/MovePreview.h"

#include "engine/Dispatcher.h"
#include "engine/GameSnapshot.h"
#include "engine/StandInShell.h"
#include "engine/UserInput.h"

namespace tolvar {

namespace {
// Any key code but Escape's, whose restart is a key of its own.
constexpr std::uint16_t kPreviewKeyCode = 0;
static_assert(kPreviewKeyCode != kKeyCodeEscape);
constexpr char kEscapeCharacter = '\x1b';

CurrentEvent pointerEvent(std::int64_t type, float x, float y) {
    CurrentEvent event;
    event.type = type;
    event.x = x;
    event.y = y;
    return event;
}

CurrentEvent keyDown(std::int8_t key) {
    CurrentEvent event;
    event.type = kEventTypeKeyDown;
    event.keyCode = key == kEscapeCharacter ? kKeyCodeEscape : kPreviewKeyCode;
    event.characters = std::string(1, static_cast<char>(key));
    return event;
}
}  // namespace

std::optional<MovePreview> previewMove(const EngineContext& ctx, const PreviewGesture& gesture) {
    // Its own desktop, which shows nothing and keeps best scores in memory, and no output.
    StandInHost host;
    StandInView view(host);
    EngineContext copy(view, host, GameOutput::discarded());
    copy.gameInfo = copyOfGame(ctx.game());
    const GameSnapshot before = takeSnapshot(ctx);
    restoreSnapshot(copy, before);
    copy.tally.emplace();

    UserInput input(copy);
    Dispatcher dispatcher(copy);
    input.handleEvent(pointerEvent(kEventTypeMouseDown, gesture.x1, gesture.y1));
    input.handleEvent(pointerEvent(kEventTypeMouseUp, gesture.x2, gesture.y2));
    dispatcher.processEvents();
    if (gesture.key != 0) {
        input.handleEvent(keyDown(gesture.key));
        dispatcher.processEvents();
    }
    if (before.sameGameAs(copy)) return std::nullopt;

    MovePreview preview;
    preview.cells = std::move(copy.tally->firstRemoval);
    if (copy.tally->pieces == 0) {
        const Board board(copy.game(), copy.out);
        for (int x = 0; x < board.width(); ++x)
            for (int y = 0; y < board.height(); ++y)
                if (const BoardPiece& piece = board.getBoardPieceAtX(x, y); piece.pieceID != 0 && piece.selected != 0)
                    preview.cells.push_back({static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)});
    }
    preview.pieces = copy.tally->pieces;
    preview.score = copy.game().score;
    return preview;
}

}  // namespace tolvar
