#include "DumpStore.h"

#include "core/document/TextRules.h"

namespace fb {

void StoreRules(MappingDocument& doc, const Node& dump, const Node& targetTable, int rowCount,
                const std::function<QString(int row)>& ruleOfRow)
{
    // The dump's elements of each name in document order, kept in step with
    // the writes and removals below: the first of a name is the one a
    // field's rule goes to, found without searching the dump once per field.
    QHash<QString, QList<Node>> elements;
    for (Node c = dump.firstChildElement(); c; c = c.nextSiblingElement())
        elements[c.name()].append(c);
    for (Node f = targetTable.firstChildElement(); f; f = f.nextSiblingElement()) {
        const auto no = MappingDocument::ElementNo(f);
        if (!no)
            continue;
        const int row = *no - 1;
        if (row < 0 || row >= rowCount)
            continue;
        const QString rule = ruleOfRow(row);
        QList<Node>& named = elements[f.name()];
        if (!rule.isEmpty()) {
            const Node written = doc.WriteRuleElement(dump, f, rule, named.value(0));
            if (named.isEmpty() && written)
                named.append(written);
        } else if (!named.isEmpty()) {
            doc.RemoveChild(dump, named.takeFirst());
        }
    }
}

QList<GridRule> RulesOfDump(MappingDocument& doc, qint16 number)
{
    QList<GridRule> rules;
    const Node dump = doc.GetDumpNode(number);
    const ChildrenByName byName(dump);
    for (Node c = dump.firstChildElement(); c; c = c.nextSiblingElement()) {
        // The text is looked up by the element's name in upper case, as the
        // dump's child texts always are: the first element of that name.
        if (const auto no = MappingDocument::ElementNo(c))
            rules.append({*no - 1, MappingDocument::DisplayText(byName.first(str::Upper(c.name())).text())});
    }
    return rules;
}

void BindDumpToTable(MappingDocument& doc, const Node& dump, const QString& table)
{
    if (!dump)
        return;
    doc.SetDumpTargetTable(dump, table);
    const Node first = doc.GetTargetTableDefinition(table).firstChildElement();
    if (first)
        doc.AppendRuleElement(dump, first, QStringLiteral("default()"));
}

void RebindDump(MappingDocument& doc, const Node& dump, const QString& table)
{
    doc.SetDumpTargetTable(dump, table);
    doc.RemoveChildNodes(dump);
    const Node first = doc.GetTargetTableDefinition(table).firstChildElement();
    if (dump && first)
        doc.AppendRuleElement(dump, first, QStringLiteral("default()"));
}

bool DumpHasRules(const Node& dump)
{
    for (Node child = dump.firstChildElement(); child; child = child.nextSiblingElement())
        if (!child.text().isEmpty() || !MappingDocument::DocText(child).isEmpty())
            return true;
    return false;
}

int CopyDumpRules(MappingDocument& doc, const Node& source, const Node& destination)
{
    doc.RemoveChildNodes(destination);
    int copied = 0;
    for (const Node& child : source.childNodes()) { // none left when a dump is copied onto itself
        doc.AppendCopy(destination, child);
        ++copied;
    }
    return copied;
}

} // namespace fb
