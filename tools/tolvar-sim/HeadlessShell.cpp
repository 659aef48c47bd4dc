#include "HeadlessShell.h"

#include <cstdio>

#include "core/DataFolder.h"

namespace tolvar::sim {

void HeadlessHost::runAlert(const std::string&, const std::string& message,
                            const std::string& button) {
    std::fputs("alert: ", stdout);
    std::fwrite(message.data(), 1, message.size(), stdout);
    std::printf(" [%s]\n", button.c_str());
}

HeadlessHost::HeadlessHost() : QuietHost(tolvarFolderPath()) {}

void HeadlessView::displayScores(const Value& scores, int highlight) {
    std::printf("scores highlight=%d:", highlight);
    if (const Array* entries = scores.asArray()) {
        for (std::size_t i = 0; i < entries->size() && i < 20; ++i) {
            std::int32_t score = 0;
            if (const Dictionary* entry = (*entries)[i].asDictionary())
                if (const Value* v = entry->find("Score")) score = v->intValue().value_or(0);
            std::printf(" %d", static_cast<int>(score));
        }
    }
    std::printf("\n");
    if (!host_.scoresTimerRunning()) host_.startScoresTimer(scores);
}

}  // namespace tolvar::sim
