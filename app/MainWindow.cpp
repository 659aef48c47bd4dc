#include "MainWindow.h"

#include <imgui.h>

namespace tolvar {

MainWindow::MainWindow(const std::string& fontFile, float fontPixels)
    : surface_("Tolvar", 60, 60, kWidth, kHeight, SDL_WINDOW_ALLOW_HIGHDPI, fontFile, fontPixels) {}

namespace {

// "line 7, column 26: error: BoardWidth: ..." (the path of keys when the file has no lines).
std::string problemLine(const checker::Problem& p) {
    std::string where = p.at.line > 0 ? "line " + std::to_string(p.at.line) + ", column " + std::to_string(p.at.column)
                                      : p.path;
    if (!where.empty()) where += ": ";
    return where + (p.severity == checker::Severity::Error ? "error: " : "warning: ") +
           (p.key.empty() ? std::string() : p.key + ": ") + p.message;
}

}  // namespace

void MainWindow::drawProblems(const GameLibrary& library, const RulesWatch& rules) {
    const checker::CheckReport& report = rules.report();
    std::vector<checker::Problem> shown = report.fileProblems();
    if (library.currentRules())
        for (checker::Problem& p : report.problemsOf(library.selectedTitle())) shown.push_back(std::move(p));
    if (shown.empty()) return;
    if (!library.descriptionText().empty()) {
        ImGui::Dummy(ImVec2(0, 6));
        ImGui::Separator();
    }
    const bool unreadable = !report.rules.has_value();
    const std::string heading = unreadable ? "The rules file " + rules.path() + " cannot be read:"
                                           : "In " + rules.path() + ":";
    ImGui::TextUnformatted(heading.c_str());
    for (const checker::Problem& p : shown) {
        const bool error = p.severity == checker::Severity::Error;
        ImGui::PushStyleColor(ImGuiCol_Text, error ? ImVec4(0.75f, 0.0f, 0.0f, 1.0f) : ImVec4(0.6f, 0.4f, 0.0f, 1.0f));
        ImGui::TextUnformatted(problemLine(p).c_str());
        ImGui::PopStyleColor();
    }
}

std::vector<ShellCommand> MainWindow::draw(const GameLibrary& library, const ActionsMenu& menu,
                                           const GameMenuState& game, bool gameRunning, const RulesWatch& rules,
                                           bool canContinue, const std::string& note) {
    const bool refused = library.currentRules() && rules.refuses(library.selectedTitle());
    std::vector<ShellCommand> commands;
    surface_.beginFrame();
    const ImGuiIO& io = ImGui::GetIO();
    ImGui::SetNextWindowPos(ImVec2(0, 0));
    ImGui::SetNextWindowSize(io.DisplaySize);
    const ImGuiWindowFlags flags = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                                   ImGuiWindowFlags_NoResize | ImGuiWindowFlags_MenuBar |
                                   ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_NoBringToFrontOnFocus;
    ImGui::Begin("##main", nullptr, flags);

    if (ImGui::BeginMenuBar()) {
        if (ImGui::BeginMenu("Tolvar")) {
            if (ImGui::MenuItem("Start Game", nullptr, false, library.currentRules() != nullptr && !refused))
                commands.push_back({ShellCommand::Kind::StartGame, {}, -1});
            if (ImGui::MenuItem("Return to Main Window", "Ctrl+W", false, gameRunning))
                commands.push_back({ShellCommand::Kind::ReturnToMain, {}, -1});
            ImGui::Separator();
            if (ImGui::MenuItem("Quit", "Ctrl+Q")) commands.push_back({ShellCommand::Kind::Quit, {}, -1});
            ImGui::EndMenu();
        }
        if (ImGui::BeginMenu(menu.title().c_str(), menu.enabled())) {
            for (int i = 0; i < ActionsMenu::kItemCount; ++i) {
                const ActionsMenuItem& item = menu.item(i);
                const std::string shortcut = keyEquivalentLabel(item.keyEquivalent);
                const std::string label = item.title + "##action" + std::to_string(i);
                if (ImGui::MenuItem(label.c_str(), shortcut.empty() ? nullptr : shortcut.c_str(), false,
                                    item.enabled))
                    commands.push_back({ShellCommand::Kind::MenuAction, {}, i});
            }
            ImGui::EndMenu();
        }
        if (ImGui::BeginMenu("Game")) {
            for (const GameMenuItem& item : gameMenuItems())
                if (ImGui::MenuItem(item.title, item.keys, false, game.enabled(item.command)))
                    commands.push_back({ShellCommand::Kind::Program, {}, -1, item.command});
            ImGui::EndMenu();
        }
        if (ImGui::BeginMenu("Help")) {
            if (ImGui::MenuItem("Game Help", "F1"))
                commands.push_back({ShellCommand::Kind::Program, {}, -1, ProgramCommand::Help});
            if (ImGui::MenuItem("Writing Games"))
                commands.push_back({ShellCommand::Kind::Program, {}, -1, ProgramCommand::WritingGames});
            ImGui::Separator();
            if (ImGui::MenuItem("About Tolvar"))
                commands.push_back({ShellCommand::Kind::Program, {}, -1, ProgramCommand::About});
            ImGui::EndMenu();
        }
        ImGui::EndMenuBar();
    }

    ImGui::Dummy(ImVec2(0, 2));
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted("Game");
    ImGui::SameLine(80);
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x);
    const std::string& selected = library.selectedTitle();
    if (ImGui::BeginCombo("##game", selected.c_str())) {
        for (const std::string& title : library.gameMenu()) {
            const bool isSelected = title == selected;
            if (ImGui::Selectable(title.c_str(), isSelected))
                commands.push_back({ShellCommand::Kind::SelectGame, title, -1});
            if (isSelected) ImGui::SetItemDefaultFocus();
        }
        ImGui::EndCombo();
    }

    ImGui::Dummy(ImVec2(0, 4));
    const std::string heading = library.currentRules() ? selected : std::string("Choose a game");
    if (surface_.boldFont()) ImGui::PushFont(surface_.boldFont());
    ImGui::TextUnformatted(heading.c_str());
    if (surface_.boldFont()) ImGui::PopFont();

    // The description: read-only, wrapped, scrolling.
    const float buttonsHeight = ImGui::GetFrameHeight() + ImGui::GetStyle().ItemSpacing.y + 8.0f;
    ImGui::PushStyleColor(ImGuiCol_ChildBg, ImVec4(1, 1, 1, 1));
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, ImVec2(12, 10));
    ImGui::BeginChild("##description", ImVec2(0, -buttonsHeight), true, ImGuiWindowFlags_AlwaysUseWindowPadding);
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextUnformatted(library.descriptionText().c_str());
    drawProblems(library, rules);
    if (!note.empty()) {
        ImGui::Dummy(ImVec2(0, 6));
        ImGui::TextColored(ImVec4(0.75f, 0.0f, 0.0f, 1.0f), "%s", note.c_str());
    }
    ImGui::PopTextWrapPos();
    ImGui::EndChild();
    ImGui::PopStyleVar();
    ImGui::PopStyleColor();

    // Start and Return sit at the bottom right, as in a dialog.
    const float buttonWidth = 120.0f;
    ImGui::SetCursorPosY(ImGui::GetWindowHeight() - ImGui::GetStyle().WindowPadding.y - ImGui::GetFrameHeight());
    if (refused) {
        ImGui::AlignTextToFramePadding();
        ImGui::TextColored(ImVec4(0.75f, 0.0f, 0.0f, 1.0f), "Fix the errors above.");
        ImGui::SameLine();
    }
    const float right = ImGui::GetWindowContentRegionMax().x;
    ImGui::SetCursorPosX(right - 3 * buttonWidth - 2 * ImGui::GetStyle().ItemSpacing.x);
    ImGui::BeginDisabled(!canContinue);
    if (ImGui::Button("Continue", ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::ContinueGame, {}, -1});
    ImGui::EndDisabled();
    ImGui::SameLine();
    if (ImGui::Button("Return", ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::ReturnToMain, {}, -1});
    ImGui::SameLine();
    ImGui::BeginDisabled(refused);
    if (ImGui::Button("Start", ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::StartGame, {}, -1});
    ImGui::EndDisabled();

    ImGui::End();
    surface_.endFrame();
    return commands;
}

ActionsPopup::ActionsPopup(const std::string& fontFile, float fontPixels)
    : surface_("Actions", 0, 0, kWidth, kHeight,
               SDL_WINDOW_POPUP_MENU | SDL_WINDOW_BORDERLESS | SDL_WINDOW_SKIP_TASKBAR | SDL_WINDOW_ALWAYS_ON_TOP,
               fontFile, fontPixels) {}

void ActionsPopup::openAt(int x, int y) {
    // Kept whole on the screen: near the right or bottom edge it opens to the left or upward.
    SDL_Rect bounds{0, 0, 0, 0};
    if (SDL_GetDisplayBounds(0, &bounds) == 0 && bounds.w > kWidth && bounds.h > kHeight) {
        if (x + kWidth > bounds.x + bounds.w) x -= kWidth;
        if (y + kHeight > bounds.y + bounds.h) y -= kHeight;
        if (x < bounds.x) x = bounds.x;
        if (y < bounds.y) y = bounds.y;
    }
    SDL_SetWindowPosition(surface_.sdlWindow(), x, y);
    SDL_ShowWindow(surface_.sdlWindow());
    SDL_RaiseWindow(surface_.sdlWindow());
}

void ActionsPopup::close() { surface_.hide(); }

namespace {
// One row of the pop-up: its title at the left, its keys at the right, grey when not possible.
bool popupRow(const char* id, float y, float width, const std::string& title, const std::string& keys, bool enabled) {
    const float rowHeight = static_cast<float>(ActionsPopup::kRowHeight);
    ImGui::SetCursorPos(ImVec2(0, y));
    const ImGuiSelectableFlags flags = enabled ? 0 : ImGuiSelectableFlags_Disabled;
    const bool chosen = ImGui::Selectable(id, false, flags, ImVec2(width, rowHeight)) && enabled;
    const float textY = y + (rowHeight - ImGui::GetTextLineHeight()) * 0.5f;
    ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled));
    ImGui::SetCursorPos(ImVec2(16, textY));
    ImGui::TextUnformatted(title.c_str());
    if (!keys.empty()) {
        ImGui::SetCursorPos(ImVec2(width - 16 - ImGui::CalcTextSize(keys.c_str()).x, textY));
        ImGui::TextUnformatted(keys.c_str());
    }
    ImGui::PopStyleColor();
    return chosen;
}

void popupSeparator(float y) {
    ImGui::SetCursorPos(ImVec2(8, y + ActionsPopup::kSeparatorHeight / 2.0f));
    ImGui::Separator();
}
}  // namespace

ActionsPopup::Choice ActionsPopup::draw(const ActionsMenu& menu, const GameMenuState& game) {
    Choice choice;
    surface_.beginFrame();
    const ImGuiIO& io = ImGui::GetIO();
    ImGui::SetNextWindowPos(ImVec2(0, 0));
    ImGui::SetNextWindowSize(io.DisplaySize);
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, ImVec2(0, static_cast<float>(kPadding)));
    ImGui::PushStyleVar(ImGuiStyleVar_ItemSpacing, ImVec2(0, 0));
    ImGui::PushStyleVar(ImGuiStyleVar_WindowBorderSize, 1.0f);
    ImGui::Begin("##actions", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings);
    const float width = io.DisplaySize.x;
    float y = static_cast<float>(kPadding);
    for (int i = 0; i < ActionsMenu::kItemCount; ++i, y += kRowHeight) {
        const ActionsMenuItem& item = menu.item(i);
        const std::string id = "##item" + std::to_string(i);
        if (popupRow(id.c_str(), y, width, item.title, keyEquivalentLabel(item.keyEquivalent),
                     menu.enabled() && item.enabled)) {
            choice.kind = Choice::Kind::Action;
            choice.actionIndex = i;
        }
    }
    popupSeparator(y);
    y += kSeparatorHeight;
    for (const GameMenuItem& item : gameMenuItems()) {
        const std::string id = std::string("##game") + item.title;
        if (popupRow(id.c_str(), y, width, item.title, item.keys, game.enabled(item.command))) {
            choice.kind = Choice::Kind::Game;
            choice.command = item.command;
        }
        y += kRowHeight;
    }
    // Leaving the game, for a player whose main window is hidden.
    popupSeparator(y);
    y += kSeparatorHeight;
    if (popupRow("##return", y, width, "Return to Main Window", "Ctrl+W", true))
        choice.kind = Choice::Kind::ReturnToMain;
    ImGui::End();
    ImGui::PopStyleVar(3);
    surface_.endFrame();
    return choice;
}

}  // namespace tolvar
