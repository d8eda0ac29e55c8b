#pragma once
// ImageControl: one picture shown fitted in the control, with a zoom (1.0 is fitted, never enlarged
// past the picture's own pixels at fit), a centre, an optional shadow around it, and cursors at the
// edges behind which more of the picture lies. Tools are plug-ins (ImageControlPlugin), one at a time.
//
// Contract:
//  - The visible part of the picture comes from DibRect::computeVisibleRect of the view (the client
//    less the shadow), the picture's size, the centre and the zoom; the last result is kept in one
//    process-wide slot with its inputs, so repaints with the same values do not compute it again.
//  - The visible part scaled to the display rectangle is kept in one slot until the picture or what
//    is shown of it changes, so repaints (a plug-in's frame following the pointer) only copy it. A
//    plug-in that knows which part of the picture its edit touches says so first
//    (pictureChangesWithin, and withdraws it after the edit): only that part is scaled again and repainted.
//  - The display rectangle is where that part stands, placed by the control's alignment (centred
//    when unset or filling) with the shadow outside it. Painting draws only the visible part, scaled straight
//    into the display rectangle: a zoomed view never scales the whole picture.
//  - A change of the picture (an edit through its history) repaints the control and tells the
//    plug-in. Without an Image the fallback Dib, if any, is drawn at its own size.
//  - Mouse: inside the display rectangle presses, releases and moves go to the plug-in; without one
//    (or when it declines), dragging a zoomed picture moves the centre. A press also goes to the
//    command listeners as kPicturePressed.
//  - Edge codes (hitEdge) 0 top left, 1 top, 2 top right, 3 left, 4 right, 5 bottom left, 6 bottom,
//    7 bottom right, -1 none; an edge counts only where more of the picture lies behind it, so at
//    zoom 1.0 no edge cursor shows.

#include "orvanta/editing/DibPoint.h"
#include "orvanta/editing/DibRect.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/toolkit/WindowedControl.h"
#include "orvanta/views/ImageControlPlugin.h"

namespace Orvanta {

class Dib;
class DibSection;
class Image;

class ImageControl : public WindowedControl, public NotifierListener {
public:
    static constexpr int kPicturePressed = 0x0401;

    static ImageControl* create(bool tabStop);
    static ImageControl* create(Image* image, bool tabStop);
    ~ImageControl() override;

    Image* getImage() const { return mImage; }
    void setImage(Image* image);
    // Drawn when no Image is set; not owned.
    void setFallback(Dib* fallback);
    ImageControlPlugin* getPlugin() const { return mPlugin; }
    // Detaches the present plug-in (onDeactivate) and attaches plugin (null: none), then onActivate.
    void setPlugin(ImageControlPlugin* plugin);

    double getZoom() const { return mZoom; }
    void setZoom(double zoom, bool repaint);
    DibPoint getCenter() const { return mCenter; }
    void setCenter(double x, double y);
    // A 3 x 3 tile sheet drawn around the picture (null: none).
    void setShadow(Dib* sheet);
    void setEdgeTolerance(int pixels) { mEdgeTolerance = pixels; }
    // The standard cursor (an IDC_ id, -1 for none) shown at an edge code.
    void setEdgeCursor(int code, int id);

    DibRect getVisibleRect();
    CRect getDisplayRect();
    // The pointer in client coordinates.
    CPoint getMousePoint() const;
    int hitEdge(int x, int y, int left, int top, int right, int bottom);
    // The picture alone, its visible part in the display rectangle, and the shadow.
    void paintPicture(HDC dc);
    // The next change of the picture lies within *part (fractions of the picture); null withdraws
    // what was said, when the edit changed nothing.
    void pictureChangesWithin(const DibRect* part);

    void paintContent(HDC dc) override;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override;
    void onNotification(void* sender, const Notification& notification) override;

protected:
    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    void onSize(CSize size) override;

private:
    explicit ImageControl(Image* image);
    void listen(bool on);
    void changed();
    CSize shadowTile() const;
    // The scaled slot for the visible part at size, made or brought up to date.
    DibSection* scaled(Dib* dib, const DibRect& visible, CSize size);
    // Scales the visible part of dib into the slot, within clip (slot pixels) only.
    void scaleInto(Dib* dib, const CRect& clip);

    OwnedPtr<Image> mImage;
    Dib* mFallback = nullptr;
    OwnedPtr<ImageControlPlugin> mPlugin;
    OwnedPtr<Dib> mShadow;
    double mZoom = 1.0;
    DibPoint mCenter{0.5, 0.5};
    int mEdgeTolerance = 0;
    int mCursors[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    Dib* mListened = nullptr;
    OwnedPtr<DibSection> mScaled;
    DibRect mScaledPart;
    bool mScaledValid = false;
    DibRect mPendingChange;
    bool mChangeAnnounced = false;
    CPoint mMouse;
    bool mPanning = false;
    CPoint mPanFrom;
    DibPoint mPanCenter;
};

}  // namespace Orvanta
