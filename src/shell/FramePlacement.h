#pragma once

#include <cstdint>

// A rectangle in twips, as the frame's place is saved.
struct TwipsRect {
    int32_t Left = 0;
    int32_t Top = 0;
    int32_t Width = 0;
    int32_t Height = 0;
    bool operator==(const TwipsRect&) const = default;
};

// Where the main frame goes: the default place on the primary screen, and a saved place
// pulled back onto the desktop when the monitor it was on has gone or shrunk.
class FramePlacement {
public:
    static constexpr int TwipsPerPixel = 15;

    // An eighth in from the top left corner, three quarters of the screen in size.
    static TwipsRect DefaultRect(int32_t screenWidth, int32_t screenHeight);
    // Each edge is tested as it stands: a left or top before the desktop's origin moves to
    // it, one beyond nine tenths of the desktop's far edge goes back to an eighth of the
    // primary screen; a width or height larger than the desktop is cut to it.
    static TwipsRect Fit(TwipsRect rect, const TwipsRect& desktop, int32_t screenWidth,
                         int32_t screenHeight);
};
