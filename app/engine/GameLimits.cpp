#include "engine/GameLimits.h"

#include <algorithm>

#include "engine/BoardLayout.h"
#include "engine/BoardSetup.h"

namespace tolvar {

namespace {

constexpr unsigned kLeastLinearColors = 2;  // a run of one colour is broken with another

std::string rangeText(const char* what, const ChoiceRange& range) {
    return std::string("the ") + what + " is " + std::to_string(range.least) + " to " + std::to_string(range.most);
}

}  // namespace

ChoiceRange heightRange() { return {1, kMostBoardSide}; }

unsigned widestSquareBoard(const GameInfo& game) {
    const BoardLayout layout = computeBoardLayout(game);
    auto widest = static_cast<unsigned>(winWidth / layout.w);
    while (widest > 1 && layout.w * static_cast<float>(widest) > winWidth) --widest;
    return widest;
}

ChoiceRange widthRange(const GameInfo& game, unsigned height) {
    if (!game.squareShapes) return {1, kMostBoardSide};
    GameInfo sized;
    sized.hasLauncher = game.hasLauncher;
    sized.squareShapes = game.squareShapes;
    sized.boardHeight = static_cast<std::uint8_t>(std::clamp(height, 1u, kMostBoardSide));
    sized.boardWidth = 1;
    return {1, std::clamp(widestSquareBoard(sized), 1u, kMostBoardSide)};
}

ChoiceRange colorRange(const GameInfo& game) {
    return {game.setupMaxLinearColors != 0 ? kLeastLinearColors : 1u, kDrawnColorCount};
}

std::string optionsProblem(const GameInfo& game, const GameOptions& options) {
    const unsigned height = options.boardHeight.value_or(game.boardHeight);
    if (options.boardHeight && !heightRange().holds(*options.boardHeight)) return rangeText("height", heightRange());
    if (options.boardWidth) {
        const ChoiceRange width = widthRange(game, height);
        if (!width.holds(*options.boardWidth))
            return rangeText("width", width) + (game.squareShapes ? " at a height of " + std::to_string(height) : "");
    }
    if (options.numColors && !colorRange(game).holds(*options.numColors))
        return rangeText("number of colours", colorRange(game));
    return {};
}

GameOptions optionsWithinLimits(const GameInfo& game, const GameOptions& options) {
    GameOptions kept = options;
    if (kept.boardHeight && !heightRange().holds(*kept.boardHeight)) kept.boardHeight.reset();
    if (kept.numColors && !colorRange(game).holds(*kept.numColors)) kept.numColors.reset();
    if (kept.boardWidth || kept.boardHeight) {
        const ChoiceRange width = widthRange(game, kept.boardHeight.value_or(game.boardHeight));
        if (const unsigned columns = kept.boardWidth.value_or(game.boardWidth); !width.holds(columns))
            kept.boardWidth = static_cast<std::uint8_t>(width.clamp(columns));
    }
    return kept;
}

}  // namespace tolvar
