// CodecManager's lookup by name: extensions by the path rule of FilePath, and names held in string
// resources, passed as small pointer values.

#include <gtest/gtest.h>

#include <cstdint>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/ResourceModule.h"

using Orvanta::CodecManager;
using Orvanta::CString;
using Orvanta::Platform::ResourceModule;

namespace {

const char16_t* resourceName(std::uintptr_t id) {
    return reinterpret_cast<const char16_t*>(id);
}

class CodecLookup : public testing::Test {
protected:
    void SetUp() override {
        CodecManager::registerCodec(Orvanta::BmpCodec::create());
        mSaved = ResourceModule::current();
        ResourceModule::setCurrent(&mModule);
    }
    void TearDown() override { ResourceModule::setCurrent(mSaved); }

    ResourceModule mModule;
    ResourceModule* mSaved = nullptr;
};

}  // namespace

TEST_F(CodecLookup, ExtensionsFollowTheFilePathRule) {
    for (const char16_t* name :
         {u"a.tar.gz", u"/photos.2004/readme", u"/x/IMG_0001.JPG", u".bmp", u"a.", u"/a.b/c.d"}) {
        EXPECT_EQ(CodecManager::extensionOf(name), FilePath::getExtension(name)) << CString(name).toUtf8();
    }
    // A name without a dot is an extension on its own.
    EXPECT_EQ(CodecManager::extensionOf(u"bmp"), CString(u"bmp"));
}

TEST_F(CodecLookup, FindsCodecsByExtensionDottedExtensionOrPath) {
    Orvanta::Codec* bmp = CodecManager::getCodec(u"bmp");
    ASSERT_NE(bmp, nullptr);
    EXPECT_EQ(CodecManager::getCodec(u".BMP"), bmp);
    EXPECT_EQ(CodecManager::getCodec(u"/pictures.2004/scan.Bmp"), bmp);
    EXPECT_EQ(CodecManager::getCodec(u"/pictures.bmp/scan"), nullptr);
    EXPECT_EQ(CodecManager::getCodec(u"photo"), nullptr);
    EXPECT_EQ(CodecManager::getCodec(u""), nullptr);
    EXPECT_EQ(CodecManager::getCodec(nullptr), nullptr);
}

TEST_F(CodecLookup, SmallPointerValuesNameAStringResource) {
    mModule.addString(1, u"/scans/page one.BMP");
    mModule.addString(2, u"bmp");
    mModule.addString(3, u"/scans/notes.txt");
    mModule.addString(0xffff, u".bmp");
    EXPECT_EQ(CodecManager::getCodec(resourceName(1)), CodecManager::getCodec(u"bmp"));
    EXPECT_EQ(CodecManager::getCodec(resourceName(2)), CodecManager::getCodec(u"bmp"));
    EXPECT_EQ(CodecManager::getCodec(resourceName(0xffff)), CodecManager::getCodec(u"bmp"));
    EXPECT_EQ(CodecManager::getCodec(resourceName(3)), nullptr);
    EXPECT_EQ(CodecManager::getCodec(resourceName(4)), nullptr) << "an id without a string";
}
