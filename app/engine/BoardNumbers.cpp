#include "engine/BoardNumbers.h"

#include <cerrno>
#include <cstdlib>

#include "engine/BoardSetup.h"

namespace tolvar {

bool isBoardNumber(std::int64_t number) { return number >= kFirstBoardNumber && number <= kLastBoardNumber; }

std::optional<std::uint32_t> parseBoardNumber(const std::string& text, std::string* why) {
    const std::size_t first = text.find_first_not_of(" \t");
    const std::size_t last = text.find_last_not_of(" \t");
    const std::string digits = first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
    const bool allDigits = !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos;
    // Longer than the largest number: no need to read it.
    const bool fits = allDigits && digits.size() <= std::to_string(kLastBoardNumber).size();
    const std::int64_t number = fits ? std::strtoll(digits.c_str(), nullptr, 10) : 0;
    if (fits && isBoardNumber(number)) return static_cast<std::uint32_t>(number);
    if (why) {
        const std::string range =
            "a board number is a whole number from " + std::to_string(kFirstBoardNumber) + " to " +
            std::to_string(kLastBoardNumber);
        *why = digits.empty() ? "No board number given: " + range + "."
                              : "\"" + digits + "\" is no board number: " + range + ".";
    }
    return std::nullopt;
}

std::uint32_t pickBoardNumber(EngineContext& ctx) {
    const auto draw = static_cast<std::uint32_t>(ctx.boardPicks.next());
    return kFirstBoardNumber + draw % (kLastBoardNumber - kFirstBoardNumber + 1);
}

void dealBoard(EngineContext& ctx, std::uint32_t number) {
    ctx.random.seed(number);
    ctx.boardNumber = number;
    setupGame(ctx.game(), ctx.view, ctx.random, ctx.out);
}

}  // namespace tolvar
