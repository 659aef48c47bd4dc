// Shared pieces of the texture tests: a real OpenGL context, image files made on the spot,
// and read-back of textures and the window.
#pragma once

#include <GL/gl.h>
#include <SDL.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace texturetest {

inline constexpr int kWindowWidth = 1024;
inline constexpr int kWindowHeight = 768;

// The folder this test run writes its image files into (made by the environment).
const std::filesystem::path& scratchFolder();

// A PNG file's bytes written by hand, so depths SDL does not write (16-bit grey, palettes)
// can be made too. `rows` holds each row's bytes without the filter byte.
std::vector<std::uint8_t> encodePNG(int width, int height, int bitDepth, int colourType,
                                    const std::vector<std::uint8_t>& rows,
                                    const std::vector<std::uint8_t>& palette = {});

void writeBytes(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> readBytes(const std::filesystem::path& path);

// The colour the test images give pixel (x, y), counted from the top left.
inline std::uint8_t patternRed(int x, int y) { return static_cast<std::uint8_t>((x * 7 + y) & 255); }
inline std::uint8_t patternGreen(int x, int y) { return static_cast<std::uint8_t>((y * 5 + x * 3) & 255); }
inline std::uint8_t patternBlue(int x, int y) { return static_cast<std::uint8_t>((x ^ y) & 255); }
inline std::uint8_t patternAlpha(int x, int y) { return static_cast<std::uint8_t>(255 - ((x + 2 * y) & 127)); }

// Saves a true-colour image painted with the pattern: PNG when the name ends in ".png",
// BMP otherwise.
void saveRGBPattern(const std::filesystem::path& path, int width, int height, bool alpha);

// Level 0 of a 2-D texture.
struct TextureLevel {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;  // rows as stored: the first uploaded row first
};
TextureLevel readTexture(std::uint32_t name);

// The RGBA pixels of a rectangle of the window, bottom row first.
std::vector<std::uint8_t> readWindow(int x, int y, int width, int height);

// Everything a test printed on standard output while `run` ran.
template <typename Run>
std::string captureStdout(Run run);

}  // namespace texturetest

#include <gtest/gtest.h>

#include <cstdio>

template <typename Run>
std::string texturetest::captureStdout(Run run) {
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    run();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}
