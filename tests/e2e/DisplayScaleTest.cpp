// How large the windows' texts are made on a dense display: the setting, the desktop's text
// density and the screen's height, each read on its own.
#include <gtest/gtest.h>

#include "desktop/DisplayScale.h"

namespace tolvar {
namespace {

TEST(DisplayScale, EachSourceGivesQuarterStepsBetweenOneAndFourOrNothing) {
    const std::pair<float, float> cases[] = {
        {scaleFromSetting("2"), 2.0f},
        {scaleFromSetting("1.6"), 1.5f},  // to the nearest quarter
        {scaleFromSetting("0.5"), 1.0f},  // never smaller than the 1080-line screen's
        {scaleFromSetting("9"), 4.0f},
        {scaleFromSetting("2x"), 0.0f},
        {scaleFromSetting("-1"), 0.0f},
        {scaleFromSetting(""), 0.0f},
        {scaleFromSetting(nullptr), 0.0f},
        {scaleFromResources("Xcursor.size:\t24\nXft.dpi:\t192\nXft.hinting:\t1\n"), 2.0f},
        {scaleFromResources("Xft.dpi: 144\n"), 1.5f},
        {scaleFromResources("Xft.dpi:\t96\n"), 1.0f},
        {scaleFromResources("Xft.antialias:\t1\n"), 0.0f},
        {scaleFromResources("Xft.dpi:\tlots\n"), 0.0f},
        {scaleFromResources(""), 0.0f},
        {scaleFromScreenHeight(2160), 2.0f},
        {scaleFromScreenHeight(1440), 1.25f},
        {scaleFromScreenHeight(1080), 1.0f},
        {scaleFromScreenHeight(600), 1.0f},
        {scaleFromScreenHeight(0), 0.0f},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(cases[i].first, cases[i].second) << "case " << i;
}

}  // namespace
}  // namespace tolvar
