// orvanta edit: loads a picture, applies edits through the undo history, and writes the result. An
// edit of a file in place goes through the file's own picture history (ImageFile), so that turns
// alone are done in the file without loss and anything else is encoded anew keeping the metadata.

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "Commands.h"
#include "FailureReason.h"
#include "orvanta/assets/AssetBackupPolicy.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/editing/BWOp.h"
#include "orvanta/editing/ColorizeOp.h"
#include "orvanta/editing/CropOp.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/editing/SepiaOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/RewriteLock.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

// Levels of the tone operations when none are given: a plain grey, and a warm brown.
constexpr double kBWLevels[3] = {0.5, 0.5, 0.5};
constexpr double kSepiaLevels[3] = {0.65, 0.5, 0.35};

// Parses "a,b,c,..." into exactly count numbers.
bool parseNumbers(const std::string& text, int count, double* out) {
    const char* p = text.c_str();
    for (int i = 0; i < count; ++i) {
        char* end = nullptr;
        out[i] = std::strtod(p, &end);
        if (end == p) return false;
        p = end;
        if (i + 1 < count) {
            if (*p != ',') return false;
            ++p;
        }
    }
    return *p == '\0';
}

bool parseInt(const std::string& text, int& out) {
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || value < 0 || value > 1000000000) return false;
    out = static_cast<int>(value);
    return true;
}

// Three levels from "NAME=R,G,B", or the defaults for a bare "NAME"; each inside (0, 1).
bool parseLevels(const std::string& value, bool given, const double* defaults, double* levels) {
    if (!given) {
        for (int i = 0; i < 3; ++i) levels[i] = defaults[i];
        return true;
    }
    if (!parseNumbers(value, 3, levels)) return false;
    for (int i = 0; i < 3; ++i)
        if (!(levels[i] > 0.0 && levels[i] < 1.0)) return false;
    return true;
}

// "WxH" or "WxH:M".
bool parseDownsize(const std::string& value, CSize& target, int& method) {
    const std::size_t x = value.find('x');
    if (x == std::string::npos) return false;
    const std::size_t colon = value.find(':', x);
    method = 0;
    if (colon != std::string::npos && !parseInt(value.substr(colon + 1), method)) return false;
    int w = 0, h = 0;
    if (!parseInt(value.substr(0, x), w) ||
        !parseInt(value.substr(x + 1, colon == std::string::npos ? std::string::npos : colon - x - 1), h))
        return false;
    if (w <= 0 || h <= 0 || method > 2) return false;
    target = CSize(w, h);
    return true;
}

// "X,Y" or "X,Y,R": the click in fractions of the picture, the search radius in its pixels. Without R,
// a twelfth of the shorter side (at least 4). The box must hold the pupil with a good margin of
// skin around it: the threshold is chosen by the sharpest growth of the red region, and only a box
// well larger than the pupil makes its final escape into the skin the sharpest.
bool parseRedeye(const std::string& value, CSize pictureSize, DibPoint& click, int& radius) {
    double f[3];
    if (parseNumbers(value, 3, f)) {
        if (!(f[2] >= 0.0 && f[2] <= 100000.0) || f[2] != static_cast<int>(f[2])) return false;
        radius = static_cast<int>(f[2]);
    } else if (parseNumbers(value, 2, f)) {
        radius = std::max(4, static_cast<int>(std::min(pictureSize.cx, pictureSize.cy)) / 12);
    } else {
        return false;
    }
    if (!(0.0 <= f[0] && f[0] < 1.0 && 0.0 <= f[1] && f[1] < 1.0)) return false;
    click = DibPoint(f[0], f[1]);
    return true;
}

ImageCodec* imageCodecFor(const std::string& path) {
    Codec* codec = CodecManager::getCodec(CString::fromUtf8(path));
    if (!codec || codec->getCodecType() != CodecTypeImage) return nullptr;
    return static_cast<ImageCodec*>(codec);
}

std::string narrow(const char16_t* text) {
    std::string out;
    for (; text && *text; ++text) out.push_back(*text < 0x80 ? static_cast<char>(*text) : '?');
    return out;
}

// Runs one operation word on the picture; a downsize sets restarted. Returns 0, or the exit status of
// a failure.
int runOperation(const std::string& word, OwnedPtr<EditableDib>& picture, bool& restarted) {
    const std::size_t eq = word.find('=');
    const std::string name = word.substr(0, eq);
    const bool given = eq != std::string::npos;
    const std::string value = given ? word.substr(eq + 1) : std::string();
    OwnedPtr<EditingOp> op;

    if (name == "rotate" && given) {
        int angle = 0;
        if (!parseInt(value, angle) || (angle != 90 && angle != 180 && angle != 270)) return 2;
        op = RotateOp::create(angle);
    } else if (name == "mirror" && given && (value == "h" || value == "v")) {
        op = MirrorOp::create(value == "v");
    } else if (name == "crop" && given) {
        double f[4];
        if (!parseNumbers(value, 4, f) || !(0.0 <= f[0] && f[0] < f[2] && f[2] <= 1.0) ||
            !(0.0 <= f[1] && f[1] < f[3] && f[3] <= 1.0))
            return 2;
        op = CropOp::create(DibMask(0, 0, picture->getSize(), DibRect(f[0], f[1], f[2], f[3]), 0));
    } else if (name == "downsize" && given) {
        CSize target;
        int method = 0;
        if (!parseDownsize(value, target, method)) return 2;
        // A downsize has no undo record: it is run on the picture as it stands, which then starts a
        // new history (the edits before it stay done).
        OwnedPtr<DownsizeOp> downsize(
            DownsizeOp::create(static_cast<DownsizeOp::DownsizeMethod>(method), target, false, false));
        OwnedPtr<Dib> smaller(downsize->doOp(picture, nullptr));
        const int limit = picture->getUndoLimit();
        picture = new EditableDib(smaller);
        picture->setUndoLimit(limit);
        restarted = true;
        return 0;
    } else if (name == "colorize" && given) {
        double levels[3];
        if (!parseLevels(value, true, nullptr, levels)) return 2;
        op = ColorizeOp::create(levels[0], levels[1], levels[2], 8);
    } else if (name == "bw") {
        double levels[3];
        if (!parseLevels(value, given, kBWLevels, levels)) return 2;
        op = BWOp::create(levels[0], levels[1], levels[2]);
    } else if (name == "sepia") {
        double levels[3];
        if (!parseLevels(value, given, kSepiaLevels, levels)) return 2;
        op = SepiaOp::create(levels[0], levels[1], levels[2]);
    } else if (word == "picfix") {
        op = PicFixOp::create();
    } else if (name == "redeye" && given) {
        DibPoint click;
        int radius = 0;
        if (!parseRedeye(value, picture->getSize(), click, radius)) return 2;
        op = RedeyeOp::create(click, radius);
        if (!op) {
            std::fprintf(stderr, "orvanta edit: no memory for a red-eye search of radius %d\n", radius);
            return 1;
        }
    } else if (word == "undo") {
        if (!picture->undo(true)) std::fprintf(stderr, "orvanta edit: nothing to undo\n");
        return 0;
    } else if (word == "redo") {
        if (!picture->redo()) std::fprintf(stderr, "orvanta edit: nothing to redo\n");
        return 0;
    } else {
        return 2;
    }
    if (!picture->doOp(op)) std::fprintf(stderr, "orvanta edit: %s changed nothing\n", word.c_str());
    return 0;
}

// True when both names lead to one file.
bool sameFile(const std::string& a, const std::string& b) {
    struct stat x, y;
    return stat(a.c_str(), &x) == 0 && stat(b.c_str(), &y) == 0 && x.st_dev == y.st_dev &&
           x.st_ino == y.st_ino;
}

// Lets an edit in place land: the user asked for the file to change, and no earlier version is kept.
class OverwritingPolicy : public AssetBackupPolicy {
protected:
    bool handlePrepareForSave(AssetFile* file) override { return true; }
};

// Stands for all the edits done, as one step of the file's picture history that is not a turn: it
// gives the edited picture, and keeps the one before for its undo record.
class EditsDone : public EditingOp {
public:
    EditsDone(Dib* result, int opType) : EditingOp(opType), mResult(result) {}
    Dib* doOp(Dib* dib, UndoOp** undo) override {
        if (undo) *undo = UndoOp::create(this, dib, false);
        return mResult;
    }

private:
    OwnedPtr<Dib> mResult;
};

// Hands what the edits did to the picture of the file being edited in place, and saves it: turns
// alone as one turn (done in the file where that loses nothing), anything else as the edited picture.
// True when there was nothing to save or the save landed.
bool saveInPlace(ImageFile* file, Image* image, EditableDib* picture, bool restarted) {
    if (!restarted && !picture->hasNonRotation()) {
        if (picture->getRotation() == 0) return true;
        image->doOp(OwnedPtr<EditingOp>(RotateOp::create(picture->getRotation())));
    } else {
        image->doOp(OwnedPtr<EditingOp>(new EditsDone(picture->getCurrent(), picture->getLastOpType())));
    }
    OverwritingPolicy policy;
    policy.makePolicyCurrent();
    image->save();
    const ImageFile::SaveResult result = file->getLastSaveResult();
    return result == ImageFile::SaveRotatedInFile || result == ImageFile::SaveReencoded;
}

}  // namespace

int runEdit(const Arguments& arguments) {
    std::vector<std::string> words;
    int undoLimit = 0;
    for (const auto& argument : arguments) {
        if (argument.rfind("--undo-limit=", 0) == 0) {
            if (!parseInt(argument.substr(13), undoLimit)) {
                std::fprintf(stderr, "orvanta edit: bad undo limit '%s'\n", argument.c_str());
                return 2;
            }
        } else {
            words.push_back(argument);
        }
    }
    if (words.size() < 2) {
        std::fprintf(stderr, "usage: orvanta edit [--undo-limit=N] SRC DST OP...\n");
        return 2;
    }
    const std::string& source = words[0];
    const std::string& destination = words[1];

    orvantaIUInit();
    int status = 0;
    clearFailure();
    // Held from the read to the write, for the destination may be the source itself.
    Platform::RewriteLock lock;
    try {
        ImageCodec* reader = imageCodecFor(source);
        ImageCodec* writer = imageCodecFor(destination);
        if (!reader || !writer) {
            std::fprintf(stderr, "orvanta edit: no codec for '%s'\n",
                         (!reader ? source : destination).c_str());
            status = 1;
        } else if (!lock.acquire(destination)) {
            std::fprintf(stderr, "orvanta edit: cannot write '%s'%s\n", destination.c_str(),
                         failureReason().c_str());
            status = 1;
        } else {
            const bool inPlace = sameFile(source, destination);
            OwnedPtr<ImageFile> file;
            OwnedPtr<Image> image;
            OwnedPtr<Dib> loaded;
            if (inPlace) {
                // The file's own picture: its history decides how the file is written.
                file = ImageFile::create(CString::fromUtf8(source), reader, nullptr, nullptr);
                image = file ? file->loadImage(0, 0, true) : nullptr;
                if (image) loaded = static_cast<EditableDib*>(image->getDib())->getCurrent();
            } else {
                loaded = reader->read(CString::fromUtf8(source), nullptr, 0, 0);
            }
            if (!loaded) {
                std::fprintf(stderr, "orvanta edit: cannot read '%s'%s\n", source.c_str(),
                             failureReason().c_str());
                status = 1;
            } else {
                OwnedPtr<EditableDib> picture(new EditableDib(loaded));
                picture->setUndoLimit(undoLimit);
                bool restarted = false;
                for (std::size_t i = 2; i < words.size() && status == 0; ++i) {
                    status = runOperation(words[i], picture, restarted);
                    if (status) std::fprintf(stderr, "orvanta edit: bad operation '%s'\n", words[i].c_str());
                }
                if (status == 0) {
                    // A JPEG keeps the metadata of its source (EXIF, XMP, IPTC, comments).
                    const CString target = CString::fromUtf8(destination);
                    bool written;
                    if (inPlace)
                        written = saveInPlace(file, image, picture, restarted);
                    else if (writer->getImageType() == ImageTypeJpeg)
                        written = ImageCodec::writeAsJpeg(picture->getCurrent(), target, ImageQualityHigh,
                                                          CString::fromUtf8(source));
                    else
                        written = writer->write(picture->getCurrent(), target, ImageQualityHigh) > 0;
                    if (!written) {
                        std::fprintf(stderr, "orvanta edit: cannot write '%s'%s\n", destination.c_str(),
                                     failureReason().c_str());
                        status = 1;
                    } else {
                        const CSize size = picture->getSize();
                        std::printf("%s\t%d\t%d\tundo %d\tredo %d\tretired %d\n", destination.c_str(),
                                    size.cx, size.cy, picture->getUndoCount(), picture->getRedoCount(),
                                    picture->getRetiredCount());
                    }
                }
            }
        }
    } catch (const Exception& e) {
        std::fprintf(stderr, "orvanta edit: %s%s\n", narrow(e.getMessage()).c_str(), failureReason().c_str());
        status = 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "orvanta edit: %s\n", e.what());
        status = 1;
    }
    lock.release();
    orvantaIUDeInit();
    return status;
}

}  // namespace OrvantaTool
