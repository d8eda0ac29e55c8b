#pragma once
// Image: a picture as the rest of the library holds it: a Dib with sizing and drawing on top and,
// when made editable, the gate to the picture's undo history (EditableDib).
//
// Contract: an Image may hold no Dib; then sizes are (0, 0), createDownsized gives null, nothing is
// drawn and the history answers as a picture that is not editable. The history operations forward
// to the Dib. save() folds the history, but first notifies code 1 when there is anything to fold,
// so that a listener (the picture's file) writes the edited picture while the edits can still be
// told apart.
//
// Contract of the static calcScale: the factor that brings source into box, in double precision.
// Without allowEnlarge a source that already fits gets 1.0. With fill the picture covers the box
// (the larger factor), otherwise it lies inside it (the smaller); on a tie the vertical factor is
// taken.
//
// Drawing: the whole picture is drawn stretched to a rectangle with the filtering stretch mode.
// drawJpegDirect hands a JPEG block to a canvas that takes compressed pictures (a PDF page): the
// result is whether the canvas took it.

#include "orvanta/editing/DibRect.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

class EditingOp;
using HDC = Platform::Canvas*;

class Image : public IOwned, public Notifier {
public:
    // The notification of save(): the picture's file writes it now, before the history is folded.
    static constexpr int kSaving = 1;

    // With editable, dib is wrapped in a new EditableDib whose history starts at it; otherwise it
    // is held as it is. Null when memory runs out.
    static Image* create(Dib* dib, bool editable);

    static double calcScale(CSize source, CSize box, bool allowEnlarge, bool fill);
    static double calcScale(int sourceWidth, int sourceHeight, int boxWidth, int boxHeight, bool allowEnlarge,
                            bool fill);

    ~Image() override = default;

    // The size the picture takes in box, by calcScale.
    virtual CSize getFitSize(CSize box, bool allowEnlarge, bool fill);
    // Each side times scale, rounded up, at least 1.
    virtual CSize getScaledSize(double scale);
    static CSize scaledSize(CSize size, double scale);
    virtual double calcScale(CSize box, bool allowEnlarge, bool fill);
    virtual double calcScaleFor(CSize box, bool allowEnlarge, bool fill);
    virtual CSize getSize();
    // A new plain picture of the part rect of this one, fitted into target (enlarged only with
    // allowEnlarge), or null.
    virtual Image* createDownsized(DownsizeOp::DownsizeMethod method, CSize target, bool allowEnlarge,
                                   DibRect rect);
    virtual bool operator==(const Image& other);
    virtual Dib* getDib();

    virtual void draw(HDC dc, int x, int y, int width, int height);
    virtual void drawStretched(HDC dc, int x, int y, int width, int height);
    virtual void draw(HDC dc, int x, int y, double scale);
    virtual void drawScaled(HDC dc, int x, int y, double scale);
    static bool drawJpegDirect(HDC dc, int x, int y, void* data, int size, int width, int height,
                               int destWidth, int destHeight);
    static bool drawJpegDirect(HDC dc, int x, int y, void* data, int size, int width, int height,
                               double scale);

    virtual bool isEditable();
    virtual bool isEdited();
    virtual bool hasNonRotation();
    virtual bool hasPicFix();
    virtual int getUndoCount();
    virtual int getRedoCount();
    virtual int getRetiredCount();
    virtual void setUndoLimit(int limit);
    virtual int getUndoLimit();
    virtual void save();
    virtual void revert(bool keepForRedo);
    virtual bool doOp(EditingOp* op);
    virtual bool undo(bool keepForRedo);
    virtual bool redo();
    virtual void commit();
    virtual int getLastOpType();

private:
    Image() = default;

    OwnedPtr<Dib> mDib;
};

}  // namespace Orvanta
