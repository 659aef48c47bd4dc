#include "desktop/HelpWindow.h"

#include <imgui.h>

#include "core/Translate.h"
#include "desktop/DisplayScale.h"
#include "desktop/ProgramKeys.h"
#include "rules/ShownText.h"

#ifndef TOLVAR_VERSION
#define TOLVAR_VERSION "unknown"
#endif

namespace tolvar {

HelpWindow::HelpWindow(const std::string& fontFile, float fontPixels)
    : surface_(tr("Tolvar Help"), 700, 60, kWidth, kHeight, SDL_WINDOW_ALLOW_HIGHDPI, fontFile, fontPixels,
               displayScale()) {}

void HelpWindow::showPage(const char* title) {
    SDL_SetWindowTitle(surface_.sdlWindow(), title);
    surface_.show();
}

void HelpWindow::showGame(GameHelp help) {
    help_ = std::move(help);
    page_ = Page::Game;
    const std::string title = titleNaming(help_.title, tr("Tolvar Help"));
    showPage(title.c_str());
}

void HelpWindow::showAbout() {
    page_ = Page::About;
    showPage(tr("About Tolvar"));
}

void HelpWindow::showWritingGames(std::string problem, std::string path) {
    problem_ = std::move(problem);
    pagePath_ = std::move(path);
    page_ = Page::WritingGames;
    showPage(tr("Writing Games"));
}

namespace {
void heading(ImFont* bold, const char* text) {
    if (bold) ImGui::PushFont(bold);
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextUnformatted(text);
    ImGui::PopTextWrapPos();
    if (bold) ImGui::PopFont();
}
}  // namespace

void HelpWindow::drawGame() {
    ImFont* bold = surface_.boldFont();
    heading(bold, help_.title.empty() ? tr("No game chosen") : help_.title.c_str());
    description_.draw({{help_.title.empty() ? tr("Choose a game in the main window to read how it is played.")
                                            : help_.description}});
    if (!help_.inputs.empty()) {
        ImGui::Dummy(ImVec2(0, 4));
        heading(bold, tr("Playing"));
        for (const std::string& line : help_.inputs) ImGui::BulletText("%s", line.c_str());
    }
    ImGui::Dummy(ImVec2(0, 4));
    heading(bold, tr("Keys"));
    if (ImGui::BeginTable("##keys", 2)) {
        ImGui::TableSetupColumn("keys", ImGuiTableColumnFlags_WidthFixed);
        ImGui::TableSetupColumn("what", ImGuiTableColumnFlags_WidthStretch);
        for (const auto& [keys, what] : programKeysHelp()) {
            ImGui::TableNextRow();
            ImGui::TableNextColumn();
            ImGui::TextUnformatted(tr(keys.c_str()));
            ImGui::TableNextColumn();
            ImGui::PushTextWrapPos(0.0f);
            ImGui::TextUnformatted(tr(what.c_str()));
            ImGui::PopTextWrapPos();
        }
        ImGui::EndTable();
    }
}

void HelpWindow::drawAbout() {
    heading(surface_.boldFont(), "Tolvar");
    ImGui::TextUnformatted(trf("Version %s", TOLVAR_VERSION).c_str());
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextUnformatted(
        tr("Puzzle games that are data: each game is a rules dictionary in RulesDict.dict, "
           "which any text editor can change."));
    ImGui::PopTextWrapPos();
}

void HelpWindow::drawWritingGames() {
    heading(surface_.boldFont(), tr("Writing Games"));
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextUnformatted(problem_.c_str());
    ImGui::Dummy(ImVec2(0, 4));
    ImGui::TextUnformatted(tr("The page for rules authors, how to write a game of your own, is the file:"));
    ImGui::PopTextWrapPos();
    // Read-only, but it can be selected and copied.
    ImGui::SetNextItemWidth(-1.0f);
    ImGui::InputText("##path", pagePath_.data(), pagePath_.size() + 1, ImGuiInputTextFlags_ReadOnly);
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextUnformatted(tr("Any text editor shows it; a Markdown viewer shows it formatted."));
    ImGui::PopTextWrapPos();
}

bool HelpWindow::draw() {
    bool keepOpen = true;
    surface_.beginFrame();
    const ImGuiIO& io = ImGui::GetIO();
    ImGui::SetNextWindowPos(ImVec2(0, 0));
    ImGui::SetNextWindowSize(io.DisplaySize);
    ImGui::Begin("##help", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings);
    const float scale = surface_.scale();
    const float closeHeight = ImGui::GetFrameHeight() + ImGui::GetStyle().ItemSpacing.y + 8.0f * scale;
    ImGui::BeginChild("##page", ImVec2(0, -closeHeight));
    switch (page_) {
        case Page::Game: drawGame(); break;
        case Page::About: drawAbout(); break;
        case Page::WritingGames: drawWritingGames(); break;
    }
    ImGui::EndChild();
    const float buttonWidth = 120.0f * scale;
    ImGui::SetCursorPosY(ImGui::GetWindowHeight() - ImGui::GetStyle().WindowPadding.y - ImGui::GetFrameHeight());
    ImGui::SetCursorPosX(ImGui::GetWindowContentRegionMax().x - buttonWidth);
    if (ImGui::Button(tr("Close"), ImVec2(buttonWidth, 0))) keepOpen = false;
    ImGui::End();
    surface_.endFrame();
    return keepOpen;
}

}  // namespace tolvar
