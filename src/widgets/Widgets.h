#pragma once

#include <QString>
#include <QWidget>

namespace fb {

// Creates a child widget with its objectName; text (when given) becomes the
// caption through the widget's own setText or setTitle.
template <typename W> W* MakeChild(QWidget* parent, const QString& objectName)
{
    auto* w = new W(parent);
    w->setObjectName(objectName);
    return w;
}

// Places a widget in pixels. A size the widget cannot take (negative) is
// skipped and the widget keeps its previous one; the position is still set.
inline void Place(QWidget* w, int x, int y, int width, int height)
{
    if (!w)
        return;
    const int newW = width >= 0 ? width : w->width();
    const int newH = height >= 0 ? height : w->height();
    w->setGeometry(x, y, newW, newH);
}

} // namespace fb
