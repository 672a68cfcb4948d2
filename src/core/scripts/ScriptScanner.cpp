#include "ScriptScanner.h"

#include "core/document/TextRules.h"

#include <algorithm>
#include <exception>

namespace fb {

namespace {
const QString kMigrate = QStringLiteral("migrate");
const QString kDump = QStringLiteral("dump");
constexpr int kMigrateLen = 7;
constexpr int kDumpLen = 4;
constexpr qint16 kErrParse = 2002;

QChar charAt(QStringView text, int pos) // 1-based; a null char outside the text
{
    return pos >= 1 && pos <= text.size() ? text[pos - 1] : QChar();
}

// The 1-based position of what in text, without regard to case; 0 for none.
int find(QStringView text, QStringView what)
{
    const qsizetype at = text.indexOf(what, 0, Qt::CaseInsensitive);
    return at < 0 ? 0 : int(at) + 1;
}

// The text from the 1-based position on; empty past its end.
QStringView from(QStringView text, int start)
{
    return start > text.size() ? QStringView() : text.mid(qMax(start, 1) - 1);
}

QStringView withoutLeadingBlanks(QStringView text)
{
    qsizetype b = 0;
    while (b < text.size() && text[b] == u' ')
        ++b;
    return text.mid(b);
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

QString ReadDumpText(QStringView rest, int nextDump)
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
    const QStringView text = rest.mid(i, end - i);
    qsizetype b = 0;
    qsizetype e = text.size();
    while (b < e && (text[b] == u' ' || text[b] == u'\t'))
        ++b;
    while (e > b && (text[e - 1] == u' ' || text[e - 1] == u'\t'))
        --e;
    return text.mid(b, e - b).toString();
}

void WalkKeyword(QStringView text, QStringView keyword,
                 const std::function<bool(QStringView rest, int p, qsizetype offset)>& visit)
{
    // The rest is a view into the text: the walk stays linear however many
    // keywords a long script holds.
    const int n = int(keyword.size());
    QStringView rest = text;
    qsizetype offset = 0;
    int p = find(rest, keyword);
    while (p > 0) {
        if (!visit(rest, p, offset) || rest.size() <= p + n)
            return;
        offset += p - 1 + n;
        rest = from(rest, p + n);
        p = find(rest, keyword);
    }
}

bool IsWholeKeyword(QStringView rest, int p, int n)
{
    return rest.size() > p + n && IsSeparator(charAt(rest, p + n)) &&
           (p == 1 || IsSeparator(charAt(rest, p - 1)));
}

std::optional<qint16> DumpNumber(const QString& word)
{
    const auto number = str::ToInteger(word);
    if (number && *number >= 1 && *number <= 999)
        return number;
    return std::nullopt;
}

bool IsValidTableName(const QString& name)
{
    if (name.size() != 8 || !str::IsNumeric(name.mid(5, 3)))
        return false;
    for (int i = 0; i < 5; ++i)
        if (str::IsNumeric(name.mid(i, 1)))
            return false;
    return true;
}

QList<KeywordSpan> KeywordSpans(const QString& text)
{
    QList<KeywordSpan> spans;
    for (const QString& keyword : {kMigrate, kDump}) {
        const bool migrate = keyword == kMigrate;
        const int n = int(keyword.size());
        WalkKeyword(text, keyword, [&](QStringView rest, int p, qsizetype offset) {
            // A "migrate" with at most one character after it ends the scan.
            if (migrate && rest.size() <= p + n)
                return false;
            if (!IsWholeKeyword(rest, p, n))
                return true;
            KeywordSpan span{offset + p - 1, n, -1, 0, false};
            // The word that follows, as the scanner reads it.
            qsizetype i = offset + p - 1 + n;
            while (i < text.size() && IsSeparator(text[i]))
                ++i;
            qsizetype end = i;
            while (end < text.size() && !IsSeparator(text[end]))
                ++end;
            if (end > i) {
                span.argumentStart = i;
                span.argumentLength = end - i;
                const QString word = text.mid(i, end - i);
                span.argumentValid = migrate ? IsValidTableName(word) : DumpNumber(word).has_value();
            }
            spans.append(span);
            return true;
        });
    }
    std::sort(spans.begin(), spans.end(),
              [](const KeywordSpan& a, const KeywordSpan& b) { return a.start < b.start; });
    return spans;
}

bool ScriptScanner::IsKeywordAt(QStringView text, int p, int n, const QString& message)
{
    if (text.size() > p + n)
        return IsWholeKeyword(text, p, n);
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

QString ScriptScanner::NextWord(QStringView text, qint32& count)
{
    // Blanks go from the front only: the word ends at the first separator,
    // so blanks at the end of the text never change it.
    QStringView s = withoutLeadingBlanks(text);
    while (!s.isEmpty() && (s[0] == u'\n' || s[0] == u'\r' || s[0] == u'\t')) {
        s = withoutLeadingBlanks(s.mid(1));
        ++count;
    }
    qsizetype len = 0;
    while (len < s.size() && !IsSeparator(s[len]))
        ++len;
    count += qint32(len);
    return s.left(len).toString();
}

bool ScriptScanner::ParseMigrateTables(const QString& text)
{
    if (text.isEmpty())
        return false;
    try {
        m_doc.MigrateTables() = QStringList{QString()};
        WalkKeyword(text, kMigrate, [this](QStringView rest, int p, qsizetype) {
            if (rest.size() <= p + kMigrateLen) {
                m_ui.MsgBox(QStringLiteral("Migrate Keyword Has to be followed by a TableName"),
                            MsgButtons::Ok, MsgIcon::Critical);
                return false;
            }
            if (IsKeywordAt(rest, p, kMigrateLen,
                            QStringLiteral("Migrate Keyword has to followed by a TableName"))) {
                qint32 consumed = 0;
                const QString name = str::Trim(NextWord(from(rest, p + kMigrateLen), consumed));
                if (!name.isEmpty())
                    AddMigrateTable(name);
            }
            return true;
        });
    } catch (const std::exception& e) {
        m_doc.RecordError(0, QString::fromUtf8(e.what()), kErrParse,
                          QStringLiteral("Error Parsing the Migrate Keyword"));
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
    if (!IsValidTableName(name)) {
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
    WalkKeyword(text, kDump, [this](QStringView rest, int p, qsizetype) {
        const bool whole =
            IsKeywordAt(rest, p, kDumpLen, QStringLiteral("Dump Keyword Must be Followed by a Dump Number"));
        if (whole && rest.size() > p + kDumpLen) {
            const QStringView after = from(rest, p + kDumpLen);
            qint32 consumed = 0;
            const QString word = NextWord(after, consumed);
            if (const auto number = DumpNumber(word))
                m_doc.AddDumpReference(*number, ReadDumpText(after, find(after, kDump)));
        }
        return true;
    });
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
