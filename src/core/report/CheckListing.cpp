#include "CheckListing.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace fb {

namespace {

// A column of the text listing stays on its line and in its column.
QString column(const QString& text)
{
    if (text.isEmpty())
        return QStringLiteral("-");
    QString out = text;
    for (QChar& c : out)
        if (c == u'\t' || c == u'\n' || c == u'\r')
            c = u' ';
    return out;
}

} // namespace

std::optional<ListingFormat> ListingFormatFromName(const QString& name)
{
    const QString n = name.toLower();
    if (n == u"text")
        return ListingFormat::Text;
    if (n == u"json")
        return ListingFormat::Json;
    return std::nullopt;
}

QString ProblemKindName(ProblemKind kind)
{
    switch (kind) {
    case ProblemKind::UnknownTable:
        return QStringLiteral("unknown-table");
    case ProblemKind::UnknownField:
        return QStringLiteral("unknown-field");
    case ProblemKind::TypeLoss:
        return QStringLiteral("type-loss");
    case ProblemKind::MandatoryWithoutRule:
        return QStringLiteral("mandatory-without-rule");
    case ProblemKind::UnreferencedDump:
        return QStringLiteral("unreferenced-dump");
    case ProblemKind::QueryNotMigrated:
        break;
    }
    return QStringLiteral("query-not-migrated");
}

QString RenderCheckListing(const QList<Problem>& problems, ListingFormat format)
{
    if (format == ListingFormat::Text) {
        QString out;
        for (const Problem& p : problems)
            out += SeverityText(p.severity) + u'\t' +
                   (p.dump > 0 ? QString::number(p.dump) : QStringLiteral("-")) + u'\t' + column(p.field) +
                   u'\t' + column(p.message) + u'\n';
        return out;
    }
    QJsonArray array;
    for (const Problem& p : problems) {
        QJsonObject o;
        o.insert(QStringLiteral("severity"), SeverityText(p.severity).toLower());
        o.insert(QStringLiteral("kind"), ProblemKindName(p.kind));
        o.insert(QStringLiteral("dump"), p.dump > 0 ? QJsonValue(p.dump) : QJsonValue());
        o.insert(QStringLiteral("field"), p.field.isEmpty() ? QJsonValue() : QJsonValue(p.field));
        o.insert(QStringLiteral("message"), p.message);
        array.append(o);
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
}

int CheckExitStatus(const QList<Problem>& problems)
{
    for (const Problem& p : problems)
        if (p.severity == Severity::Error)
            return 1;
    return 0;
}

} // namespace fb
