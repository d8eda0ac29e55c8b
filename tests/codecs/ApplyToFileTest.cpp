// Applying an edit to a file itself: only a rotation, and only through a codec that says it can.

#include <gtest/gtest.h>

#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/OwnedPtr.h"

using namespace Orvanta;

namespace {

class RotatingCodec : public ImageCodec {
public:
    ImageType getImageType() override { return ImageTypeJpeg; }
    Dib* read(const char16_t*, CSize*, int, int) override { return nullptr; }
    bool getInfo(const char16_t*, CSize*, ImageQuality*) override { return false; }
    int write(Dib*, const char16_t*, ImageQuality) override { return 0; }
    bool canApplyToFile(EditingOp* op) override { return canApply; }
    bool rotateFile(const char16_t* path, RotateOp* op) override {
        rotatedBy = op->getAngle();
        return true;
    }
    bool canApply = true;
    int rotatedBy = 0;
};

}  // namespace

TEST(ApplyToFile, RotationGoesToRotateFile) {
    RotatingCodec codec;
    OwnedPtr<EditingOp> rotate(RotateOp::create(270));
    EXPECT_TRUE(codec.applyToFile(u"/tmp/x.jpg", rotate));
    EXPECT_EQ(codec.rotatedBy, 270);
}

TEST(ApplyToFile, OtherEditsAndUnwillingCodecsDoNothing) {
    RotatingCodec codec;
    OwnedPtr<EditingOp> mirror(MirrorOp::create(false));
    EXPECT_FALSE(codec.applyToFile(u"/tmp/x.jpg", mirror));
    codec.canApply = false;
    OwnedPtr<EditingOp> rotate(RotateOp::create(90));
    EXPECT_FALSE(codec.applyToFile(u"/tmp/x.jpg", rotate));
    EXPECT_EQ(codec.rotatedBy, 0);
}
