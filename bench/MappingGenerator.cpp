#include "MappingGenerator.h"

#include <QStringList>
#include <algorithm>
#include <set>
#include <vector>

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
            out += QStringLiteral("<%1 No=\"%2\" TYPE=\"0\" TEXT=\"\">src.fld%2</%1>")
                       .arg(fieldName(r))
                       .arg(r + 1);
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

// ---------------------------------------------------------------------------
// The multi-target document

namespace {

// splitmix64: the same numbers on every platform and library.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    // 0 .. n-1
    int below(int n) { return int(next() % std::uint64_t(n)); }
    bool oneIn(int n) { return below(n) == 0; }

private:
    std::uint64_t m_state;
};

// Fragments of field names as old ERP tables spell them.
constexpr const char* kSyllables[] = {
    "CUST", "ITEM", "ORD",  "QTY",  "PRIC", "DATE", "ADR",  "CITY", "ZIP",  "NAM",  "DSC",  "STAT",
    "CODE", "GRP",  "UNIT", "WARE", "LOC",  "BIN",  "CURR", "RATE", "DISC", "TAX",  "VAT",  "LANG",
    "NOTE", "TXT",  "REF",  "SEQ",  "LINE", "POS",  "CRED", "DEBT", "ACCT", "BANK", "EMPL", "DEPT",
    "PROJ", "COST", "PLAN", "LOT",  "SER",  "BTCH", "SUPP", "BUYR", "WGHT", "VOL",  "DIM",  "CTRY",
};
constexpr int kSyllableCount = int(sizeof(kSyllables) / sizeof(kSyllables[0]));

constexpr const char* kDescriptions[] = {
    "Customer number",
    "Item code",
    "Order quantity",
    "Sales price",
    "Delivery date",
    "Street and house number",
    "Warehouse",
    "Currency",
    "Discount in percent",
    "Bezeichnung für Größe und Maß",
    "Имя клиента в кириллице",
    "Περιγραφή είδους",
    "Cost centre",
    "Batch number",
    "Net weight in kg",
    "Last change",
};
constexpr int kDescriptionCount = int(sizeof(kDescriptions) / sizeof(kDescriptions[0]));

constexpr const char* kNotes[] = {
    "Übernahme aus dem Altsystem", "Leere Werte: Vorgabe des Zielsystems",
    "Только действующие записи",   "Value cut to the target length",
    "Rounded to two decimals",
};
constexpr int kNoteCount = int(sizeof(kNotes) / sizeof(kNotes[0]));

// Rules that take no source field.
constexpr const char* kConstants[] = {"default()", "\"legacy\"", "0", "date.today()", "\"\""};
constexpr int kConstantCount = int(sizeof(kConstants) / sizeof(kConstants[0]));

constexpr char kTypeLetters[] = "BILFDSMEPTKU";

struct Field {
    std::string name; // element name, upper case; arrays as NAME__n
    char type = 'S';
    int description = 0;
};

struct Table {
    std::string name;  // lower case, as in SRCTBL and scripts
    std::string upper; // element name under TARTAB / SRCTAB
    std::vector<Field> fields;
};

std::string upperCase(std::string s)
{
    for (char& c : s)
        if (c >= 'a' && c <= 'z')
            c = char(c - 'a' + 'A');
    return s;
}

std::string lowerCase(std::string s)
{
    for (char& c : s)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return s;
}

// Five letters (prefix and two more), three digits: "srcab017".
std::string tableName(const char* prefix, int i)
{
    std::string name = prefix;
    name += char('a' + (i / 26) % 26);
    name += char('a' + i % 26);
    const int number = i % 999 + 1;
    name += char('0' + number / 100);
    name += char('0' + number / 10 % 10);
    name += char('0' + number % 10);
    return name;
}

// count distinct field names of two or three syllables.
std::vector<std::string> namePool(Random& random, int count)
{
    std::vector<std::string> pool;
    std::set<std::string> seen;
    while (int(pool.size()) < count) {
        std::string name = kSyllables[random.below(kSyllableCount)];
        name += kSyllables[random.below(kSyllableCount)];
        if (random.oneIn(10))
            name += kSyllables[random.below(kSyllableCount)];
        if (seen.insert(name).second)
            pool.push_back(name);
    }
    return pool;
}

// The first n entries of a shuffled copy.
std::vector<std::string> pick(const std::vector<std::string>& from, int n, Random& random)
{
    std::vector<std::string> copy = from;
    for (int i = int(copy.size()) - 1; i > 0; --i)
        std::swap(copy[size_t(i)], copy[size_t(random.below(i + 1))]);
    copy.resize(size_t(std::min<int>(n, int(copy.size()))));
    return copy;
}

// count fields named from names in turn; now and then an array of three
// elements under one name.
std::vector<Field> makeFields(const std::vector<std::string>& names, int count, Random& random)
{
    std::vector<Field> fields;
    size_t next = 0;
    while (int(fields.size()) < count && next < names.size()) {
        const std::string& base = names[next++];
        const char type = kTypeLetters[random.below(12)];
        const int description = random.below(kDescriptionCount);
        if (random.oneIn(25) && int(fields.size()) + 3 <= count) {
            for (int e = 1; e <= 3; ++e)
                fields.push_back({base + "__" + char('0' + e), type, description});
        } else {
            fields.push_back({base, type, description});
        }
    }
    return fields;
}

class Writer {
public:
    explicit Writer(size_t reserve) { m_out.reserve(reserve); }
    Writer& operator<<(const std::string& s)
    {
        m_out += s;
        return *this;
    }
    Writer& operator<<(const char* s)
    {
        m_out += s;
        return *this;
    }
    Writer& operator<<(char c)
    {
        m_out += c;
        return *this;
    }
    Writer& operator<<(int n)
    {
        m_out += std::to_string(n);
        return *this;
    }
    std::string take() { return std::move(m_out); }

private:
    std::string m_out;
};

void writeFieldDefinitions(Writer& w, const Table& table)
{
    w << '<' << table.upper << '>';
    int no = 0;
    for (const Field& f : table.fields) {
        ++no;
        w << '<' << f.name << " No=\"" << no << "\" FNo=\"" << (no * 7 % 150 + 1) << "\" TYPE=\"" << f.type
          << '"';
        switch (f.type) {
        case 'B':
        case 'I':
        case 'L':
            w << " DIGB=\"" << (4 + no % 6) << '"';
            break;
        case 'F':
        case 'D':
        case 'P':
            w << " DIGB=\"15\" DIGA=\"" << (no % 4) << '"';
            break;
        default:
            w << " LENG=\"" << (6 + no % 40) << '"';
        }
        w << " DSCA=\"" << kDescriptions[f.description] << "\" ADJU=\"" << (f.type == 'S' ? 'L' : 'R')
          << "\" CASE=\"N\"";
        if (f.type == 'E')
            w << " DOMAIN=\"" << lowerCase(f.name.substr(0, 4)) << '"';
        if (no % 5 == 1)
            w << " MAN=\"Y\"";
        w << "/>";
    }
    w << "</" << table.upper << '>';
}

// A field of a source table as a script names it: "srcab017.custname" or,
// for an array element, "srcab017.note(2)".
std::string qualified(const Table& table, const Field& field)
{
    const size_t arrow = field.name.find("__");
    if (arrow == std::string::npos)
        return table.name + '.' + lowerCase(field.name);
    return table.name + '.' + lowerCase(field.name.substr(0, arrow)) + '(' + field.name.substr(arrow + 2) +
           ')';
}

std::string dumpText(int number, const Table& target)
{
    return "Rows of " + target.name + " part " + std::to_string(number);
}

} // namespace

MultiTargetShape MultiTargetShape::Large()
{
    return {};
}

MultiTargetShape MultiTargetShape::Huge()
{
    MultiTargetShape s;
    s.sourceTables = 200;
    s.targetTables = 80;
    s.dumps = 999;
    s.rulesPerDump = 400;
    return s;
}

std::string GenerateMultiTargetUtf8(const MultiTargetShape& shape)
{
    Random random(shape.seed);
    // Names shared by target and source tables, and names of source tables
    // only.
    const int poolSize = std::max(shape.fieldsPerTarget, shape.fieldsPerSource) * 3;
    const std::vector<std::string> all = namePool(random, poolSize * 2);
    const std::vector<std::string> shared(all.begin(), all.begin() + poolSize);
    const std::vector<std::string> sourceOnly(all.begin() + poolSize, all.end());

    std::vector<Table> targets(size_t(shape.targetTables));
    for (int t = 0; t < shape.targetTables; ++t) {
        Table& table = targets[size_t(t)];
        table.name = t == 0 ? std::string(kMultiTargetRoot) : tableName("tar", t);
        table.upper = upperCase(table.name);
        table.fields = makeFields(pick(shared, shape.fieldsPerTarget, random), shape.fieldsPerTarget, random);
    }
    std::vector<Table> sources(size_t(shape.sourceTables));
    for (int s = 0; s < shape.sourceTables; ++s) {
        Table& table = sources[size_t(s)];
        table.name = tableName("src", s);
        table.upper = upperCase(table.name);
        // Half of the names from the targets' names, interleaved with names
        // of this table's own.
        const std::vector<std::string> a = pick(shared, shape.fieldsPerSource, random);
        const std::vector<std::string> b = pick(sourceOnly, shape.fieldsPerSource, random);
        std::vector<std::string> names;
        for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
            names.push_back(a[i]);
            names.push_back(b[i]);
        }
        table.fields = makeFields(names, shape.fieldsPerSource, random);
    }
    // The first half of the source tables is migrated, each with its query.
    const int migrated = std::max(1, shape.sourceTables / 2);
    const int dumps = std::clamp(shape.dumps, 0, 999);
    const int precDumps = std::min(dumps, 10);

    Writer w(size_t(shape.dumps) * size_t(shape.rulesPerDump) * 80 + size_t(shape.sourceTables) * 40000 +
             size_t(shape.targetTables) * 80000);
    w << '<' << kMultiTargetRoot << "><SRCTBL>";
    for (int s = 0; s < shape.sourceTables; ++s)
        w << (s ? "," : "") << sources[size_t(s)].name;
    w << "</SRCTBL>";

    w << "<PREC TEXT=\"\">| Generated mapping: " << shape.sourceTables << " source tables, "
      << shape.targetTables << " target tables\n";
    for (int s = 0; s < migrated; ++s)
        w << "migrate " << sources[size_t(s)].name << '\n';
    w << "if not exists(\"" << sources[0].name << "\") then\n\tabort(\"source table is empty\")\nendif\n";
    w << "row.count = 0\nlast.run = date.today()\n";
    for (int d = 1; d <= precDumps; ++d)
        w << "dump " << d << ' ' << dumpText(d, targets[size_t((d - 1) % shape.targetTables)]) << '\n';
    w << "</PREC>";

    for (int q = 0; q < migrated; ++q) {
        const Table& s = sources[size_t(q)];
        w << "<QUERY ST=\"" << s.name << "\" TEXT=\"\">select " << s.name << ".*\nfrom " << s.name
          << "\nwhere " << qualified(s, s.fields[0]) << " &lt;&gt; \"X\"\norder by "
          << qualified(s, s.fields[1]) << "\nselectdo\n\trow.count = row.count + 1\n";
        for (int d = precDumps + 1 + q; d <= dumps; d += migrated)
            w << "\tdump " << d << ' ' << dumpText(d, targets[size_t((d - 1) % shape.targetTables)]) << '\n';
        w << "endselect</QUERY>";
    }

    w << "<FUNCTIONS>function extern long row.kind(string old)\n{\n\ton case old\n\tcase \"01\":\n\t\treturn "
         "1\n\tendcase\n\treturn 9\n}</FUNCTIONS>";
    w << "<VAR>row.count~|~long~^~last.run~|~date~^~include stdconv.inc</VAR>";

    for (int d = 1; d <= dumps; ++d) {
        const Table& target = targets[size_t((d - 1) % shape.targetTables)];
        w << "<DUMP No=\"" << d << "\" TT=\"" << target.upper << "\" TXT=\"" << dumpText(d, target) << "\">";
        // Which fields get a rule: rulesPerDump of them, in field order.
        const int fieldCount = int(target.fields.size());
        const int rules = std::min(shape.rulesPerDump, fieldCount);
        int remaining = rules;
        for (int f = 0; f < fieldCount && remaining > 0; ++f) {
            if (random.below(fieldCount - f) >= remaining)
                continue;
            --remaining;
            const Field& field = target.fields[size_t(f)];
            const Table& source = sources[size_t(random.below(shape.sourceTables))];
            const Field& from = source.fields[size_t(random.below(int(source.fields.size())))];
            const bool script = random.oneIn(25);
            const bool constant = !script && random.oneIn(6);
            w << '<' << field.name << " No=\"" << (f + 1) << "\" TYPE=\"" << (script ? '1' : '0')
              << "\" TEXT=\"" << (random.oneIn(20) ? kNotes[random.below(kNoteCount)] : "") << "\">";
            if (script)
                w << "if " << qualified(source, from) << " &lt; 0 then\n\treturn 0\nendif\nreturn "
                  << qualified(source, from);
            else if (constant)
                w << kConstants[random.below(kConstantCount)];
            else
                w << qualified(source, from);
            w << "</" << field.name << '>';
        }
        w << "</DUMP>";
    }

    w << "<MSCRIPT>";
    for (const Table& t : targets)
        w << '<' << t.upper << "/>";
    w << "</MSCRIPT><TARTAB>";
    for (const Table& t : targets)
        writeFieldDefinitions(w, t);
    w << "</TARTAB><SRCTAB>";
    for (const Table& s : sources)
        writeFieldDefinitions(w, s);
    w << "</SRCTAB></" << kMultiTargetRoot << ">";
    return w.take();
}

QString GenerateMultiTarget(const MultiTargetShape& shape)
{
    const std::string text = GenerateMultiTargetUtf8(shape);
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

} // namespace fb::bench
