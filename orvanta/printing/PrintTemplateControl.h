#pragma once
// PrintTemplateControl: the on-screen editor of a PrintTemplatePage, the screen's counterpart of the
// printed page. The page is drawn from its working copies, scaled to fit inside the control less a
// margin of 10 pixels and never enlarged. A picture that overhangs its slot is dragged along the
// axis it overhangs, never so far that the slot shows a gap; a click on a text slot, or the
// command, asks the helper for its new text; a right click asks the helper for a command: clear
// the slot, turn it a quarter either way, or edit its text.

#include "orvanta/printing/PrintTemplatePageRenderer.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

// What the application provides to the control.
class PrintTemplateControlHelper {
public:
    enum ContextMenuCommand { None = 0, ClearSlot = 1, Rotate270 = 2, Rotate90 = 3, EditText = 4 };

    virtual ~PrintTemplateControlHelper() = default;
    // Lets the user edit a text slot; answers the new text.
    virtual CString requestText(const CString& slot, const CString& text) = 0;
    // Which command the user chose for a slot (None by default).
    virtual int requestContextMenuCommand(bool isEmpty, int type) { return None; }
};

class PrintTemplateControl : public Control {
public:
    enum DragMode { DragNone = 0, DragHorizontal = 1, DragVertical = 2 };

    static PrintTemplateControl* create(PrintTemplateControlHelper* helper);

    void setPage(PrintTemplatePage* page);
    PrintTemplatePage* getPage() { return mRenderer->getPage(); }
    double getScale() const { return mScale; }
    int getDragMode() const { return mDragMode; }
    void paintContent(HDC dc) override;

protected:
    void setRectImpl(const CRect& rect) override;
    bool onMouse(UINT message, CPoint point, WPARAM keys) override;

private:
    // How a drag from `at` (in template pixels) would move the picture of the image slot there: along
    // the axis it overhangs its slot on (the overhang, when asked); DragNone off a picture.
    int dragAt(PrintTemplatePage* page, Platform::Canvas* screen, CPoint at, CSize* overhang);
    explicit PrintTemplateControl(PrintTemplateControlHelper* helper);
    void updateScale();
    void editText(const CString& slot);

    OwnedPtr<PrintTemplatePageRenderer> mRenderer;
    double mScale = 1.0;
    PrintTemplateControlHelper* mHelper;
    int mDragMode = DragNone;
    CString mDragSlot;
    CPoint mDragStart;
    int mDragOffsetX = 0, mDragOffsetY = 0;
    int mDragLimitX = 0, mDragLimitY = 0;
};

}  // namespace Orvanta
