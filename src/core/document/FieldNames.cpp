#include "FieldNames.h"

namespace fb {

QString ToDisplayFieldName(const QString& storedName)
{
    if (!storedName.contains(QStringLiteral("__")))
        return storedName;
    QString shown = storedName;
    shown.replace(QStringLiteral("__"), QStringLiteral("("));
    shown += u')';
    return shown;
}

QString ToStoredFieldName(const QString& shownName)
{
    if (!shownName.contains(u'('))
        return shownName;
    QString stored = shownName;
    stored.replace(u'(', QStringLiteral("__"));
    stored.remove(u')');
    return stored;
}

} // namespace fb
