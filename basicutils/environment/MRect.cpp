#include <basicutils/environment/MRect.h>

namespace basicutils {

void MRect::Set(int x, int y, int width, int height) {
    if (width < 0) {
        x += width;
        width = -width;
    }
    if (height < 0) {
        y += height;
        height = -height;
    }
    mX = x;
    mY = y;
    mWidth = width;
    mHeight = height;
}

int MRect::IsPointed(int x, int y) const {
    return mX <= x && x <= mX + mWidth && mY <= y && y <= mY + mHeight ? 1 : 0;
}

int operator==(const MRect& a, const MRect& b) {
    return a.GetX() == b.GetX() && a.GetY() == b.GetY() && a.GetWidth() == b.GetWidth() &&
                   a.GetHeight() == b.GetHeight()
               ? 1
               : 0;
}

int operator!=(const MRect& a, const MRect& b) {
    return a == b ? 0 : 1;
}

}  // namespace basicutils
