// Game > Play Board Number…: a modal over the main window with a field for the number. Return or
// Play starts the chosen game on that board; a text that is no board number is refused with a line
// saying what a board number is, and the field stays for another try. Escape or Cancel closes it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace tolvar {

class BoardNumberDialog {
public:
    // Shows it from the next frame, the field empty and focused.
    void open();
    bool isOpen() const { return open_; }
    // One frame of it, inside the main window's ImGui frame; the number chosen, once.
    std::optional<std::uint32_t> draw();

private:
    bool open_ = false;
    bool opening_ = false;
    bool focusField_ = false;  // the keyboard goes to the field in the next frame
    std::array<char, 32> text_{};
    std::string refusal_;  // why the last number given was none
};

}  // namespace tolvar
