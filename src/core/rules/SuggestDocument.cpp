#include "SuggestDocument.h"

#include "core/document/FieldDefinition.h"
#include "core/document/FieldNames.h"
#include "core/document/MappingDocument.h"
#include "core/rules/Checks.h"

#include <QHash>
#include <QSet>

namespace fb {

namespace {

QList<SuggestField> fieldsOf(const Node& table)
{
    QList<SuggestField> out;
    const QString name = table.name();
    const QString description = TableDescription(table);
    for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement())
        out.append(SuggestField::FromDefinition(name, FieldDefinition::Read(f), description));
    return out;
}

// The table and the shown name of every field of every target table of the
// document, each table once: all that the key shares and the schema's words
// need.
QList<SuggestField> allTargetFields(MappingDocument& doc)
{
    QList<SuggestField> all;
    QSet<QString> seen;
    const QStringList tables =
        doc.HasMscript() ? doc.MscriptTables() : QStringList{doc.TableName().trimmed()};
    for (const QString& t : tables) {
        const Node table = doc.GetTargetTableDefinition(t);
        if (!table || seen.contains(t.toLower()))
            continue;
        seen.insert(t.toLower());
        SuggestField f;
        f.table = table.name().toLower();
        for (Node field = table.firstChildElement(); field; field = field.nextSiblingElement()) {
            f.name = ToDisplayFieldName(field.name()).toLower();
            all.append(f);
        }
    }
    return all;
}

// The share of the document's target tables that hold each target field's
// name: keys that join the tables (person_id in every table) pair with the
// source side's keys.
void setKeyShares(const QList<SuggestField>& all, QList<DumpTargetFields>& dumps)
{
    const std::vector<double> shares = SharedNameShares(all);
    QHash<QString, double> shareOf;
    for (qsizetype i = 0; i < all.size(); ++i)
        shareOf.insert(all[i].qualifiedName(), shares[size_t(i)]);
    for (DumpTargetFields& d : dumps)
        for (SuggestField& f : d.fields)
            f.keyShare = shareOf.value(f.qualifiedName());
}

QList<DumpTargetFields> dumpTargets(MappingDocument& doc, qint16 dumpFilter, const QList<SuggestField>& all)
{
    QList<DumpTargetFields> out;
    // The dumps the control offers and the checks and the report cover: a
    // dump no script references is gone after the next read.
    for (const qint16 number : CheckedDumps(doc)) {
        if (dumpFilter != 0 && number != dumpFilter)
            continue;
        const Node dump = doc.GetDumpNode(number);
        DumpTargetFields d;
        d.dump = number;
        if (const Node table = doc.GetTargetTableNode(d.dump)) {
            d.targetTable = table.name().toLower();
            d.fields = fieldsOf(table);
        } else {
            d.targetTable = MappingDocument::DumpTargetTable(dump).toLower();
        }
        out.append(d);
    }
    setKeyShares(all, out);
    return out;
}

} // namespace

QList<SuggestField> ListedSourceFields(MappingDocument& doc)
{
    QList<SuggestField> out;
    for (const Node& table : doc.ListedSourceTables())
        out.append(fieldsOf(table));
    return out;
}

QList<DumpTargetFields> DumpTargets(MappingDocument& doc, qint16 dumpFilter)
{
    return dumpTargets(doc, dumpFilter, allTargetFields(doc));
}

DocumentSuggestions SuggestForDocument(MappingDocument& doc, qint16 dumpFilter, const SuggestOptions& options)
{
    DocumentSuggestions out;
    // The words of every target table help take the names apart, whichever
    // dumps are asked for: a dump gets the same answer alone or with others.
    const QList<SuggestField> allTargets = allTargetFields(doc);
    QStringList targetNames;
    for (const SuggestField& f : allTargets)
        targetNames.append(f.name);
    const SuggestionEngine engine(ListedSourceFields(doc), targetNames);
    for (DumpTargetFields& d : dumpTargets(doc, dumpFilter, allTargets)) {
        DumpSuggestions s;
        s.dump = d.dump;
        s.targetTable = d.targetTable;
        s.candidates = engine.Suggest(d.fields, options);
        s.targets = std::move(d.fields);
        out.dumps.append(std::move(s));
    }
    out.sources = engine.sources();
    return out;
}

} // namespace fb
