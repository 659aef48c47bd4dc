#include "engine/StandInShell.h"

namespace tolvar {

void StandInHost::runAlert(const std::string& title, const std::string& message, const std::string& button) {
    alerts.push_back(title + "|" + message + "|" + button);
    if (!printed_) return;
    std::fputs("alert: ", printed_);
    std::fwrite(message.data(), 1, message.size(), printed_);
    std::fprintf(printed_, " [%s]\n", button.c_str());
}

void StandInView::drawBoard(const GameInfo&) {
    ++draws;
    if (onDraw) onDraw();
}

void StandInView::animatePiece(const GameInfo&, const BoardPiece& piece, std::uint32_t x, std::uint32_t y,
                               std::uint32_t toX, std::uint32_t toY) {
    if (!recordMoves) return;
    auto text = [](auto... n) { return ((std::to_string(n) + " ") + ...); };
    moves.push_back(text(piece.pieceID) + "from " + text(x, y) + "to " + text(toX, toY));
}

void StandInView::displayScores(const Value& scores, int highlight) {
    ++scoreScreens;
    if (printed_) {
        constexpr std::size_t kScoresShown = 20;
        std::fprintf(printed_, "scores highlight=%d:", highlight);
        if (const Array* entries = scores.asArray()) {
            for (std::size_t i = 0; i < entries->size() && i < kScoresShown; ++i) {
                std::int32_t score = 0;
                if (const Dictionary* entry = (*entries)[i].asDictionary())
                    if (const Value* v = entry->find("Score")) score = v->intValue().value_or(0);
                std::fprintf(printed_, " %d", static_cast<int>(score));
            }
        }
        std::fputc('\n', printed_);
    }
    if (!host_.scoresTimerRunning()) host_.startScoresTimer(scores);
}

}  // namespace tolvar
