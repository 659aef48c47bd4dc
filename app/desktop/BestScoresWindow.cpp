#include "desktop/BestScoresWindow.h"

#include <imgui.h>

#include "core/Translate.h"
#include "desktop/DisplayScale.h"
#include "rules/ShownText.h"

namespace tolvar {

namespace {
const ImVec4 kNewestColour(0.0f, 0.36f, 0.75f, 1.0f);  // the row entered last, and its mark
const ImVec4 kProblemColour(0.75f, 0.0f, 0.0f, 1.0f);
constexpr float kRankColumnWidth = 48.0f;
constexpr float kScoreColumnWidth = 90.0f;
constexpr float kNewestColumnWidth = 70.0f;
constexpr float kCloseButtonWidth = 120.0f;
}  // namespace

BestScoresWindow::BestScoresWindow(const std::string& fontFile, float fontPixels)
    : surface_(tr("Best Scores - Tolvar"), 660, 80, kWidth, kHeight, SDL_WINDOW_ALLOW_HIGHDPI | SDL_WINDOW_RESIZABLE,
               fontFile, fontPixels, displayScale()) {}

void BestScoresWindow::open(const std::string& path, std::vector<std::string> gameNames) {
    path_ = path;
    gameNames_ = std::move(gameNames);
    read();
    surface_.show();
}

void BestScoresWindow::read() {
    stamp_ = FileStamp::of(path_);
    listing_ = readBestScores(path_, gameNames_);
}

bool BestScoresWindow::reloadWhenChanged() {
    if (!isOpen() || FileStamp::of(path_) == stamp_) return false;
    read();
    return true;
}

void BestScoresWindow::drawTable(const BestScoreTable& table) {
    if (table.rows.empty()) {
        ImGui::TextDisabled("%s", tr("No scores yet."));
        return;
    }
    const ImGuiTableFlags flags = ImGuiTableFlags_RowBg | ImGuiTableFlags_BordersInnerH | ImGuiTableFlags_SizingFixedFit;
    if (!ImGui::BeginTable(("##" + table.name).c_str(), 4, flags)) return;
    ImGui::TableSetupColumn(tr("Rank"), ImGuiTableColumnFlags_WidthFixed, kRankColumnWidth * surface_.scale());
    ImGui::TableSetupColumn(tr("Score"), ImGuiTableColumnFlags_WidthFixed, kScoreColumnWidth * surface_.scale());
    ImGui::TableSetupColumn(tr("Date"), ImGuiTableColumnFlags_WidthStretch);
    ImGui::TableSetupColumn("", ImGuiTableColumnFlags_WidthFixed, kNewestColumnWidth * surface_.scale());
    ImGui::TableHeadersRow();
    for (const BestScoreRow& row : table.rows) {
        ImGui::TableNextRow();
        if (row.newest) ImGui::PushStyleColor(ImGuiCol_Text, kNewestColour);
        ImGui::TableNextColumn();
        ImGui::Text("#%d", row.rank);
        ImGui::TableNextColumn();
        ImGui::Text("%d", static_cast<int>(row.score));
        ImGui::TableNextColumn();
        ImGui::TextUnformatted(row.date.empty() ? "\xE2\x80\x94" : row.date.c_str());
        ImGui::TableNextColumn();
        if (row.newest) {
            ImGui::TextUnformatted(tr("newest"));
            ImGui::PopStyleColor();
        }
    }
    ImGui::EndTable();
}

bool BestScoresWindow::draw() {
    bool keepOpen = true;
    surface_.beginFrame();
    const ImGuiIO& io = ImGui::GetIO();
    ImGui::SetNextWindowPos(ImVec2(0, 0));
    ImGui::SetNextWindowSize(io.DisplaySize);
    ImGui::Begin("##bestscores", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings);
    const float closeHeight = ImGui::GetFrameHeight() + ImGui::GetStyle().ItemSpacing.y + 8.0f;
    ImGui::BeginChild("##tables", ImVec2(0, -closeHeight));
    ImFont* bold = surface_.boldFont();
    ImGui::PushTextWrapPos(0.0f);
    if (!listing_.problem.empty()) ImGui::TextColored(kProblemColour, "%s", listing_.problem.c_str());
    else if (listing_.noFile)
        ImGui::TextUnformatted(trf("No best scores yet: a game's scores are kept in %s once it ends.", path_).c_str());
    else if (listing_.groups.empty()) ImGui::TextUnformatted(trf("No best scores yet in %s.", path_).c_str());
    for (const std::string& name : listing_.unreadableTables)
        ImGui::TextColored(kProblemColour, "%s",
                           trf("The table \"%s\" is not a list of scores; it is left out.",
                               shownLine(name, kShownNameCharacters))
                               .c_str());
    ImGui::PopTextWrapPos();
    for (const BestScoreGroup& group : listing_.groups) {
        if (bold) ImGui::PushFont(bold);
        ImGui::TextUnformatted(shownLine(group.game, kShownNameCharacters).c_str());
        if (bold) ImGui::PopFont();
        for (const BestScoreTable& table : group.tables) {
            // A game's other sizes are named after it; its own table needs no heading of its own.
            if (table.name != group.game || group.tables.size() > 1)
                ImGui::TextUnformatted(shownLine(table.name, kShownNameCharacters).c_str());
            drawTable(table);
        }
        ImGui::Dummy(ImVec2(0, 6));
    }
    ImGui::EndChild();
    ImGui::SetCursorPosY(ImGui::GetWindowHeight() - ImGui::GetStyle().WindowPadding.y - ImGui::GetFrameHeight());
    ImGui::SetCursorPosX(ImGui::GetWindowContentRegionMax().x - kCloseButtonWidth * surface_.scale());
    if (ImGui::Button(tr("Close"), ImVec2(kCloseButtonWidth * surface_.scale(), 0))) keepOpen = false;
    ImGui::End();
    surface_.endFrame();
    return keepOpen;
}

}  // namespace tolvar
