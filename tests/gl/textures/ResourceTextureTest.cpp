// Named images: found among the resources, located by the player, or replaced by a substitute.
#include "FileIO.h"
#include "TextureTestSupport.h"

using namespace texturetest;

// Records the panels instead of showing them; the open panel answers with `chosen`.
class NamedImage : public testing::Test {
protected:
    void TearDown() override { glDeleteTextures(1, &texture); }
    void load(const std::string& name) { textures.TextureFromResource(name.c_str(), &texture, &width, &height); }

    std::vector<std::string> alerts;
    std::function<void()> duringAlert;
    std::string chosen;
    int panels = 0, width = 17, height = 23;
    std::uint32_t texture = 0;
    const std::string kLocate = "Alert|Please locate resource = NoSuchPicture|OK";
    const std::string kSubstitute = "Alert|Warning: Substituting a different texture.  This may affect results.|OK";
    ResourceTextures textures{ResourcePanels{
        [this](const std::string& title, const std::string& message, const std::string& button) {
            alerts.push_back(title + "|" + message + "|" + button);
            if (duringAlert) duringAlert();
        },
        [this] { return ++panels, chosen; }}};
};

TEST_F(NamedImage, FoundAmongTheResourcesWithoutAsking) {
    const std::string name = "named-test-" + std::to_string(getpid());
    const auto path = std::filesystem::path(resourceFolder()) / (name + ".png");
    saveImage(path, 300, 200, 24);
    load(name);
    std::filesystem::remove(path);
    EXPECT_EQ(alerts.size() + panels, 0u);
    EXPECT_EQ(std::pair(width, height), std::pair(256, 128));
    EXPECT_EQ(patternMismatches(readTexture(texture), false, 199, -1), 0);  // the lower left block, upright
}

TEST_F(NamedImage, LocatedByThePlayerElseTheSubstituteKeepingTheSizes) {
    const auto located = scratchFolder() / "located.png", notAnImage = scratchFolder() / "not-an-image.png";
    saveImage(located, 64, 40, 32);
    writeBytes(notAnImage, {'n', 'o', 'p', 'e'});
    for (const std::string& answer : {located.string(), std::string(), notAnImage.string()}) {
        SCOPED_TRACE(answer);
        chosen = answer;
        alerts.clear();
        load("NoSuchPicture");
        const TextureLevel level = readTexture(texture);
        if (answer == located) {
            EXPECT_EQ(alerts, std::vector<std::string>{kLocate});
            EXPECT_EQ(std::tuple(width, height, level.width), std::tuple(64, 32, 64));
            continue;
        }
        EXPECT_EQ(alerts, (std::vector<std::string>{kLocate, kSubstitute}));
        EXPECT_EQ(std::pair(width, height), std::pair(64, 32));  // as the located image left them
        ASSERT_EQ(std::pair(level.width, level.height), std::pair(128, 128));
        // Blue digits in lines of 36 points over a clear ground; rows go bottom-up, so the first line
        // of text lies in the last rows.
        int ink = 0, firstRow = -1, lastRow = -1, notBlue = 0;
        for (std::size_t i = 3; i < level.rgba.size(); i += 4) {
            if (level.rgba[i] == 0) continue;
            lastRow = static_cast<int>(i / 4 / 128);
            firstRow = ink++ ? firstRow : lastRow;
            notBlue += level.rgba[i - 3] != 0 || level.rgba[i - 2] != 0 || level.rgba[i - 1] != 255;
        }
        EXPECT_GT(ink, 200);
        EXPECT_GT(lastRow - firstRow, 60);
        EXPECT_GE(lastRow, 100);
        EXPECT_EQ(notBlue, 0);
    }
}

TEST_F(NamedImage, CallDuringTheFirstReturnsAtOnce) {
    std::uint32_t inner = 99;
    int innerWidth = 7, innerHeight = 8, calls = 0;
    duringAlert = [&] { calls++ ? void() : textures.TextureFromResource("Other", &inner, &innerWidth, &innerHeight); };
    load("NoSuchPicture");
    // Only the first call's two alerts and one panel; the inner call changed nothing.
    EXPECT_EQ(alerts, (std::vector<std::string>{kLocate, kSubstitute}));
    EXPECT_EQ(panels, 1);
    EXPECT_EQ(std::tuple(inner, innerWidth, innerHeight), std::tuple(99u, 7, 8));
    // Once the first call is over, calls work again.
    load("NoSuchPicture");
    EXPECT_EQ(alerts.size(), 4u);
}

TEST_F(NamedImage, OverlongNameIsCutWholeCharactersToFitTheMessage) {
    // 3000 bytes with a two-byte character where the cut falls: it is left out rather than split.
    load(std::string(2021, 'n') + "\xC3\xA9" + std::string(977, 'm'));
    EXPECT_EQ(alerts.at(0), "Alert|Please locate resource = " + std::string(2021, 'n') + "|OK");
}
