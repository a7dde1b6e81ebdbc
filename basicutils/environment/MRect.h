// MRect: a rectangle in integer coordinates, kept as a corner and a size.
//
// GetRight and GetBottom name the last column and row inside (x + width - 1),
// while IsPointed also accepts the column x + width and the row y + height:
// a point on the edge just past the rectangle counts as inside. Set turns a
// negative size round so that the same span is covered from its other side;
// the four-number constructor stores its numbers as given.
#pragma once

#include <basicutils/Export.h>

namespace basicutils {

class BASICUTILS_EXPORT MRect {
  public:
    MRect() = default;
    MRect(int x, int y, int width, int height) : mX(x), mY(y), mWidth(width), mHeight(height) {}

    int GetX() const { return mX; }
    int GetLeft() const { return mX; }
    int GetY() const { return mY; }
    int GetTop() const { return mY; }
    int GetWidth() const { return mWidth; }
    int GetHeight() const { return mHeight; }
    int GetRight() const { return mX + mWidth - 1; }
    int GetBottom() const { return mY + mHeight - 1; }

    void Set(int x, int y, int width, int height);
    // Places the corner at (x, y); the size stays.
    void Move(int x, int y) {
        mX = x;
        mY = y;
    }
    // Inclusive of the column and row just past the edges: answers 1 for
    // x in [mX, mX + mWidth] and y in [mY, mY + mHeight], else 0.
    int IsPointed(int x, int y) const;

  protected:
    int mX = 0;
    int mY = 0;
    int mWidth = 0;
    int mHeight = 0;
};

BASICUTILS_EXPORT int operator==(const MRect& a, const MRect& b);
BASICUTILS_EXPORT int operator!=(const MRect& a, const MRect& b);

}  // namespace basicutils
