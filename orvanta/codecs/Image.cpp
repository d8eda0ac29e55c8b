#include "orvanta/codecs/Image.h"

namespace Orvanta {

double Image::calcScale(CSize source, CSize box, bool allowEnlarge, bool fill) {
    return calcScale(source.cx, source.cy, box.cx, box.cy, allowEnlarge, fill);
}

double Image::calcScale(int sourceWidth, int sourceHeight, int boxWidth, int boxHeight, bool allowEnlarge,
                        bool fill) {
    const double sx = static_cast<double>(boxWidth) / sourceWidth;
    const double sy = static_cast<double>(boxHeight) / sourceHeight;
    if (!allowEnlarge && sx >= 1.0 && sy >= 1.0) return 1.0;
    if (fill) return sx > sy ? sx : sy;
    return sx < sy ? sx : sy;
}

}  // namespace Orvanta
