// The desktop as the headless runner stands in for it: alerts and the score screen become
// lines on standard output, drawing and delays do nothing, timers run only when told.
#pragma once

#include <string>

#include "engine/QuietShell.h"

namespace tolvar::sim {

class HeadlessHost : public QuietHost {
public:
    // "alert: MESSAGE [BUTTON]", dismissed at once.
    void runAlert(const std::string& title, const std::string& message,
                  const std::string& button) override;
    HeadlessHost();  // best scores in the player's data folder
};

class HeadlessView : public QuietView {
public:
    explicit HeadlessView(Host& host) : host_(host) {}
    // "scores highlight=H:" and the first 20 scores; the score timer is started, never fires.
    void displayScores(const Value& scores, int highlight) override;

private:
    Host& host_;
};

}  // namespace tolvar::sim
