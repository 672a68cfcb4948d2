#include "Twips.h"

#include <QWidget>
#include <cmath>

namespace fb {

namespace {
constexpr double kTwipsPerInch = 1440.0;

int toPixels(int twips, int dpi)
{
    return int(std::lround(twips * (dpi > 0 ? dpi : 96) / kTwipsPerInch));
}

int toTwips(int pixels, int dpi)
{
    return int(std::lround(pixels * kTwipsPerInch / (dpi > 0 ? dpi : 96)));
}
} // namespace

int TwipsToPixelsX(int twips, const QWidget* widget)
{
    return toPixels(twips, widget ? widget->logicalDpiX() : 96);
}

int TwipsToPixelsY(int twips, const QWidget* widget)
{
    return toPixels(twips, widget ? widget->logicalDpiY() : 96);
}

int PixelsToTwipsX(int pixels, const QWidget* widget)
{
    return toTwips(pixels, widget ? widget->logicalDpiX() : 96);
}

int PixelsToTwipsY(int pixels, const QWidget* widget)
{
    return toTwips(pixels, widget ? widget->logicalDpiY() : 96);
}

} // namespace fb
