#include "orvanta/codecs/CodecManager.h"

#include <gtest/gtest.h>

#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/OwnedPtr.h"

using namespace Orvanta;

namespace {

// A codec that reads nothing, for exercising the registry alone.
class FakeImageCodec : public ImageCodec {
public:
    FakeImageCodec(std::vector<CString> extensions, ImageType type) : mType(type) {
        mExtensions = std::move(extensions);
    }
    ImageType getImageType() override { return mType; }
    Dib* read(const char16_t*, CSize*, int, int) override { return nullptr; }
    bool getInfo(const char16_t*, CSize* size, ImageQuality*) override {
        ++infoCalls;
        if (throwOnInfo) throw 42;
        if (size) *size = CSize(12, 34);
        return true;
    }
    int write(Dib*, const char16_t*, ImageQuality) override { return 0; }
    int infoCalls = 0;
    bool throwOnInfo = false;

private:
    ImageType mType;
};

class FakeVideoCodec : public Codec {
public:
    FakeVideoCodec() { mExtensions = {u"tstvid"}; }
    CodecType getCodecType() override { return CodecTypeVideo; }
    ImageType getImageType() override { return ImageTypeJpeg; }
};

// Collects the extensions an enumeration hands out, stopping after `limit`.
class Collector : public CodecExtensionSink {
public:
    explicit Collector(std::size_t limit = 100) : mLimit(limit) {}
    bool onExtension(const char16_t* extension, void*) override {
        seen.emplace_back(extension);
        return seen.size() < mLimit;
    }
    std::vector<CString> seen;

private:
    std::size_t mLimit;
};

// The registry is process-wide: these tests use extensions of their own ("tst...") so they do not
// disturb each other or the real codecs.
class CodecManagerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        sFirst = new FakeImageCodec({u"tstj", u"TSTJPEG"}, ImageTypeJpeg);
        CodecManager::registerCodec(sFirst);
    }
    static FakeImageCodec* sFirst;
};
FakeImageCodec* CodecManagerTest::sFirst = nullptr;

}  // namespace

TEST_F(CodecManagerTest, FindsByBareExtensionDottedExtensionOrPathInAnyCase) {
    EXPECT_EQ(CodecManager::getCodec(u"tstj"), sFirst);
    EXPECT_EQ(CodecManager::getCodec(u".TSTJ"), sFirst);
    EXPECT_EQ(CodecManager::getCodec(u"/photos/2024/HOLIDAY.TstJ"), sFirst);
    EXPECT_EQ(CodecManager::getCodec(u"tstjpeg"), sFirst);  // registered upper case, stored folded
}

TEST_F(CodecManagerTest, NameWithoutDotIsAnExtensionAndLastElementDecides) {
    EXPECT_EQ(CodecManager::getCodec(u"photo"), nullptr);
    EXPECT_EQ(CodecManager::getCodec(u"/a.tstj/file"), nullptr);
    EXPECT_EQ(CodecManager::getCodec(u"/a/file."), nullptr);
    EXPECT_EQ(CodecManager::getCodec(u""), nullptr);
    EXPECT_EQ(CodecManager::getCodec(nullptr), nullptr);
}

TEST_F(CodecManagerTest, LaterRegistrationWinsOnlyForItsOwnExtensions) {
    OwnedPtr<FakeImageCodec> second = new FakeImageCodec({u"tstj"}, ImageTypeJpeg);
    CodecManager::registerCodec(second, {u"TSTJ"});
    EXPECT_EQ(CodecManager::getCodec(u"x.tstj"), second.get());
    EXPECT_EQ(CodecManager::getCodec(u"x.tstjpeg"), sFirst);
    EXPECT_EQ(second->getOwnerCount(), 2);  // ours and the table's
    CodecManager::registerCodec(sFirst, {u"tstj"});
    EXPECT_EQ(second->getOwnerCount(), 1);
}

TEST_F(CodecManagerTest, DefaultsPerTypeAndTheAllTypeSentinel) {
    Codec* image = CodecManager::getDefaultCodec(CodecTypeImage);
    ASSERT_NE(image, nullptr);  // the first image codec registered in this process
    EXPECT_EQ(CodecManager::getDefaultCodec(CodecTypeAll), nullptr);
    CodecManager::setDefaultCodec(sFirst, CodecTypeAll);  // ignored
    OwnedPtr<FakeVideoCodec> video = new FakeVideoCodec();
    CodecManager::registerCodec(video);
    EXPECT_EQ(CodecManager::getDefaultCodec(CodecTypeVideo), video.get());
    CodecManager::setDefaultCodec(nullptr, CodecTypeVideo);
    EXPECT_EQ(CodecManager::getDefaultCodec(CodecTypeVideo), nullptr);
    CodecManager::setDefaultCodec(video);
    EXPECT_EQ(CodecManager::getDefaultCodec(CodecTypeVideo), video.get());
    CodecManager::setDefaultCodec(image);
    EXPECT_EQ(CodecManager::getDefaultCodec(CodecTypeImage), image);
}

TEST_F(CodecManagerTest, EnumerationWalksKeysInOrderFilteredByTypeAndStopsOnFalse) {
    OwnedPtr<FakeVideoCodec> video = new FakeVideoCodec();
    CodecManager::registerCodec(video);
    Collector all;
    CodecManager::enumerateExtensions(&all, nullptr, CodecTypeAll);
    EXPECT_TRUE(std::is_sorted(all.seen.begin(), all.seen.end()));
    EXPECT_NE(std::find(all.seen.begin(), all.seen.end(), CString(u"tstvid")), all.seen.end());
    Collector images;
    CodecManager::enumerateExtensions(&images, nullptr, CodecTypeImage);
    EXPECT_EQ(std::find(images.seen.begin(), images.seen.end(), CString(u"tstvid")), images.seen.end());
    EXPECT_NE(std::find(images.seen.begin(), images.seen.end(), CString(u"tstj")), images.seen.end());
    Collector one(1);
    CodecManager::enumerateExtensions(&one, nullptr, CodecTypeAll);
    EXPECT_EQ(one.seen.size(), 1u);
    CodecManager::enumerateExtensions(nullptr, nullptr, CodecTypeAll);
}

TEST_F(CodecManagerTest, FileInformationNeedsAnImageCodecAndSwallowsWhatItThrows) {
    ImageType type{};
    const int before = sFirst->infoCalls;
    EXPECT_TRUE(ImageCodec::getImageFileInformation(u"not-yet-written.tstj", &type, nullptr, nullptr));
    EXPECT_EQ(type, ImageTypeJpeg);
    EXPECT_EQ(sFirst->infoCalls, before);  // size and quality null: the file was not asked

    CSize size;
    EXPECT_TRUE(ImageCodec::getImageFileInformation(u"x.tstj", nullptr, &size, nullptr));
    EXPECT_EQ(size, CSize(12, 34));
    sFirst->throwOnInfo = true;
    EXPECT_FALSE(ImageCodec::getImageFileInformation(u"x.tstj", nullptr, &size, nullptr));
    sFirst->throwOnInfo = false;

    OwnedPtr<FakeVideoCodec> video = new FakeVideoCodec();
    CodecManager::registerCodec(video);
    EXPECT_FALSE(ImageCodec::getImageFileInformation(u"clip.tstvid", &type, nullptr, nullptr));
    EXPECT_FALSE(ImageCodec::getImageFileInformation(u"notes.tsttxt", &type, &size, nullptr));
}

TEST(CodecManagerSwitch, FastThumbnailingStartsOnAndToggles) {
    EXPECT_TRUE(CodecManager::isFastThumbnailingEnabled());
    CodecManager::disableFastThumbnailing();
    EXPECT_FALSE(CodecManager::isFastThumbnailingEnabled());
    CodecManager::enableFastThumbnailing(true);
    EXPECT_TRUE(CodecManager::isFastThumbnailingEnabled());
}
