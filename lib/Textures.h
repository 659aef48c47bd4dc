// Textures from images and strings.
#pragma once

#include <cstdint>
#include <vector>

// An image as the loaders need it: rows top first, 8 bits per channel, R G B (A).
struct Image {
    int width = 0;
    int height = 0;
    bool hasAlpha = false;
    int bitsPerPixel = 0;
    int bytesPerRow = 0;
    std::vector<std::uint8_t> pixels;  // height x bytesPerRow
};

// Loads an image file; false when it cannot be read.
bool loadImageFile(const char* path, Image& image);

// The image route: the largest power-of-two block at the image's lower-left corner, rows turned
// bottom-up. 24-bit RGB and 32-bit RGBA only; other depths change nothing.
void TextureFromNSImage(const Image& image, std::uint32_t* textureName, int* textureWidth,
                        int* textureHeight);
std::uint32_t truncPowerOf2(std::uint32_t n);
// A named image with recovery: asks the player to locate a missing one, else a substitute.
void TextureFromResource(const char* name, std::uint32_t* textureName, int* textureWidth,
                         int* textureHeight);
void StringToTexture(const char* text, const char* fontName, std::int32_t fontSize,
                     std::uint32_t* textureName, std::uint32_t width, std::uint32_t height,
                     float red, float green, float blue);
