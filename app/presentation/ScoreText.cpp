#include "presentation/ScoreText.h"

#include "core/Translate.h"

#include <cstdio>
#include <ctime>

namespace tolvar {

namespace {

// snprintf into a buffer of size bytes; the text as far as it fits.
template <typename... Args>
std::string formatCut(std::size_t size, const char* format, Args... args) {
    char buffer[kScreenTextSize];
    if (size > sizeof buffer) size = sizeof buffer;
    int wanted = std::snprintf(buffer, size, format, args...);
    if (wanted < 0) return std::string();
    return std::string(buffer);
}

}  // namespace

std::string boardScoreText(std::uint64_t score) {
    return formatCut(kScoreTextSize, "%04lld", static_cast<long long>(score));
}

std::string movePreviewText(std::int64_t points, std::uint64_t pieces) {
    const unsigned long size = points < 0 ? 0UL - static_cast<unsigned long>(points) : static_cast<unsigned long>(points);
    const std::string scored =
        formatCut(kScreenTextSize, "%+lld %s", static_cast<long long>(points), trn("point", "points", size));
    if (pieces == 0) return points == 0 ? std::string() : scored;
    return scored + formatCut(kScreenTextSize, ", %llu %s", static_cast<unsigned long long>(pieces),
                              trn("piece", "pieces", static_cast<unsigned long>(pieces)));
}

std::string boardNumberText(std::uint32_t boardNumber) {
    return boardNumber == 0 ? std::string() : trf("Board %s", std::to_string(boardNumber));
}

std::string boardGameNameText(const std::string& gameName) {
    std::size_t length = gameName.size();
    if (length < kGameNameSize) return gameName;
    length = kGameNameSize - 1;
    // Step back over continuation bytes so a character is never split.
    while (length > 0 && (static_cast<unsigned char>(gameName[length]) & 0xC0) == 0x80) --length;
    return gameName.substr(0, length);
}

std::string scoreDateText(const Date* date) {
    if (!date) return std::string();
    double seconds = date->unixTime();
    // Dates far outside what the calendar functions handle are shown as nothing.
    if (!(seconds > -1.0e15 && seconds < 1.0e15)) return std::string();
    std::time_t when = static_cast<std::time_t>(seconds);
    std::tm local{};
    if (!localtime_r(&when, &local)) return std::string();
    char buffer[kScreenTextSize];
    std::size_t n = std::strftime(buffer, sizeof buffer, "%b %d, %Y %H:%M", &local);
    return std::string(buffer, n);
}

std::string scoreRankText(int index) { return formatCut(kScreenTextSize, "#%d", index + 1); }

std::string rowScoreText(std::int32_t score) { return formatCut(kScreenTextSize, "%04d", static_cast<int>(score)); }

std::string lastScoreText(std::uint64_t score) {
    return formatCut(kScreenTextSize, "%04d", static_cast<int>(static_cast<std::int32_t>(score)));
}

std::size_t scoreEntryCount(const Value& scores) {
    const Array* list = scores.asArray();
    return list ? list->size() : 0;
}

ScoreEntry scoreEntryAt(const Value& scores, std::size_t index) {
    ScoreEntry entry;
    const Array* list = scores.asArray();
    if (!list || index >= list->size()) return entry;
    const Dictionary* fields = (*list)[index].asDictionary();
    if (!fields) return entry;
    if (const Value* score = fields->find("Score")) entry.score = score->intValue().value_or(0);
    if (const Value* date = fields->find("Date")) entry.date = date->asDate();
    return entry;
}

}  // namespace tolvar
