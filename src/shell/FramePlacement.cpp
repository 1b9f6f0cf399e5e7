#include "shell/FramePlacement.h"

#include <cmath>

namespace {

int32_t part(int32_t length, double share) {
    return static_cast<int32_t>(std::lround(length * share));
}

} // namespace

TwipsRect FramePlacement::DefaultRect(int32_t screenWidth, int32_t screenHeight) {
    return {part(screenWidth, 0.125), part(screenHeight, 0.125), part(screenWidth, 0.75),
            part(screenHeight, 0.75)};
}

TwipsRect FramePlacement::Fit(TwipsRect rect, const TwipsRect& desktop, int32_t screenWidth,
                              int32_t screenHeight) {
    // The far edge is origin plus extent: the desktop may begin left of or above the
    // primary screen.
    const double right = 0.9 * (static_cast<double>(desktop.Left) + desktop.Width);
    const double bottom = 0.9 * (static_cast<double>(desktop.Top) + desktop.Height);
    if (rect.Left < desktop.Left)
        rect.Left = desktop.Left;
    else if (rect.Left > right)
        rect.Left = part(screenWidth, 0.125);
    if (rect.Top < desktop.Top)
        rect.Top = desktop.Top;
    else if (rect.Top > bottom)
        rect.Top = part(screenHeight, 0.125);
    if (rect.Width > desktop.Width)
        rect.Width = desktop.Width;
    if (rect.Height > desktop.Height)
        rect.Height = desktop.Height;
    return rect;
}
