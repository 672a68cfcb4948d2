// fieldbridge suggest FILE [--dump N] [--top K]: the ranked source fields for
// the target fields of each dump, as JSON:
//   {"dumps": [{"dump": 1, "targetTable": "tarxx001", "fields": [
//     {"field": "custno", "candidates": [
//       {"source": "srcaa001.cust_no", "score": 0.93, "reasons": ["..."]}]}]}]}
#include "Command.h"
#include "MappingInput.h"
#include "core/document/MappingDocument.h"
#include "core/rules/SuggestDocument.h"

#include <QCommandLineParser>
#include <cmath>

using namespace Qt::StringLiterals;

namespace fbtool {

namespace {

const char* const kHelp =
    "Usage: fieldbridge suggest FILE [--dump N] [--top K]\n"
    "\n"
    "For every target field of each dump of the mapping object FILE, the source fields of the\n"
    "listed source tables that may fill it, best first, each with a score in [0,1] and\n"
    "the reasons for it. From 0.5 on a candidate is meant to be taken; below, it is a lead. The\n"
    "table name is the root element's name. Prints JSON:\n"
    "  {\"dumps\": [{\"dump\": N, \"targetTable\": \"...\", \"fields\": [{\"field\": \"...\",\n"
    "    \"candidates\": [{\"source\": \"table.field\", \"score\": 0.93, \"reasons\": [\"...\"]}]}]}]}\n"
    "\n"
    "Options:\n"
    "  --dump N   only dump N, from 1 to 999 (exit 1 when no script of the file references it)\n"
    "  --top K    at most K candidates per target field (default 3)\n"
    "  -h, --help this text\n"
    "\n"
    "Exit status: 0 done, 1 no dump N, 2 FILE is not a mapping object or the command line is wrong.\n";

QString jsonString(const QString& s)
{
    QString out;
    out.reserve(s.size() + 2);
    out += u'"';
    for (const QChar c : s) {
        if (c == u'"' || c == u'\\')
            out += u'\\', out += c;
        else if (c == u'\n')
            out += QStringLiteral("\\n");
        else if (c == u'\t')
            out += QStringLiteral("\\t");
        else if (c.unicode() < 0x20)
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            out += c;
    }
    out += u'"';
    return out;
}

// Four decimals keep the order: rounding never swaps two scores.
QString jsonScore(double score)
{
    return QString::number(std::round(score * 10000.0) / 10000.0, 'g', 6);
}

QString candidatesJson(const fb::DocumentSuggestions& all, const QList<fb::SuggestedSource>& list)
{
    QStringList items;
    for (const fb::SuggestedSource& c : list) {
        QStringList reasons;
        for (const QString& r : c.reasons)
            reasons.append(jsonString(r));
        items.append(QStringLiteral("        {\"source\": %1, \"score\": %2, \"reasons\": [%3]}")
                         .arg(jsonString(all.sources[c.source].qualifiedName()), jsonScore(c.score),
                              reasons.join(QStringLiteral(", "))));
    }
    return items.isEmpty() ? QStringLiteral("[]") : u"[\n"_s + items.join(QStringLiteral(",\n")) + u']';
}

// The layout of the example in the help: one line per candidate.
QString suggestionsJson(const fb::DocumentSuggestions& all)
{
    QStringList dumps;
    for (const fb::DumpSuggestions& d : all.dumps) {
        QStringList fields;
        for (qsizetype k = 0; k < d.targets.size(); ++k)
            fields.append(QStringLiteral("     {\"field\": %1,\n      \"candidates\": %2}")
                              .arg(jsonString(d.targets[k].name), candidatesJson(all, d.candidates[k])));
        dumps.append(QStringLiteral("  {\"dump\": %1, \"targetTable\": %2,\n   \"fields\": [%3]}")
                         .arg(d.dump)
                         .arg(jsonString(d.targetTable),
                              fields.isEmpty() ? QString() : u"\n"_s + fields.join(QStringLiteral(",\n"))));
    }
    return QStringLiteral("{\"dumps\": [\n") + dumps.join(QStringLiteral(",\n")) + QStringLiteral("]}\n");
}

} // namespace

int RunSuggest(const QStringList& arguments)
{
    const QString command = QStringLiteral("suggest");
    QCommandLineParser parser;
    const QCommandLineOption dumpOption(QStringLiteral("dump"), QString(), QStringLiteral("N"));
    const QCommandLineOption topOption(QStringLiteral("top"), QString(), QStringLiteral("K"),
                                       QStringLiteral("3"));
    parser.addOptions({dumpOption, topOption});
    if (const std::optional<int> done =
            ParseArguments(parser, command, arguments, QString::fromLatin1(kHelp)))
        return *done;
    bool ok = true;
    int dump = 0;
    if (parser.isSet(dumpOption)) {
        dump = parser.value(dumpOption).toInt(&ok);
        if (!ok || dump < 1 || dump > 999) {
            PrintError(command, QStringLiteral("--dump takes a dump number from 1 to 999, not '%1'")
                                    .arg(parser.value(dumpOption)));
            return Unreadable;
        }
    }
    const int top = parser.value(topOption).toInt(&ok);
    if (!ok || top < 1) {
        PrintError(command, QStringLiteral("--top takes a whole number from 1 to 2147483647, not '%1'")
                                .arg(parser.value(topOption)));
        return Unreadable;
    }

    fb::MappingDocument doc;
    if (const std::optional<int> loaded = LoadSingleFile(parser, command, doc))
        return *loaded;
    fb::SuggestOptions options;
    options.top = top;
    const fb::DocumentSuggestions suggestions = fb::SuggestForDocument(doc, qint16(dump), options);
    if (dump != 0 && suggestions.dumps.isEmpty()) {
        PrintError(command, QStringLiteral("%1 has no dump %2 that a script references")
                                .arg(parser.positionalArguments().constFirst())
                                .arg(dump));
        return Failure;
    }
    PrintOut(suggestionsJson(suggestions));
    return Success;
}

} // namespace fbtool
