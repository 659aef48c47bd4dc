// The best-score window (Game > Best Scores…, Ctrl+B, from the main window and the game window):
// every table of the best-score file, grouped by game, with ranks, scores and dates, the newest
// entry of each table marked. A window of its own, like help, so that it opens over the game
// window while the main window is put away, and stays open beside either. Read when it opens and
// again whenever the file changes while it is open; it scrolls, follows its size, and Escape or
// Ctrl+B closes it.
#pragma once

#include <string>
#include <vector>

#include "desktop/BestScoresList.h"
#include "desktop/FileStamp.h"
#include "desktop/ImGuiSurface.h"

namespace tolvar {

class BestScoresWindow {
public:
    static constexpr int kWidth = 600;
    static constexpr int kHeight = 560;

    BestScoresWindow(const std::string& fontFile, float fontPixels);

    bool valid() const { return surface_.valid(); }
    ImGuiSurface& surface() { return surface_; }
    bool isOpen() const { return surface_.isVisible(); }

    // Reads the file at path, the tables grouped under gameNames (see listBestScores), and shows
    // the window.
    void open(const std::string& path, std::vector<std::string> gameNames);
    // Reads the file again when it changed since it was read; true when it did.
    bool reloadWhenChanged();
    void close() { surface_.hide(); }

    // One frame; false when the player closed the window with its button.
    bool draw();

private:
    void read();
    void drawTable(const BestScoreTable& table);

    ImGuiSurface surface_;
    std::string path_;
    std::vector<std::string> gameNames_;
    FileStamp stamp_;  // the file as it was read
    BestScoresListing listing_;
};

}  // namespace tolvar
