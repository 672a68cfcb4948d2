#pragma once

class QWidget;

// Lengths of the layout are given in twips (1440 to the inch). They are turned
// into pixels through the screen's logical resolution, here and nowhere else.
namespace fb {
int TwipsToPixelsX(int twips, const QWidget* widget);
int TwipsToPixelsY(int twips, const QWidget* widget);
int PixelsToTwipsX(int pixels, const QWidget* widget);
int PixelsToTwipsY(int pixels, const QWidget* widget);
} // namespace fb
