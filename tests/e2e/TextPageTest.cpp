// Long texts in the windows' scrolling regions: however long the text and wherever it is
// scrolled, a frame submits no more vertices than one window shows (Dear ImGui as Debian builds
// it indexes them with 16 bits and stops the program past 65,535).
#include <gtest/gtest.h>
#include <imgui.h>

#include <string>

#include "desktop/TextPage.h"
#include "rules/ShownText.h"

namespace tolvar {
namespace {

constexpr float kWidth = 560.0f, kHeight = 400.0f;
constexpr int kWindowVertices = 20000;  // far more than a 560 x 400 page of text needs

// A Dear ImGui context with its built-in font and no display: frames are laid out and their
// vertices counted, never drawn.
class Frames : public ::testing::Test {
protected:
    Frames() {
        ImGui::SetCurrentContext(context_);
        ImGuiIO& io = ImGui::GetIO();
        io.IniFilename = nullptr;
        io.DisplaySize = ImVec2(kWidth, kHeight);
        io.DeltaTime = 1.0f / 60.0f;
        unsigned char* pixels = nullptr;
        int w = 0, h = 0;
        io.Fonts->GetTexDataAsRGBA32(&pixels, &w, &h);
        TextPage first;  // a window's first frame is laid out and not drawn
        frame(first, "");
    }
    ~Frames() override { ImGui::DestroyContext(context_); }

    // One frame of a window whose page is the text, scrolled to scrollY (a fraction of the whole);
    // returns the most vertices any draw list holds.
    int frame(TextPage& page, const std::string& text, float scrollY = 0.0f) {
        ImGui::NewFrame();
        ImGui::SetNextWindowPos(ImVec2(0, 0));
        ImGui::SetNextWindowSize(ImVec2(kWidth, kHeight));
        ImGui::Begin("##page", nullptr, ImGuiWindowFlags_NoDecoration);
        ImGui::BeginChild("##text", ImVec2(0, 0), true);
        page.draw({{text}, {"The end.", 0, true}});
        ImGui::SetScrollY(scrollY * ImGui::GetScrollMaxY());
        ImGui::EndChild();
        ImGui::End();
        ImGui::Render();
        int most = 0;
        const ImDrawData* data = ImGui::GetDrawData();
        for (int i = 0; i < data->CmdListsCount; ++i) most = std::max(most, data->CmdLists[i]->VtxBuffer.Size);
        return most;
    }

    ImGuiContext* context_ = ImGui::CreateContext();
};

std::string words(std::size_t characters) {
    std::string text;
    while (text.size() < characters) text += "word ";
    return text;
}

TEST_F(Frames, ALongTextSubmitsOnlyTheLinesInView) {
    // A description of 100,000 characters as the main window and help keep it, and one as long
    // as the file had it; a long line without spaces; many short lines.
    std::string unbroken(100000, 'x');
    std::string shortLines;
    for (int i = 0; i < 20000; ++i) shortLines += "line " + std::to_string(i) + "\n";
    for (const std::string& text : {shownDescription(words(100000)), words(100000), unbroken, shortLines}) {
        TextPage page;
        for (const float scroll : {0.0f, 0.5f, 1.0f}) {
            frame(page, text, scroll);  // a scroll takes effect in the next frame
            const int vertices = frame(page, text, scroll);
            EXPECT_GT(vertices, 400) << text.size() << " bytes scrolled to " << scroll;
            EXPECT_LT(vertices, kWindowVertices) << text.size() << " bytes scrolled to " << scroll;
        }
        EXPECT_GT(page.lineCount(), text.size() / 100);
    }
}

TEST_F(Frames, WrappedLinesKeepEveryWordAndEachParagraphStartsALine) {
    TextPage page;
    frame(page, "");
    EXPECT_EQ(page.lineCount(), 3u);  // the empty text, a blank line, "The end."
    frame(page, "one\n\ntwo");
    EXPECT_EQ(page.lineCount(), 5u);
    // Words wrap within the width: 2,000 words of 5 characters fill well over 100 lines.
    frame(page, words(10000));
    const std::size_t lines = page.lineCount();
    EXPECT_GT(lines, 100u);
    frame(page, words(10000));  // the same text is not laid out anew
    EXPECT_EQ(page.lineCount(), lines);
}

}  // namespace
}  // namespace tolvar
