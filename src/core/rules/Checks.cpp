#include "Checks.h"

#include "core/dictionary/FieldRules.h"
#include "core/document/Interaction.h"
#include "core/document/TextRules.h"
#include "core/scripts/ScriptScanner.h"

#include <QRegularExpression>
#include <QSet>

namespace fb {

namespace {

bool isWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == u'_';
}

// The whole word that starts at i.
qsizetype wordEnd(const QString& text, qsizetype i)
{
    while (i < text.size() && isWordChar(text[i]))
        ++i;
    return i;
}

// An array index after a field: "(3)" or the string form "(1,3)"; the
// index, and where the text after it starts.
std::optional<std::pair<QString, qsizetype>> arrayIndex(const QString& text, qsizetype i)
{
    if (i >= text.size() || text[i] != u'(')
        return std::nullopt;
    qsizetype at = i + 1;
    if (at + 1 < text.size() && text[at] == u'1' && text[at + 1] == u',')
        at += 2;
    const qsizetype digits = at;
    while (at < text.size() && text[at].isDigit() && text[at].unicode() < 128)
        ++at;
    if (at == digits || at >= text.size() || text[at] != u')')
        return std::nullopt;
    return std::make_pair(text.mid(digits, at - digits), at + 1);
}

enum class Family { Integer, Fraction, String, Text, Date, Other };

Family familyOf(const QString& type)
{
    if (type == u"B" || type == u"I" || type == u"L")
        return Family::Integer;
    if (type == u"F" || type == u"D")
        return Family::Fraction;
    if (type == u"S" || type == u"M")
        return Family::String;
    if (type == u"U")
        return Family::Text;
    if (type == u"T" || type == u"K")
        return Family::Date;
    return Family::Other;
}

// "String(30)", "Double(15,4)", "Date"; "" for an unknown type.
QString typeText(const FieldDefinition& field)
{
    QString length;
    const QString type = GetFieldTypeText(field, length);
    return length.isEmpty() || type.isEmpty() ? type : type + u'(' + length + u')';
}

// Why the source cannot go into the target without loss, or "".
QString lossOf(const FieldDefinition& source, const FieldDefinition& target)
{
    const Family from = familyOf(source.type);
    const Family to = familyOf(target.type);
    const bool number = to == Family::Integer || to == Family::Fraction;
    bool lossy = false;
    if (from == Family::String && to == Family::String) {
        bool a = false;
        bool b = false;
        const int have = source.length.toInt(&a);
        const int room = target.length.toInt(&b);
        lossy = a && b && have > room;
    } else {
        lossy = (number && (from == Family::Date || from == Family::String || from == Family::Text)) ||
                (from == Family::Fraction && to == Family::Integer);
    }
    return lossy ? typeText(source) + QStringLiteral(" into ") + typeText(target) : QString();
}

// A rule that hands source fields on as they are, or through the
// conversions that "Ma&p" writes: only there does a source field's type
// decide what reaches the target.
bool passesFieldsOn(QString rule, const QList<FieldReference>& refs)
{
    for (qsizetype i = refs.size() - 1; i >= 0; --i)
        rule.replace(refs[i].position, refs[i].length, QStringLiteral("@"));
    static const QRegularExpression plain(
        QStringLiteral("^\\s*(?:utc\\.utc\\(@\\)|utc\\(@,0(?:,2)?\\)|@)(?:\\s*,\\s*(?:utc\\.utc\\(@\\)|utc\\("
                       "@,0(?:,2)?\\)|@))*\\s*$"));
    return plain.match(rule).hasMatch();
}

Problem problem(Severity severity, ProblemKind kind, qint16 dump, const QString& field, int row,
                QString message)
{
    return Problem{severity, kind, dump, field, row, std::move(message)};
}

} // namespace

QString SeverityText(Severity severity)
{
    return severity == Severity::Error ? QStringLiteral("Error") : QStringLiteral("Warning");
}

QList<FieldReference> FieldReferences(const QString& rule)
{
    QList<FieldReference> refs;
    qsizetype i = 0;
    while (i < rule.size()) {
        const QChar c = rule[i];
        if (c == u'"') {
            const qsizetype close = rule.indexOf(u'"', i + 1);
            i = close < 0 ? rule.size() : close + 1;
            continue;
        }
        if (!isWordChar(c)) {
            ++i;
            continue;
        }
        const qsizetype end = wordEnd(rule, i);
        const bool member = i > 0 && rule[i - 1] == u'.';
        if (!member && end - i == 8 && end + 1 < rule.size() && rule[end] == u'.' &&
            isWordChar(rule[end + 1]) && IsValidTableName(rule.mid(i, 8))) {
            const qsizetype fieldEnd = wordEnd(rule, end + 1);
            FieldReference ref{rule.mid(i, 8).toLower(), rule.mid(end + 1, fieldEnd - end - 1).toLower(), i,
                               0};
            qsizetype after = fieldEnd;
            if (const auto index = arrayIndex(rule, fieldEnd)) {
                ref.field += u'(' + index->first + u')';
                after = index->second;
            }
            ref.length = after - i;
            refs.append(ref);
            i = after;
            continue;
        }
        i = end;
    }
    return refs;
}

SourceCatalogue::SourceCatalogue(MappingDocument& doc)
{
    for (QString name : str::Split(doc.GetSourceTablesText(), u',')) {
        name = str::Trim(name.remove(u'\r').remove(u'\n')).toLower();
        if (name.isEmpty() || m_tables.contains(name))
            continue;
        QHash<QString, FieldDefinition>& fields = m_tables[name];
        const Node table = doc.GetSourceTableNode(name);
        for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement())
            fields.insert(FieldPartOf(QualifiedFieldName(table.name(), f.name())), FieldDefinition::Read(f));
    }
}

const FieldDefinition* SourceCatalogue::field(const QString& table, const QString& field) const
{
    const auto t = m_tables.constFind(table);
    if (t == m_tables.cend())
        return nullptr;
    const auto f = t->constFind(field);
    return f == t->cend() ? nullptr : &*f;
}

bool SourceCatalogue::hasArray(const QString& table, const QString& field) const
{
    const auto t = m_tables.constFind(table);
    if (t == m_tables.cend())
        return false;
    const QString prefix = field + u'(';
    for (auto f = t->cbegin(); f != t->cend(); ++f)
        if (f.key().startsWith(prefix))
            return true;
    return false;
}

QList<Problem> CheckDumpRules(qint16 dump, const QList<TargetField>& fields, const QList<QString>& rulesByRow,
                              const SourceCatalogue& sources)
{
    QList<Problem> out;
    for (int row = 0; row < fields.size(); ++row) {
        const TargetField& target = fields[row];
        const QString rule = row < rulesByRow.size() ? rulesByRow[row] : QString();
        if (!HasRule(rule)) {
            if (target.mandatory())
                out.append(problem(Severity::Warning, ProblemKind::MandatoryWithoutRule, dump, target.name,
                                   row, QStringLiteral("Mandatory field without a rule")));
            continue;
        }
        const QList<FieldReference> refs = FieldReferences(rule);
        std::optional<bool> direct; // worked out only where a type could lose data
        for (const FieldReference& ref : refs) {
            const QString named = ref.table + u'.' + ref.field;
            if (!sources.isListed(ref.table)) {
                out.append(
                    problem(Severity::Error, ProblemKind::UnknownTable, dump, target.name, row,
                            ref.table + QStringLiteral(" is not a listed source table (") + named + u')'));
                continue;
            }
            const FieldDefinition* source = sources.field(ref.table, ref.field);
            if (!source) {
                if (!sources.hasArray(ref.table, ref.field))
                    out.append(problem(Severity::Error, ProblemKind::UnknownField, dump, target.name, row,
                                       QStringLiteral("Source table ") + ref.table +
                                           QStringLiteral(" has no field ") + ref.field));
                continue;
            }
            const QString loss = lossOf(*source, target.definition);
            if (!loss.isEmpty() && !direct)
                direct = passesFieldsOn(rule, refs);
            if (!loss.isEmpty() && *direct)
                out.append(problem(Severity::Warning, ProblemKind::TypeLoss, dump, target.name, row,
                                   named + QStringLiteral(": ") + loss + QStringLiteral(" may lose data")));
        }
    }
    return out;
}

QList<QString> StoredRulesByRow(MappingDocument& doc, qint16 dump, qsizetype rows)
{
    QList<QString> byRow(rows);
    for (const GridRule& rule : RulesOfDump(doc, dump))
        if (rule.row >= 0 && rule.row < byRow.size())
            byRow[rule.row] = rule.text;
    return byRow;
}

QList<Problem> CheckStoredDump(MappingDocument& doc, qint16 dump, const SourceCatalogue& sources)
{
    const QList<TargetField> fields = TargetFieldsOf(doc.GetTargetTableNode(dump));
    return CheckDumpRules(dump, fields, StoredRulesByRow(doc, dump, fields.size()), sources);
}

namespace {

// The document's script lists as the next read will work them out, without
// disturbing the lists the session holds.
class QuietScan {
public:
    explicit QuietScan(MappingDocument& doc)
        : m_doc(doc), m_migrate(doc.MigrateTables()), m_refs(doc.ReferencedDumps()), m_known(doc.KnownDumps())
    {
        ScanScripts(doc);
    }
    ~QuietScan()
    {
        m_doc.MigrateTables() = m_migrate;
        m_doc.ReferencedDumps() = m_refs;
        m_doc.KnownDumps() = m_known;
    }
    QuietScan(const QuietScan&) = delete;
    QuietScan& operator=(const QuietScan&) = delete;

private:
    MappingDocument& m_doc;
    QStringList m_migrate;
    DumpReferences m_refs;
    QHash<qint16, QString> m_known;
};

} // namespace

void ScanScripts(MappingDocument& doc)
{
    SilentInteraction silent;
    ScriptScanner scanner(doc, silent);
    doc.MigrateTables() = QStringList{QString()};
    doc.setCreatesReferencedDumps(false);
    scanner.ParseMigrateTables(doc.GetPreconditionText());
    scanner.CollectDumpReferences();
    doc.setCreatesReferencedDumps(true);
}

QList<Problem> CheckSections(MappingDocument& doc)
{
    QList<Problem> out;
    const QuietScan scan(doc);
    for (const Node& query : doc.QueryNodes()) {
        const QString table = MappingDocument::QuerySource(query);
        if (!doc.MigrateTables().contains(table) && HasRule(query.text()))
            out.append(problem(Severity::Error, ProblemKind::QueryNotMigrated, 0, table, -1,
                               QStringLiteral("The main query of ") + table +
                                   QStringLiteral(" holds text, but no migrate statement names the table: "
                                                  "reading the document removes it")));
    }
    for (const Node& dump : doc.DumpNodes()) {
        const std::optional<qint16> no = MappingDocument::ElementNo(dump);
        if ((!no || !doc.ReferencedDumps().contains(*no)) && DumpHasRules(dump))
            out.append(problem(Severity::Error, ProblemKind::UnreferencedDump, no.value_or(0), QString(), -1,
                               QStringLiteral("Dump ") + MappingDocument::ElementNoText(dump) +
                                   QStringLiteral(" holds rules, but no script references it: reading the "
                                                  "document removes it with its rules")));
    }
    return out;
}

QList<qint16> CheckedDumps(MappingDocument& doc)
{
    const QuietScan scan(doc);
    QList<qint16> numbers;
    QSet<qint16> seen;
    for (const Node& dump : doc.DumpNodes()) {
        const std::optional<qint16> no = MappingDocument::ElementNo(dump);
        // A list without references holds a single 0, which stands for none:
        // a DUMP numbered 0 then survives a read, but it is no dump the
        // selector offers.
        if (no && *no > 0 && doc.ReferencedDumps().contains(*no) && !seen.contains(*no)) {
            seen.insert(*no);
            numbers.append(*no);
        }
    }
    return numbers;
}

DumpReferences ReferencedDumpsOf(MappingDocument& doc)
{
    const QuietScan scan(doc);
    return doc.ReferencedDumps();
}

QList<Problem> CheckMapping(MappingDocument& doc)
{
    QList<Problem> out = CheckSections(doc);
    const SourceCatalogue sources(doc);
    for (const qint16 number : CheckedDumps(doc))
        out.append(CheckStoredDump(doc, number, sources));
    return out;
}

} // namespace fb
