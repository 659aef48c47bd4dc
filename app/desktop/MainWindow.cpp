#include "desktop/MainWindow.h"

#include <imgui.h>

#include "desktop/DisplayScale.h"
#include "core/Translate.h"
#include "rules/ShownText.h"

namespace tolvar {

MainWindow::MainWindow(const std::string& fontFile, float fontPixels)
    : surface_("Tolvar", 60, 60, kWidth, kHeight, SDL_WINDOW_ALLOW_HIGHDPI, fontFile, fontPixels, displayScale()) {}

namespace {

constexpr std::size_t kShownFindings = 100;  // the checker's findings listed under the description
const ImU32 kErrorColour = IM_COL32(191, 0, 0, 255);
const ImU32 kWarningColour = IM_COL32(153, 102, 0, 255);

// "line 7, column 26: error: BoardWidth: ..." (the path of keys when the file has no lines).
std::string problemLine(const checker::Problem& p) {
    std::string where = p.at.line > 0 ? trf("line %s, column %s", std::to_string(p.at.line), std::to_string(p.at.column))
                                      : shownLine(p.path, kShownLineCharacters);
    if (!where.empty()) where += ": ";
    return where + (p.severity == checker::Severity::Error ? tr("error: ") : tr("warning: ")) +
           (p.key.empty() ? std::string() : shownLine(p.key, kShownNameCharacters) + ": ") +
           shownLine(p.message, kShownLineCharacters);
}

}  // namespace

void MainWindow::addFindings(std::vector<Paragraph>& page, const GameLibrary& library, const RulesWatch& rules) {
    // The file's own problems first, then the chosen game's; a file can hold any number of them.
    const std::vector<checker::Problem>& problems = rules.report().problems;
    const std::string* game = library.currentRules() ? &library.selectedTitle() : nullptr;
    std::size_t total = 0;
    for (const checker::Problem& p : problems) total += p.game.empty() || (game && p.game == *game);
    if (total == 0) return;
    const bool unreadable = !rules.report().rules.has_value();
    page.push_back({unreadable ? trf("The rules file %s cannot be read:", rules.path()) : trf("In %s:", rules.path())});
    std::size_t shown = 0;
    for (const bool ofFile : {true, false}) {
        for (const checker::Problem& p : problems) {
            if (shown == kShownFindings) break;
            if (ofFile ? !p.game.empty() : !(game && !p.game.empty() && p.game == *game)) continue;
            const bool error = p.severity == checker::Severity::Error;
            page.push_back({problemLine(p), error ? kErrorColour : kWarningColour, false});
            ++shown;
        }
    }
    if (shown < total)
        page.push_back({trf("\xE2\x80\xA6 and %s more (tolvar-check lists them all)", std::to_string(total - shown)), 0,
                        false});
}

std::vector<ShellCommand> MainWindow::draw(const GameLibrary& library, const ActionsMenu& menu,
                                           const GameMenuState& game, bool gameRunning, const RulesWatch& rules,
                                           bool canContinue, const std::string& continueText,
                                           const std::string& note, std::uint32_t boardNumber,
                                           GameOptionsPanel& options) {
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
            if (ImGui::MenuItem(tr("Start Game"), nullptr, false, library.currentRules() != nullptr && !refused))
                commands.push_back({ShellCommand::Kind::StartGame, {}, -1});
            if (ImGui::MenuItem(tr("Return to Main Window"), "Ctrl+W", false, gameRunning))
                commands.push_back({ShellCommand::Kind::ReturnToMain, {}, -1});
            ImGui::Separator();
            if (ImGui::MenuItem(tr("Quit"), "Ctrl+Q")) commands.push_back({ShellCommand::Kind::Quit, {}, -1});
            ImGui::EndMenu();
        }
        if (ImGui::BeginMenu(menu.title().c_str(), menu.enabled())) {
            for (const int i : ActionsPopup::boundItems(menu)) {
                const ActionsMenuItem& item = menu.item(i);
                const std::string shortcut = keyEquivalentLabel(item.keyEquivalent);
                const std::string label = item.title + "##action" + std::to_string(i);
                if (ImGui::MenuItem(label.c_str(), shortcut.empty() ? nullptr : shortcut.c_str(), false,
                                    item.enabled))
                    commands.push_back({ShellCommand::Kind::MenuAction, {}, i});
            }
            ImGui::EndMenu();
        }
        if (ImGui::BeginMenu(tr("Game"))) {
            for (const GameMenuItem& item : gameMenuItems())
                if (ImGui::MenuItem(tr(item.title), item.keys, game.checked(item.command), game.enabled(item.command)))
                    commands.push_back({ShellCommand::Kind::Program, {}, -1, item.command});
            ImGui::Separator();
            if (ImGui::MenuItem(tr("Play Board Number\xE2\x80\xA6"), nullptr, false, library.currentRules() && !refused))
                boardNumberDialog_.open();
            if (ImGui::MenuItem(tr("Copy Board Number"), nullptr, false, boardNumber != 0))
                commands.push_back({ShellCommand::Kind::CopyBoardNumber, {}, -1});
            ImGui::EndMenu();
        }
        if (ImGui::BeginMenu(tr("Help"))) {
            if (ImGui::MenuItem(tr("Game Help"), "F1"))
                commands.push_back({ShellCommand::Kind::Program, {}, -1, ProgramCommand::Help});
            if (ImGui::MenuItem(tr("Writing Games")))
                commands.push_back({ShellCommand::Kind::Program, {}, -1, ProgramCommand::WritingGames});
            ImGui::Separator();
            if (ImGui::MenuItem(tr("About Tolvar")))
                commands.push_back({ShellCommand::Kind::Program, {}, -1, ProgramCommand::About});
            ImGui::EndMenu();
        }
        ImGui::EndMenuBar();
    }

    ImGui::Dummy(ImVec2(0, 2));
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted(tr("Game"));
    ImGui::SameLine(80 * surface_.scale());
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x);
    // A game's name is shown cut to a length a line holds; the commands carry it whole.
    const std::string& selected = library.selectedTitle();
    const std::string shownSelected = shownLine(selected, kShownNameCharacters);
    if (ImGui::BeginCombo("##game", shownSelected.c_str())) {
        const std::vector<std::string>& titles = library.gameMenu();
        ImGuiListClipper clipper;  // a file can hold any number of games
        clipper.Begin(static_cast<int>(titles.size()));
        while (clipper.Step()) {
            for (int i = clipper.DisplayStart; i < clipper.DisplayEnd; ++i) {
                const std::string& title = titles[static_cast<std::size_t>(i)];
                const bool isSelected = title == selected;
                const std::string label = shownLine(title, kShownNameCharacters) + "##" + std::to_string(i);
                if (ImGui::Selectable(label.c_str(), isSelected))
                    commands.push_back({ShellCommand::Kind::SelectGame, title, -1});
                if (isSelected) ImGui::SetItemDefaultFocus();
            }
        }
        ImGui::EndCombo();
    }

    ImGui::Dummy(ImVec2(0, 4));
    const std::string heading = library.currentRules() ? shownSelected : std::string(tr("Choose a game"));
    if (surface_.boldFont()) ImGui::PushFont(surface_.boldFont());
    ImGui::TextUnformatted(heading.c_str());  // one line, clipped at the window's edge
    if (surface_.boldFont()) ImGui::PopFont();
    if (boardNumber != 0) {
        ImGui::SameLine();
        ImGui::TextDisabled("%s", trf("Board %s", std::to_string(boardNumber)).c_str());
    }

    // The description: read-only, wrapped, scrolling; under it, which game Continue goes on with.
    const float continueHeight = continueText.empty() ? 0.0f : ImGui::GetTextLineHeightWithSpacing();
    const float scale = surface_.scale();
    const float buttonsHeight = ImGui::GetFrameHeight() + ImGui::GetStyle().ItemSpacing.y + 8.0f * scale +
                                continueHeight + GameOptionsPanel::height();
    ImGui::PushStyleColor(ImGuiCol_ChildBg, ImVec4(1, 1, 1, 1));
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, ImVec2(12 * scale, 10 * scale));
    ImGui::BeginChild("##description", ImVec2(0, -buttonsHeight), true, ImGuiWindowFlags_AlwaysUseWindowPadding);
    std::vector<Paragraph> page;
    if (const std::string& d = library.descriptionText(messagesLocale()); !d.empty()) page.push_back({d});
    addFindings(page, library, rules);
    if (!note.empty()) page.push_back({note, kErrorColour});
    description_.draw(std::move(page));
    ImGui::EndChild();
    ImGui::PopStyleVar();
    ImGui::PopStyleColor();
    if (const auto error = options.draw(library.selectedTitle(), library.currentRules()))
        alert(trf("Your choice could not be saved to \"%s\": %s.", error->path, error->reason), tr("OK"));
    if (!continueText.empty()) ImGui::TextUnformatted(continueText.c_str());  // one line, clipped at the edge

    // Start and Return sit at the bottom right, as in a dialog.
    const float buttonWidth = 120.0f * scale;
    ImGui::SetCursorPosY(ImGui::GetWindowHeight() - ImGui::GetStyle().WindowPadding.y - ImGui::GetFrameHeight());
    if (refused) {
        ImGui::AlignTextToFramePadding();
        ImGui::TextColored(ImVec4(0.75f, 0.0f, 0.0f, 1.0f), "%s", tr("Fix the errors above."));
        ImGui::SameLine();
    }
    const float right = ImGui::GetWindowContentRegionMax().x;
    ImGui::SetCursorPosX(right - 3 * buttonWidth - 2 * ImGui::GetStyle().ItemSpacing.x);
    ImGui::BeginDisabled(!canContinue);
    if (ImGui::Button(tr("Continue"), ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::ContinueGame, {}, -1});
    ImGui::EndDisabled();
    ImGui::SameLine();
    if (ImGui::Button(tr("Return"), ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::ReturnToMain, {}, -1});
    ImGui::SameLine();
    ImGui::BeginDisabled(refused);
    if (ImGui::Button(tr("Start"), ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::StartGame, {}, -1});
    ImGui::EndDisabled();

    if (const std::optional<std::uint32_t> board = boardNumberDialog_.draw())
        commands.push_back({ShellCommand::Kind::PlayBoardNumber, {}, -1, ProgramCommand::None, *board});
    drawAlert();
    ImGui::End();
    surface_.endFrame();
    return commands;
}

void MainWindow::drawAlert() {
    if (alerts_.empty()) return;
    constexpr const char* kAlertId = "##alert";
    if (!ImGui::IsPopupOpen(kAlertId)) ImGui::OpenPopup(kAlertId);
    const ImGuiIO& io = ImGui::GetIO();
    // Centred, never wider than the window: a long message wraps inside it.
    ImGui::SetNextWindowPos(ImVec2(io.DisplaySize.x / 2, io.DisplaySize.y / 2), ImGuiCond_Always, ImVec2(0.5f, 0.5f));
    const float scale = surface_.scale();
    ImGui::SetNextWindowSizeConstraints(ImVec2(kWidth / 2.0f * scale, 0),
                                        ImVec2((kWidth - 40.0f) * scale, (kHeight - 40.0f) * scale));
    const ImGuiWindowFlags flags = ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_AlwaysAutoResize |
                                   ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings;
    if (!ImGui::BeginPopupModal(kAlertId, nullptr, flags)) return;
    ImGui::PushTextWrapPos((kWidth - 80.0f) * scale);
    ImGui::TextUnformatted(alerts_.front().first.c_str());
    ImGui::PopTextWrapPos();
    ImGui::Spacing();
    const bool key = ImGui::IsKeyPressed(ImGuiKey_Enter) || ImGui::IsKeyPressed(ImGuiKey_KeyPadEnter) ||
                     ImGui::IsKeyPressed(ImGuiKey_Space) || ImGui::IsKeyPressed(ImGuiKey_Escape);
    if (ImGui::Button(alerts_.front().second.c_str()) || key) {
        alerts_.pop_front();
        ImGui::CloseCurrentPopup();
    }
    ImGui::EndPopup();
}

ActionsPopup::ActionsPopup(const std::string& fontFile, float fontPixels)
    : surface_(tr("Actions"), 0, 0, kWidth, heightFor(ActionsMenu()),
               SDL_WINDOW_POPUP_MENU | SDL_WINDOW_BORDERLESS | SDL_WINDOW_SKIP_TASKBAR | SDL_WINDOW_ALWAYS_ON_TOP,
               fontFile, fontPixels, 1.0f) {}

std::vector<int> ActionsPopup::boundItems(const ActionsMenu& menu) {
    std::vector<int> bound;
    if (!menu.enabled()) return bound;
    for (int i = 0; i < ActionsMenu::kItemCount; ++i)
        if (menu.item(i).enabled) bound.push_back(i);
    return bound;
}

int ActionsPopup::heightFor(const ActionsMenu& menu) {
    const int actions = static_cast<int>(boundItems(menu).size());
    return 2 * kPadding + (actions + kGameItemCount + 1) * kRowHeight + (actions > 0 ? 2 : 1) * kSeparatorHeight;
}

bool ActionsPopup::contains(int x, int y) const {
    int w = 0, h = 0;
    SDL_GetWindowSize(surface_.sdlWindow(), &w, &h);
    return x >= 0 && y >= 0 && x < w && y < h;
}

void ActionsPopup::openAt(int x, int y, const ActionsMenu& menu) {
    const int height = heightFor(menu);
    SDL_SetWindowSize(surface_.sdlWindow(), kWidth, height);
    // Kept whole on the screen: near the right or bottom edge it opens to the left or upward.
    SDL_Rect bounds{0, 0, 0, 0};
    if (SDL_GetDisplayBounds(0, &bounds) == 0 && bounds.w > kWidth && bounds.h > height) {
        if (x + kWidth > bounds.x + bounds.w) x -= kWidth;
        if (y + height > bounds.y + bounds.h) y -= height;
        if (x < bounds.x) x = bounds.x;
        if (y < bounds.y) y = bounds.y;
    }
    SDL_SetWindowPosition(surface_.sdlWindow(), x, y);
    SDL_ShowWindow(surface_.sdlWindow());
    SDL_RaiseWindow(surface_.sdlWindow());
}

void ActionsPopup::close() { surface_.hide(); }

namespace {
// One row of the pop-up: its title at the left, its keys at the right, grey when not possible,
// a check mark before the title when checked.
bool popupRow(const char* id, float y, float width, const std::string& title, const std::string& keys, bool enabled,
              bool checked = false) {
    const float rowHeight = static_cast<float>(ActionsPopup::kRowHeight);
    ImGui::SetCursorPos(ImVec2(0, y));
    const ImGuiSelectableFlags flags = enabled ? 0 : ImGuiSelectableFlags_Disabled;
    const bool chosen = ImGui::Selectable(id, false, flags, ImVec2(width, rowHeight)) && enabled;
    const float textY = y + (rowHeight - ImGui::GetTextLineHeight()) * 0.5f;
    ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled));
    if (checked) {
        const ImVec2 at = ImGui::GetWindowPos();
        const float h = ImGui::GetTextLineHeight();
        const ImVec2 mark[3] = {ImVec2(at.x + 3, at.y + textY + h * 0.5f), ImVec2(at.x + 6.5f, at.y + textY + h * 0.8f),
                                ImVec2(at.x + 13, at.y + textY + h * 0.2f)};
        ImGui::GetWindowDrawList()->AddPolyline(mark, 3, ImGui::GetColorU32(ImGuiCol_Text), 0, 2.0f);
    }
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
    const std::vector<int> bound = boundItems(menu);
    for (const int i : bound) {
        const ActionsMenuItem& item = menu.item(i);
        const std::string id = "##item" + std::to_string(i);
        if (popupRow(id.c_str(), y, width, item.title, keyEquivalentLabel(item.keyEquivalent), true)) {
            choice.kind = Choice::Kind::Action;
            choice.actionIndex = i;
        }
        y += kRowHeight;
    }
    if (!bound.empty()) {
        popupSeparator(y);
        y += kSeparatorHeight;
    }
    for (const GameMenuItem& item : gameMenuItems()) {
        const std::string id = std::string("##game") + item.title;
        if (popupRow(id.c_str(), y, width, tr(item.title), item.keys, game.enabled(item.command), game.checked(item.command))) {
            choice.kind = Choice::Kind::Game;
            choice.command = item.command;
        }
        y += kRowHeight;
    }
    // Leaving the game, for a player whose main window is hidden.
    popupSeparator(y);
    y += kSeparatorHeight;
    if (popupRow("##return", y, width, tr("Return to Main Window"), "Ctrl+W", true))
        choice.kind = Choice::Kind::ReturnToMain;
    ImGui::End();
    ImGui::PopStyleVar(3);
    surface_.endFrame();
    return choice;
}

}  // namespace tolvar
