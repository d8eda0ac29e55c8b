#pragma once
// Dib: a device-independent bitmap, the form every picture of the library takes in memory.
//
// Contract: rows run top-down (the header says so with a negative biHeight); each row starts on a
// 4-byte boundary; a pixel is 1 byte (grey or mask), 3 bytes (blue, green, red) or 4 bytes (blue,
// green, red and a byte nothing interprets). getBits is the pixel memory itself, never a copy.
// The editing extension (undo limit through hasPicFix) has a meaning only for the editable picture;
// every other Dib answers with do-nothing defaults: false, 0, or nothing.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/platform/CSize.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class EditingOp;

class Dib : public IOwned, public Notifier {
public:
    ~Dib() override = default;

    // Same size, same byte count, same bytes, row padding included.
    virtual bool operator==(const Dib& other) const;
    virtual BITMAPINFO* getBitmapInfo() const = 0;
    virtual unsigned char* getBits() const = 0;
    virtual BITMAPINFOHEADER* getBitmapInfoHeader() const = 0;
    virtual int getBitsSize() const = 0;
    virtual CSize getSize() const = 0;

    // The editing extension.
    virtual void setUndoLimit(int limit) {}
    virtual int getUndoLimit() const { return 0; }
    virtual bool isEditable() const { return false; }
    virtual bool isEdited() const { return false; }
    virtual int getUndoCount() const { return 0; }
    virtual int getRedoCount() const { return 0; }
    virtual int getRetiredCount() const { return 0; }
    virtual void commit() {}
    virtual void revert(bool keepForRedo) {}
    virtual void clearRedo() {}
    virtual bool doOp(EditingOp* op) { return false; }
    virtual bool undo(bool keepForRedo) { return false; }
    virtual bool redo() { return false; }
    virtual int getLastOpType() const { return 0; }
    virtual int getNextRedoOpType() const { return 0; }
    virtual int getRotation() const { return 0; }
    virtual bool hasNonRotation() const { return false; }
    virtual bool hasPicFix() const { return false; }

    // Bytes per pixel from the header's bit count (1, 3 or 4), and the bytes from one row to the next.
    int getBytesPerPixel() const { return getBitmapInfoHeader()->biBitCount / 8; }
    int getStride() const { return strideFor(getSize().cx, getBytesPerPixel()); }
    static int strideFor(int width, int bytesPerPixel) { return (bytesPerPixel * width + 3) & ~3; }
};

}  // namespace Orvanta
