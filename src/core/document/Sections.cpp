// The section accessors of the mapping object: one routine per section, so
// that no other code builds a path; dumps, target tables, documentation
// text numbers, rule elements and the tidying before a read.

#include "FieldNames.h"
#include "LineBreaks.h"
#include "MappingDocument_p.h"
#include "TextRules.h"

namespace fb {

using detail::toPugi;
using detail::utf8;

namespace {
// A failure of the object model that is recorded as a run-time error: an
// object that is not there.
constexpr qint16 kErrNoObject = 91;
const char16_t kNoObjectText[] = u"Object variable or With block variable not set";
} // namespace

// ---- section accessors ----------------------------------------------------

bool MappingDocument::rootIsTheTable() const
{
    // Sections are found under a root named exactly as the 8-character table
    // name; a section appended to a root of another name could never be
    // found again, and every later write would append one more.
    const Node root = DocumentElement();
    return !root || root.name() == m_tableName;
}

Node MappingDocument::appendToFirstChild(const QString& name, const QString& attrName,
                                         const QString& attrValue)
{
    const Node first = FirstChild();
    if (!first) {
        RecordError(0, QString(), kErrNoObject, QString::fromUtf16(kNoObjectText));
        return Node();
    }
    if (!rootIsTheTable())
        return Node();
    return AppendChildElement(first, name, attrName, attrValue);
}

bool MappingDocument::setSectionText(const QString& section, const QString& text)
{
    Node n = GetNode(SectionPath(section));
    if (!n)
        n = appendToFirstChild(section);
    return SetText(n, text);
}

QString MappingDocument::GetPreconditionText()
{
    return GetNodeText(SectionPath(QStringLiteral("PREC")));
}

Node MappingDocument::GetPreconditionNode()
{
    return GetNode(SectionPath(QStringLiteral("PREC")));
}

bool MappingDocument::SetPreconditionText(const QString& text)
{
    return SetNodeText(SectionPath(QStringLiteral("PREC")), text);
}

QString MappingDocument::GetSourceTablesText()
{
    return GetNodeText(SectionPath(QStringLiteral("SRCTBL")));
}

Node MappingDocument::GetSourceTablesNode()
{
    return GetNode(SectionPath(QStringLiteral("SRCTBL")));
}

bool MappingDocument::SetSourceTablesText(const QString& text)
{
    Node n = GetSourceTablesNode();
    if (!n && rootIsTheTable())
        n = AppendChildElement(DocumentElement(), QStringLiteral("SRCTBL"));
    return SetText(n, text);
}

QString MappingDocument::GetFunctionsText()
{
    return GetNodeText(SectionPath(QStringLiteral("FUNCTIONS")));
}

bool MappingDocument::SetFunctionsText(const QString& text)
{
    return setSectionText(QStringLiteral("FUNCTIONS"), text);
}

bool MappingDocument::HasFunctions()
{
    return bool(GetNode(SectionPath(QStringLiteral("FUNCTIONS"))));
}

bool MappingDocument::HasVariables()
{
    return bool(GetNode(SectionPath(QStringLiteral("VAR"))));
}

QString MappingDocument::GetVariablesText()
{
    return GetNodeText(SectionPath(QStringLiteral("VAR")));
}

bool MappingDocument::SetVariablesText(const QString& text)
{
    return setSectionText(QStringLiteral("VAR"), text);
}

QString MappingDocument::GetQueryText(const QString& source)
{
    return GetQueryNode(source).text();
}

Node MappingDocument::GetQueryNode(const QString& source)
{
    return GetNode(SectionPath(QStringLiteral("QUERY")), QStringLiteral("ST"), source);
}

Node MappingDocument::findQueryExactly(const QString& source)
{
    const std::string st = utf8(source);
    for (const pugi::xml_node& n :
         d->select(SectionPath(QStringLiteral("QUERY")), QString(), QString(), false))
        if (st == n.attribute("ST").value())
            return Node(n.internal_object());
    return Node();
}

bool MappingDocument::SaveQueryText(const QString& source, const QString& text)
{
    if (text.isEmpty())
        return false;
    Node n = GetQueryNode(source);
    // A table name with an apostrophe cannot be looked up by expression, so
    // its query is never shown; saving it must still find the element it
    // saved before instead of adding another one on every save.
    if (!n && source.contains(u'\''))
        n = findQueryExactly(source);
    if (!n) {
        const Node first = FirstChild();
        if (first)
            n = AppendChildElement(first, QStringLiteral("QUERY"), QStringLiteral("ST"), source);
        if (!n) {
            RecordError(kErrNoObject, QString::fromUtf16(kNoObjectText) + QStringLiteral(" in Saving Query"),
                        0, QString());
            return false;
        }
    }
    return SetText(n, text);
}

QList<Node> MappingDocument::QueryNodes()
{
    QList<Node> out;
    for (const pugi::xml_node& n :
         d->select(SectionPath(QStringLiteral("QUERY")), QString(), QString(), false))
        out.append(Node(n.internal_object()));
    return out;
}

Node MappingDocument::GetMscriptNode()
{
    return GetNode(SectionPath(QStringLiteral("MSCRIPT")));
}

bool MappingDocument::HasMscript()
{
    return bool(GetMscriptNode());
}

QStringList MappingDocument::MscriptTables()
{
    QStringList out;
    for (const Node& c : GetMscriptNode().childElements())
        out.append(c.name());
    return out;
}

Node MappingDocument::GetSourceTableNode(const QString& table)
{
    return GetNode(SectionPath(QStringLiteral("SRCTAB/")) + str::Upper(table));
}

QList<Node> MappingDocument::ListedSourceTables()
{
    QList<Node> out;
    for (QString name : str::Split(GetSourceTablesText(), u',')) {
        name.remove(u'\r');
        name.remove(u'\n');
        if (str::Trim(name).isEmpty())
            continue;
        if (const Node t = GetSourceTableNode(name))
            out.append(t);
    }
    return out;
}

Node MappingDocument::GetTargetTableDefinition(const QString& table)
{
    return GetNode(SectionPath(QStringLiteral("TARTAB/")) + str::Upper(table));
}

// ---- dumps ----------------------------------------------------------------

Node MappingDocument::GetDumpNode(qint16 number)
{
    return GetNode(SectionPath(QStringLiteral("DUMP")), QStringLiteral("No"), QString::number(number));
}

Node MappingDocument::CreateDumpNode(qint16 number)
{
    return appendToFirstChild(QStringLiteral("DUMP"), QStringLiteral("No"), QString::number(number));
}

Node MappingDocument::CreateDumpNode(qint16 number, const QString& text)
{
    const Node n = CreateDumpNode(number);
    SetNodeAttribute(n, QStringLiteral("TXT"), text);
    return n;
}

QString MappingDocument::GetDumpChildText(qint16 number, const QString& name)
{
    const Node dump = GetDumpNode(number);
    if (dump)
        return dump.childElement(str::Upper(name)).text();
    if (number > 0)
        CreateDumpNode(number);
    return QString();
}

QString MappingDocument::DumpTargetTable(const Node& dump)
{
    return dump.attribute("TT");
}

bool MappingDocument::SetDumpTargetTable(const Node& dump, const QString& table)
{
    return SetNodeAttribute(dump, QStringLiteral("TT"), table);
}

std::optional<qint16> MappingDocument::ElementNo(const Node& element)
{
    return str::ToInteger(ElementNoText(element));
}

QString MappingDocument::ElementNoText(const Node& element)
{
    return element.attribute("No");
}

QString MappingDocument::QuerySource(const Node& query)
{
    return query.attribute("ST");
}

QString MappingDocument::DumpDescription(const Node& dump)
{
    return dump.attribute("TXT");
}

Node MappingDocument::DumpSection(qint16 number) const
{
    return RootChild(QStringLiteral("DUMP"), QStringLiteral("No"), QString::number(number));
}

Node MappingDocument::QuerySection(const QString& source) const
{
    return RootChild(QStringLiteral("QUERY"), QStringLiteral("ST"), source);
}

bool MappingDocument::HasDocText(const Node& element)
{
    return element.hasAttribute(QStringLiteral("TEXT"));
}

QString MappingDocument::DocText(const Node& element)
{
    return element.attribute("TEXT");
}

bool MappingDocument::SetDocText(const Node& element, const QString& text)
{
    return SetNodeAttribute(element, QStringLiteral("TEXT"), text);
}

bool MappingDocument::RemoveDocText(const Node& element)
{
    return RemoveAttribute(element, QStringLiteral("TEXT"));
}

Node MappingDocument::WriteRuleElement(const Node& dump, const Node& field, const QString& rule,
                                       const Node& existing)
{
    Node element = existing;
    if (element)
        SetNodeAttribute(element, QStringLiteral("No"), field.attribute("No"));
    else
        element = AppendRuleElement(dump, field);
    fillRule(element, rule);
    return element;
}

Node MappingDocument::AppendRuleElement(const Node& dump, const Node& field, const QString& rule)
{
    const Node element = AppendChildElement(dump, field.name(), QStringLiteral("No"), field.attribute("No"));
    SetNodeAttribute(element, QStringLiteral("TEXT"), QString());
    if (!rule.isNull())
        fillRule(element, rule);
    return element;
}

void MappingDocument::fillRule(const Node& element, const QString& rule)
{
    if (!element)
        return;
    SetText(element, rule);
    // TYPE follows the text as it is stored, whatever form its breaks had.
    const bool lines = StoredText(rule).contains(u'\n');
    SetNodeAttribute(element, QStringLiteral("TYPE"), lines ? QStringLiteral("1") : QStringLiteral("0"));
}

QList<Node> MappingDocument::DumpNodes()
{
    QList<Node> out;
    for (const pugi::xml_node& n :
         d->select(SectionPath(QStringLiteral("DUMP")), QString(), QString(), false))
        out.append(Node(n.internal_object()));
    return out;
}

bool MappingDocument::AddDumpReference(qint16 number, const QString& text)
{
    const qsizetype at = m_dumps.numbers.indexOf(number);
    if (at >= 0) {
        if (m_dumps.texts[at] != text)
            m_dumps.texts[at] = text; // the last text seen wins
        return true;
    }
    if (m_dumps.isEmpty()) {
        m_dumps.numbers[0] = number;
        m_dumps.texts[0] = text;
    } else {
        m_dumps.numbers.append(number);
        m_dumps.texts.append(text);
    }
    if (m_createsReferencedDumps && !GetDumpNode(number))
        CreateDumpNode(number, text); // TXT keeps the text seen first
    return true;
}

// ---- target tables --------------------------------------------------------

Node MappingDocument::GetTargetTableNode(qint16 dumpNumber, const QString& selectorTag)
{
    QString table;
    if (!HasMscript()) {
        table = m_tableName;
    } else {
        qint16 n = dumpNumber;
        if (n == 0)
            n = selectorTag.isEmpty() ? m_dumps.numbers.first() : str::ToInteger(selectorTag).value_or(0);
        table = n != 0 ? GetDumpNode(n).attribute("TT") : m_tableName;
    }
    if (table.isEmpty())
        return Node();
    return GetTargetTableDefinition(table);
}

qint16 MappingDocument::GetDependencyLevel(const Node& field)
{
    if (!field)
        return 1;
    const QString dep = field.attribute("DEP");
    if (!str::IsNumeric(dep) || dep == u"0")
        return 1;
    return str::ToInteger(dep).value_or(1);
}

// ---- documentation text numbers ------------------------------------------

void MappingDocument::SetTextNumber(const QString& type, qint32 number, const QString& key1,
                                    const QString& key2)
{
    if (type == u"P")
        SetPreconditionTextNumber(number);
    if (type == u"M")
        SetQueryTextNumber(number, key1);
    if (type == u"D" && str::IsNumeric(key1)) {
        if (const auto dump = str::ToInteger(key1))
            SetRuleTextNumber(number, *dump, key2);
    }
}

void MappingDocument::SetPreconditionTextNumber(qint32 number)
{
    SetNodeAttribute(GetPreconditionNode(), QStringLiteral("TEXT"), QString::number(number));
}

void MappingDocument::SetQueryTextNumber(qint32 number, const QString& key)
{
    // The key names the attribute and the value tested is "": a QUERY is
    // found only if it carries an empty attribute of that name.
    if (str::Trim(key).isEmpty())
        return;
    const Node q = GetNode(SectionPath(QStringLiteral("QUERY")), key, QString());
    if (q)
        SetNodeAttribute(q, QStringLiteral("TEXT"), QString::number(number));
}

void MappingDocument::SetRuleTextNumber(qint32 number, qint16 dump, const QString& field)
{
    const Node dumpNode = GetDumpNode(dump);
    if (!dumpNode)
        return;
    const QString name = str::Upper(ToStoredFieldName(field));
    Node rule = dumpNode.childElement(name);
    if (!rule)
        rule = AppendChildElement(dumpNode, name);
    SetNodeAttribute(rule, QStringLiteral("TEXT"), QString::number(number));
}

// ---- tidying --------------------------------------------------------------

void MappingDocument::RemoveQueriesNotIn(const QStringList& sources)
{
    for (const Node& q : QueryNodes()) {
        if (!sources.contains(q.attribute("ST")))
            RemoveChild(q.parent(), q);
    }
}

void MappingDocument::RemoveDumpsNotIn(const DumpReferences& dumps)
{
    for (const Node& dump : DumpNodes()) {
        const auto no = str::ToInteger(dump.attribute("No"));
        if (!no || !dumps.contains(*no))
            RemoveChild(dump.parent(), dump);
    }
}

// ---------------------------------------------------------------------------

} // namespace fb
