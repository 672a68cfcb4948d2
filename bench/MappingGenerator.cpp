#include "MappingGenerator.h"

#include <QStringList>

namespace fb::bench {

namespace {
const char16_t kTypes[] = u"BILFDSMEPTKU";

QString tableName(int i)
{
    // Five letters, three digits.
    QString letters;
    int n = i;
    for (int k = 0; k < 5; ++k) {
        letters.prepend(QChar(u'a' + n % 26));
        n /= 26;
    }
    return letters + QString::number(i % 1000).rightJustified(3, u'0');
}

QString fieldName(int i)
{
    // Every third field is an element of a three-element array.
    if (i % 3 == 2)
        return QStringLiteral("ARR%1__%2").arg(i / 30).arg(i % 3 + 1);
    return QStringLiteral("FLD%1").arg(i);
}

QString fieldElement(const QString& name, int no, int i)
{
    const QChar type = QChar(kTypes[i % 12]);
    return QStringLiteral("<%1 No=\"%2\" FNo=\"%3\" TYPE=\"%4\" LENG=\"%5\" DIGB=\"10\" DIGA=\"2\" "
                          "DSCA=\"Field %2 of the table\" ADJU=\"L\" CASE=\"U\" MAN=\"%6\"/>")
        .arg(name)
        .arg(no)
        .arg(no * 7 % 150)
        .arg(type)
        .arg(10 + i % 40)
        .arg(i % 4 == 0 ? QStringLiteral("Y") : QStringLiteral("N"));
}
} // namespace

QString GenerateMapping(const MappingShape& shape)
{
    QString out;
    out.reserve(1 << 20);
    out += QStringLiteral("<klmno001>");
    QStringList sources;
    for (int t = 0; t < shape.sourceTables; ++t)
        sources.append(tableName(t + 1));
    out += QStringLiteral("<SRCTBL>") + sources.join(u',') + QStringLiteral("</SRCTBL>");
    out += QStringLiteral("<PREC TEXT=\"\">");
    for (const QString& s : sources)
        out += QStringLiteral("migrate ") + s + u'\n';
    for (int d = 1; d <= shape.dumps; ++d)
        out += QStringLiteral("dump %1 Dump number %1\n").arg(d);
    out += QStringLiteral("</PREC>");
    for (const QString& s : sources) {
        out += QStringLiteral("<QUERY ST=\"") + s + QStringLiteral("\" TEXT=\"\">");
        for (int l = 0; l < shape.queryLines; ++l)
            out += QStringLiteral("select %1.fld%2 where x &lt; %2\n").arg(s).arg(l);
        out += QStringLiteral("</QUERY>");
    }
    out += QStringLiteral("<FUNCTIONS>function f(x)\nreturn x\nendfunction</FUNCTIONS>");
    out += QStringLiteral("<VAR>a~|~long~^~b~|~string</VAR>");
    for (int d = 1; d <= shape.dumps; ++d) {
        out += QStringLiteral("<DUMP No=\"%1\" TXT=\"Dump number %1\">").arg(d);
        for (int r = 0; r < std::min(shape.rulesPerDump, shape.targetFields); ++r)
            out += QStringLiteral("<%1 No=\"%2\" TYPE=\"0\" TEXT=\"\">src.fld%2</%1>").arg(fieldName(r)).arg(r + 1);
        out += QStringLiteral("</DUMP>");
    }
    out += QStringLiteral("<TARTAB><KLMNO001>");
    for (int f = 0; f < shape.targetFields; ++f)
        out += fieldElement(fieldName(f), f + 1, f);
    out += QStringLiteral("</KLMNO001></TARTAB><SRCTAB>");
    for (int t = 0; t < shape.sourceTables; ++t) {
        const QString upper = sources[t].toUpper();
        out += u'<' + upper + u'>';
        for (int f = 0; f < shape.fieldsPerSource; ++f)
            out += fieldElement(fieldName((f * 7 + t) % (shape.fieldsPerSource * 2)), f + 1, f);
        out += QStringLiteral("</") + upper + u'>';
    }
    out += QStringLiteral("</SRCTAB></klmno001>");
    return out;
}

} // namespace fb::bench
