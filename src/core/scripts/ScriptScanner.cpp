#include "ScriptScanner.h"

#include "core/document/TextRules.h"

#include <exception>

namespace fb {

namespace {
const QString kMigrate = QStringLiteral("migrate");
const QString kDump = QStringLiteral("dump");
constexpr int kMigrateLen = 7;
constexpr int kDumpLen = 4;
constexpr qint16 kErrParse = 2002;

QChar charAt(const QString& text, int pos) // 1-based; a null char outside the text
{
    return pos >= 1 && pos <= text.size() ? text[pos - 1] : QChar();
}
} // namespace

bool IsSeparator(QChar c)
{
    return c == u'\n' || c == u'\r' || c == u'\t' || c == u' ';
}

bool ListContains(const QStringList& list, const QString& name)
{
    return list.contains(name, Qt::CaseSensitive);
}

QString ReadDumpText(const QString& rest, int nextDump)
{
    qsizetype i = 0;
    while (i < rest.size() && IsSeparator(rest[i]))
        ++i;
    while (i < rest.size() && !IsSeparator(rest[i]))
        ++i; // the number itself
    qsizetype end = i;
    const qsizetype limit = nextDump > 0 ? qsizetype(nextDump - 1) : rest.size();
    while (end < rest.size() && end < limit && rest[end] != u'\n' && rest[end] != u'\r')
        ++end;
    if (end < i)
        return QString();
    QString text = rest.mid(i, end - i);
    qsizetype b = 0;
    qsizetype e = text.size();
    while (b < e && (text[b] == u' ' || text[b] == u'\t'))
        ++b;
    while (e > b && (text[e - 1] == u' ' || text[e - 1] == u'\t'))
        --e;
    return text.mid(b, e - b);
}

bool ScriptScanner::IsKeywordAt(const QString& text, int p, int n, const QString& message)
{
    if (text.size() > p + n)
        return IsSeparator(charAt(text, p + n)) && (p == 1 || IsSeparator(charAt(text, p - 1)));
    if (p == 1) {
        m_ui.MsgBox(message, MsgButtons::Ok, MsgIcon::Critical);
        return false;
    }
    if (IsSeparator(charAt(text, p - 1))) {
        m_ui.MsgBox(message, MsgButtons::Ok, MsgIcon::Information);
        return false;
    }
    return false;
}

QString ScriptScanner::NextWord(const QString& text, qint32& count)
{
    QString s = str::Trim(text);
    while (!s.isEmpty() && (s[0] == u'\n' || s[0] == u'\r' || s[0] == u'\t')) {
        s = str::Trim(s.mid(1));
        ++count;
    }
    s = str::LTrim(s);
    qsizetype len = 0;
    while (len < s.size() && !IsSeparator(s[len]))
        ++len;
    count += qint32(len);
    return s.left(len);
}

bool ScriptScanner::ParseMigrateTables(const QString& text)
{
    if (text.isEmpty())
        return false;
    try {
        m_doc.MigrateTables() = QStringList{QString()};
        QString rest = text;
        int length = int(rest.size());
        int p = str::InStrText(rest, kMigrate);
        while (p > 0) {
            if (length <= p + kMigrateLen) {
                m_ui.MsgBox(QStringLiteral("Migrate Keyword Has to be followed by a TableName"), MsgButtons::Ok,
                            MsgIcon::Critical);
                break;
            }
            const bool whole =
                IsKeywordAt(rest, p, kMigrateLen, QStringLiteral("Migrate Keyword has to followed by a TableName"));
            if (whole) {
                qint32 consumed = 0;
                const QString name = str::Trim(NextWord(str::Mid(rest, p + kMigrateLen), consumed));
                if (!name.isEmpty())
                    AddMigrateTable(name);
            }
            if (rest.size() <= p + kMigrateLen)
                break;
            rest = str::Mid(rest, p + kMigrateLen);
            length = int(rest.size());
            p = str::InStrText(rest, kMigrate);
        }
    } catch (const std::exception& e) {
        m_doc.RecordError(0, QString::fromUtf8(e.what()), kErrParse, QStringLiteral("Error Parsing the Migrate Keyword"));
        return false;
    }
    m_ui.MigrateTablesChanged();
    return true;
}

bool ScriptScanner::AddMigrateTable(const QString& name)
{
    QStringList& tables = m_doc.MigrateTables();
    if (ListContains(tables, name))
        return false;
    if (name.size() != 8) {
        m_ui.MsgBox(QStringLiteral("Table Name not Valid"), MsgButtons::Ok, MsgIcon::Critical);
        m_ui.FocusPreconditionEditor();
        return false;
    }
    bool valid = str::IsNumeric(name.mid(5, 3));
    for (int i = 0; i < 5 && valid; ++i)
        valid = !str::IsNumeric(name.mid(i, 1));
    if (!valid) {
        m_ui.MsgBox(QStringLiteral("Invalid table name '") + name + u'\'', MsgButtons::Ok, MsgIcon::Critical);
        m_ui.FocusPreconditionEditor();
        return false;
    }
    if (tables.size() == 1 && tables.first().isEmpty())
        tables.first() = name;
    else
        tables.append(name);
    return true;
}

void ScriptScanner::ScanDumpReferences(const QString& text)
{
    QString rest = text;
    int p = str::InStrText(rest, kDump);
    while (p > 0) {
        const bool whole =
            IsKeywordAt(rest, p, kDumpLen, QStringLiteral("Dump Keyword Must be Followed by a Dump Number"));
        if (rest.size() <= p + kDumpLen)
            return;
        rest = str::Mid(rest, p + kDumpLen);
        const int next = str::InStrText(rest, kDump);
        if (whole) {
            qint32 consumed = 0;
            const QString word = NextWord(rest, consumed);
            if (const auto number = str::ToInteger(word); number && *number >= 1 && *number <= 999)
                m_doc.AddDumpReference(*number, ReadDumpText(rest, next));
        }
        p = next;
    }
}

void ScriptScanner::RegisterDumps(const QString& /*table*/)
{
    const DumpReferences& refs = m_doc.ReferencedDumps();
    if (refs.isEmpty())
        return;
    auto& known = m_doc.KnownDumps();
    for (qsizetype i = 0; i < refs.numbers.size(); ++i)
        known.insert(refs.numbers[i], refs.texts[i]);
}

void ScriptScanner::CollectDumpReferences()
{
    m_doc.ReferencedDumps().clear();
    m_doc.KnownDumps().clear();
    ScanDumpReferences(m_doc.GetPreconditionText());
    ScanDumpReferences(m_doc.GetFunctionsText());
    RegisterDumps(QString());
    const QStringList tables = m_doc.MigrateTables(); // a copy: scanning may not change it, but be safe
    for (const QString& table : tables) {
        ScanDumpReferences(m_doc.GetQueryText(table));
        RegisterDumps(table);
    }
}

bool ScriptScanner::CheckMscripts()
{
    return m_doc.HasMscript();
}

void ScriptScanner::PruneSections()
{
    PruneQueries();
    PruneDumps();
}

void ScriptScanner::PruneQueries()
{
    m_doc.MigrateTables() = QStringList{QString()};
    ParseMigrateTables(m_doc.GetPreconditionText());
    for (const QString& table : m_doc.MigrateTables()) {
        if (m_doc.GetQueryText(table).isEmpty())
            m_doc.SaveQueryText(table, QString()); // writes nothing: no empty QUERY elements
    }
    m_doc.RemoveQueriesNotIn(m_doc.MigrateTables());
}

void ScriptScanner::PruneDumps()
{
    CollectDumpReferences();
    const DumpReferences refs = m_doc.ReferencedDumps();
    if (!refs.isEmpty()) {
        for (qsizetype i = 0; i < refs.numbers.size(); ++i)
            if (!m_doc.GetDumpNode(refs.numbers[i]))
                m_doc.CreateDumpNode(refs.numbers[i], refs.texts[i]);
    }
    m_doc.RemoveDumpsNotIn(refs);
}

} // namespace fb
