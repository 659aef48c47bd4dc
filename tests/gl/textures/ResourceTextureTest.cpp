// Named images: found among the resources, located by the player, or replaced by a substitute.
#include <gtest/gtest.h>

#include <unistd.h>

#include "FileIO.h"
#include "Textures.h"
#include "TextureTestSupport.h"

using namespace texturetest;

namespace {

struct Alert {
    std::string title;
    std::string message;
    std::string button;
};

// Records the panels instead of showing them; the open panel answers with `chosen`.
class NamedImage : public testing::Test {
protected:
    void SetUp() override {
        setTextureAlertHook([this](const std::string& t, const std::string& m, const std::string& b) {
            alerts.push_back({t, m, b});
            if (duringAlert) duringAlert();
        });
        setTextureOpenPanelHook([this] {
            ++panelsOpened;
            return chosen;
        });
    }
    void TearDown() override {
        setTextureAlertHook({});
        setTextureOpenPanelHook({});
    }

    std::vector<Alert> alerts;
    std::function<void()> duringAlert;
    std::string chosen;
    int panelsOpened = 0;
};

const char* kSubstitute = "Warning: Substituting a different texture.  This may affect results.";

}  // namespace

TEST_F(NamedImage, FoundAmongTheResourcesWithoutAsking) {
    const std::string folder = resourceFolder();
    ASSERT_FALSE(folder.empty());
    const std::string name = "named-test-" + std::to_string(getpid());
    const auto path = std::filesystem::path(folder) / (name + ".png");
    saveRGBPattern(path, 300, 200, false);
    std::uint32_t texture = 0;
    int width = 0;
    int height = 0;
    TextureFromResource(name.c_str(), &texture, &width, &height);
    std::filesystem::remove(path);
    EXPECT_TRUE(alerts.empty());
    EXPECT_EQ(panelsOpened, 0);
    EXPECT_EQ(width, 256);
    EXPECT_EQ(height, 128);
    const TextureLevel level = readTexture(texture);
    EXPECT_EQ(level.width, 256);
    EXPECT_EQ(level.height, 128);
    glDeleteTextures(1, &texture);
}

TEST_F(NamedImage, MissingImageLocatedByThePlayer) {
    chosen = (scratchFolder() / "located.png").string();
    saveRGBPattern(chosen, 64, 40, true);
    std::uint32_t texture = 0;
    int width = 0;
    int height = 0;
    TextureFromResource("NoSuchPicture", &texture, &width, &height);
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "Alert");
    EXPECT_EQ(alerts[0].message, "Please locate resource = NoSuchPicture");
    EXPECT_EQ(alerts[0].button, "OK");
    EXPECT_EQ(panelsOpened, 1);
    EXPECT_EQ(width, 64);
    EXPECT_EQ(height, 32);
    EXPECT_EQ(readTexture(texture).width, 64);
    glDeleteTextures(1, &texture);
}

TEST_F(NamedImage, CancelledPanelGivesTheSubstituteAndKeepsTheSizes) {
    std::uint32_t texture = 0;
    int width = 17;
    int height = 23;
    TextureFromResource("NoSuchPicture", &texture, &width, &height);
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[1].title, "Alert");
    EXPECT_EQ(alerts[1].message, kSubstitute);
    EXPECT_EQ(alerts[1].button, "OK");
    EXPECT_EQ(width, 17);
    EXPECT_EQ(height, 23);
    ASSERT_NE(texture, 0u);
    const TextureLevel level = readTexture(texture);
    ASSERT_EQ(level.width, 128);
    ASSERT_EQ(level.height, 128);
    // Blue digits on a transparent ground, nothing else.
    int blue = 0;
    int other = 0;
    for (std::size_t i = 0; i < level.rgba.size(); i += 4) {
        const std::uint8_t* p = &level.rgba[i];
        if (p[3] == 0) continue;
        if (p[0] == 0 && p[1] == 0 && p[2] == 255)
            ++blue;
        else
            ++other;
    }
    EXPECT_GT(blue, 100);
    EXPECT_EQ(other, 0);
    glDeleteTextures(1, &texture);
}

TEST_F(NamedImage, ChosenFileThatIsNoImageGivesTheSubstitute) {
    chosen = (scratchFolder() / "not-an-image.png").string();
    writeBytes(chosen, {'n', 'o', 'p', 'e'});
    std::uint32_t texture = 0;
    int width = 5;
    int height = 6;
    testing::internal::CaptureStderr();
    TextureFromResource("Elsewhere", &texture, &width, &height);
    const std::string complaint = testing::internal::GetCapturedStderr();
    EXPECT_NE(complaint.find(chosen), std::string::npos);
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[1].message, kSubstitute);
    EXPECT_EQ(width, 5);
    EXPECT_EQ(readTexture(texture).width, 128);
    glDeleteTextures(1, &texture);
}

TEST_F(NamedImage, CallDuringTheFirstReturnsAtOnce) {
    std::uint32_t inner = 99;
    int innerWidth = 7;
    int innerHeight = 8;
    int nestedCalls = 0;
    duringAlert = [&] {
        if (nestedCalls++ == 0) TextureFromResource("Other", &inner, &innerWidth, &innerHeight);
    };
    std::uint32_t texture = 0;
    int width = 0;
    int height = 0;
    TextureFromResource("NoSuchPicture", &texture, &width, &height);
    // Only the first call's two alerts and one panel; the nested call changed nothing.
    EXPECT_EQ(alerts.size(), 2u);
    EXPECT_EQ(panelsOpened, 1);
    EXPECT_EQ(inner, 99u);
    EXPECT_EQ(innerWidth, 7);
    EXPECT_EQ(innerHeight, 8);
    glDeleteTextures(1, &texture);

    // Once the first call is over, calls work again.
    duringAlert = nullptr;
    alerts.clear();
    TextureFromResource("Other", &inner, &innerWidth, &innerHeight);
    EXPECT_EQ(alerts.size(), 2u);
}

TEST_F(NamedImage, OverlongNameIsCutToFitTheMessage) {
    // A name of 3000 characters with a two-byte character where the cut falls.
    std::string name(2021, 'n');
    name += "\xC3\xA9";
    name += std::string(977, 'm');
    std::uint32_t texture = 0;
    int width = 0;
    int height = 0;
    TextureFromResource(name.c_str(), &texture, &width, &height);
    ASSERT_FALSE(alerts.empty());
    const std::string& message = alerts[0].message;
    EXPECT_EQ(message.rfind("Please locate resource = nnn", 0), 0u);
    EXPECT_LE(message.size(), 2047u);
    // The two-byte character did not fit whole, so it was left out rather than split.
    EXPECT_EQ(message.size(), 25u + 2021u);
    glDeleteTextures(1, &texture);
}
