// Named images: found among the resources, located by the player, or replaced by a substitute.
#include "FileIO.h"
#include "TextureTestSupport.h"

using namespace texturetest;

// Records the panels instead of showing them; the open panel answers with `chosen`.
class NamedImage : public testing::Test {
protected:
    void SetUp() override {
        setTextureAlertHook([this](const std::string& title, const std::string& message, const std::string& button) {
            alerts.push_back(title + "|" + message + "|" + button);
            if (duringAlert) duringAlert();
        });
        setTextureOpenPanelHook([this] { return ++panels, chosen; });
    }
    void TearDown() override {
        setTextureAlertHook({});
        setTextureOpenPanelHook({});
        glDeleteTextures(1, &texture);
    }
    void load(const std::string& name) { TextureFromResource(name.c_str(), &texture, &width, &height); }

    std::vector<std::string> alerts;
    std::function<void()> duringAlert;
    std::string chosen;
    int panels = 0, width = 17, height = 23;
    std::uint32_t texture = 0;
    const std::string kLocate = "Alert|Please locate resource = NoSuchPicture|OK";
    const std::string kSubstitute = "Alert|Warning: Substituting a different texture.  This may affect results.|OK";
};

TEST_F(NamedImage, FoundAmongTheResourcesOrLocatedByThePlayer) {
    ASSERT_FALSE(resourceFolder().empty());
    const std::string name = "named-test-" + std::to_string(getpid());
    const auto path = std::filesystem::path(resourceFolder()) / (name + ".png");
    saveImage(path, 300, 200, 24);
    load(name);
    std::filesystem::remove(path);
    EXPECT_EQ(alerts.size() + panels, 0u);
    EXPECT_EQ(std::pair(width, height), std::pair(256, 128));
    EXPECT_EQ(readTexture(texture).height, 128);
    glDeleteTextures(1, &texture);

    chosen = (scratchFolder() / "located.png").string();
    saveImage(chosen, 64, 40, 32);
    load("NoSuchPicture");
    EXPECT_EQ(alerts, std::vector<std::string>{kLocate});
    EXPECT_EQ(panels, 1);
    EXPECT_EQ(std::pair(width, height), std::pair(64, 32));
    EXPECT_EQ(readTexture(texture).width, 64);
}

TEST_F(NamedImage, NoImageChosenGivesTheSubstituteAndKeepsTheSizes) {
    const auto notAnImage = scratchFolder() / "not-an-image.png";
    writeBytes(notAnImage, {'n', 'o', 'p', 'e'});
    for (const std::string& answer : {std::string(), notAnImage.string()}) {
        SCOPED_TRACE(answer);
        chosen = answer;
        alerts.clear();
        testing::internal::CaptureStderr();
        load("NoSuchPicture");
        EXPECT_NE(testing::internal::GetCapturedStderr().find(answer), std::string::npos);
        EXPECT_EQ(alerts, (std::vector<std::string>{kLocate, kSubstitute}));
        EXPECT_EQ(std::pair(width, height), std::pair(17, 23));
        // Blue digits in lines of 36 points over a clear ground; rows go bottom-up, so the first line
        // of text lies in the last rows.
        const TextureLevel level = readTexture(texture);
        ASSERT_EQ(level.width, 128);
        ASSERT_EQ(level.height, 128);
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
    int innerWidth = 7, innerHeight = 8;
    int calls = 0;
    duringAlert = [&] { calls++ ? void() : TextureFromResource("Other", &inner, &innerWidth, &innerHeight); };
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
    ASSERT_FALSE(alerts.empty());
    EXPECT_EQ(alerts[0], "Alert|Please locate resource = " + std::string(2021, 'n') + "|OK");
}
