// Drawing text and textured rectangles.
#pragma once

#include <cstdint>
#include <string>

int createTextureFromString(const char* text, const std::string& fontName, double fontSize,
                            std::uint32_t* textureName, const std::uint8_t background[4],
                            const void* unused);
void drawStringAtPoint(const char* text, const std::string& fontName, const float color[4],
                       double fontSize, double x, double y, float angle);
void drawTextureAtPoint(std::uint32_t textureName, const float point[2], const float rotation[4],
                        std::int32_t width, std::int32_t height, const float color[4]);
