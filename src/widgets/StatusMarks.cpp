#include "StatusMarks.h"

#include "core/rules/Checks.h"
#include "core/session/FieldMarks.h"
#include "core/session/ProblemsModel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace fb {

namespace {

enum class Status { None, Good, Open, Warning, Error };

Status statusOf(const QModelIndex& index)
{
    const QVariant mark = index.data(kFieldMarkRole);
    if (mark.isValid())
        return FieldMark(mark.toInt()) == FieldMark::Mapped          ? Status::Good
               : FieldMark(mark.toInt()) == FieldMark::MandatoryOpen ? Status::Open
                                                                     : Status::None;
    const QVariant severity = index.data(ProblemsModel::kSeverityRole);
    if (severity.isValid())
        return Severity(severity.toInt()) == Severity::Error ? Status::Error : Status::Warning;
    return Status::None;
}

QColor colourOf(Status s)
{
    switch (s) {
    case Status::Good:
        return QColor(0x2e, 0x7d, 0x32);
    case Status::Open:
    case Status::Warning:
        return QColor(0xb2, 0x6a, 0x00);
    case Status::Error:
        return QColor(0xc6, 0x28, 0x28);
    case Status::None:
        break;
    }
    return QColor();
}

// A round badge with a tick, or with an exclamation mark.
QIcon iconOf(Status s)
{
    static QIcon icons[5];
    QIcon& icon = icons[int(s)];
    if (s == Status::None || !icon.isNull())
        return icon;
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(colourOf(s));
    p.drawEllipse(QRectF(2, 2, 28, 28));
    p.setPen(QPen(Qt::white, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (s == Status::Good) {
        QPainterPath tick;
        tick.moveTo(9, 16.5);
        tick.lineTo(14, 21.5);
        tick.lineTo(23, 11);
        p.drawPath(tick);
    } else {
        p.drawLine(QPointF(16, 8.5), QPointF(16, 18));
        p.drawPoint(QPointF(16, 23.5));
    }
    p.end();
    icon = QIcon(pixmap);
    return icon;
}

QString tipOf(Status s)
{
    switch (s) {
    case Status::Good:
        return QStringLiteral("This field has a rule");
    case Status::Open:
        return QStringLiteral("Mandatory field without a rule");
    default:
        return QString();
    }
}

} // namespace

void StatusMarks::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const Status s = statusOf(index);
    if (s == Status::None)
        return;
    if (s == Status::Good || s == Status::Open) { // a field's mark; a problem's line keeps its colours
        QColor tint = colourOf(s);
        tint.setAlpha(40);
        option->backgroundBrush = tint;
    }
    option->icon = iconOf(s);
    option->features |= QStyleOptionViewItem::HasDecoration;
    const int side = option->fontMetrics.height() - 2;
    option->decorationSize = QSize(side, side);
}

bool StatusMarks::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index)
{
    const QString tip = tipOf(statusOf(index));
    if (event->type() == QEvent::ToolTip && !tip.isEmpty()) {
        QToolTip::showText(event->globalPos(), tip, view);
        return true;
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

} // namespace fb
