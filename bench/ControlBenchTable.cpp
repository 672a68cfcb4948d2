// The table of bench_control: which figures it shows and in which order,
// the goal each row is held to, the printed table and the JSON beside it.

#include "ControlBench.h"

#include <QFile>
#include <QJsonDocument>
#include <cmath>
#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;

namespace fb::bench {

namespace {

struct Row {
    QString key;   // in the results
    QString label; // as printed
    enum Kind { Floor, Load, Read, Action, LargeAction, Memory, MemoryRead, Info } kind;
    QString floorKey;
};

const QList<Row>& rows()
{
    static const QList<Row> r{
        {u"floor: parse"_s, u"floor: pugixml parse (UTF-8)"_s, Row::Floor, {}},
        {u"floor: convert+parse"_s, u"floor: to UTF-8 + pugixml parse"_s, Row::Floor, {}},
        {u"load"_s, u"assign + ShowControl"_s, Row::Load, u"floor: convert+parse"_s},
        {u"floor: serialise+QString+write"_s, u"floor: serialise+QString+file"_s, Row::Floor, {}},
        {u"read"_s, u"read MappingObjectXML"_s, Row::Read, u"floor: serialise+QString+write"_s},
        {u"switch tab"_s, u"switch to Define Dumps"_s, Row::Action, {}},
        {u"choose a dump"_s, u"choose a dump (key, focus on)"_s, Row::Action, {}},
        {u"tick a source field"_s, u"tick a source field"_s, Row::Action, {}},
        {u"select a target field"_s, u"select a target field"_s, Row::Action, {}},
        {u"Map"_s, u"Map"_s, Row::Action, {}},
        {u"Guess"_s, u"Guess (box time taken out)"_s, Row::Action, {}},
        {u"edit a cell (click, key)"_s, u"open a cell (click, key)"_s, Row::Action, {}},
        {u"commit a cell"_s, u"commit a cell (click away)"_s, Row::Action, {}},
        {u"switch back"_s, u"switch back to Mapping Object"_s, Row::Action, {}},
        {u"type in the precondition (slowest key)"_s, u"type in precondition (slowest)"_s, Row::Action, {}},
        {u"store the precondition"_s, u"store precondition (focus on)"_s, Row::Action, {}},
        {u"find a source field"_s, u"find a source field"_s, Row::LargeAction, {}},
        {u"find a target field"_s, u"find a target field"_s, Row::LargeAction, {}},
        {u"filter to unmapped"_s, u"filter to unmapped"_s, Row::LargeAction, {}},
        {u"undo a Guess"_s, u"undo a Guess (Ctrl+Z)"_s, Row::LargeAction, {}},
        {u"memory: pugixml parse"_s, u"peak MiB: pugixml parse alone"_s, Row::Floor, {}},
        {u"memory: load"_s, u"peak MiB: loading"_s, Row::Memory, u"memory: pugixml parse"_s},
        {u"memory: load to read-back"_s, u"peak MiB: load to read-back"_s, Row::MemoryRead,
         u"memory: pugixml parse"_s},
        {u"memory: baseline"_s, u"RSS MiB before loading"_s, Row::Info, {}},
    };
    return r;
}

constexpr double kActionGoalMs = 50;
constexpr double kGrowthGoal = 4.6;
constexpr double kGrowthJudgedAboveMs = 5; // below this, the ratio of two times is noise

QString fmt(double v, int decimals = 1)
{
    if (std::isnan(v))
        return u"-"_s;
    return QString::number(v, 'f', v >= 1000 ? 0 : decimals);
}

struct Verdict {
    QString goal;
    QString met; // "yes", "NO", "-" (nothing to judge), "skip"
    QStringList failed;
};

Verdict judge(const Row& row, double large, double huge, double floorRatio)
{
    Verdict v;
    const auto need = [&v](bool known, bool ok, const QString& what) {
        if (!known)
            return;
        if (!ok)
            v.failed.append(what);
        if (v.met.isEmpty() || v.met == u"yes"_s)
            v.met = ok ? u"yes"_s : u"NO"_s;
    };
    const bool growthKnown = !std::isnan(large) && !std::isnan(huge) && huge > kGrowthJudgedAboveMs;
    const double growth = huge / large;
    switch (row.kind) {
    case Row::Load:
        v.goal = u"<=2x floor; h/l<=4.6"_s;
        need(!std::isnan(floorRatio), floorRatio <= 2.0, u"floor"_s);
        need(growthKnown, growth <= kGrowthGoal, u"growth"_s);
        break;
    case Row::Read:
        v.goal = u"<=1.5x floor; h/l<=4.6"_s;
        need(!std::isnan(floorRatio), floorRatio <= 1.5, u"floor"_s);
        need(growthKnown, growth <= kGrowthGoal, u"growth"_s);
        break;
    case Row::Action:
        v.goal = u"<=50 ms huge; h/l<=4.6"_s;
        need(!std::isnan(huge), huge <= kActionGoalMs, u"50 ms"_s);
        need(growthKnown, growth <= kGrowthGoal, u"growth"_s);
        break;
    case Row::LargeAction:
        v.goal = u"<50 ms at large"_s;
        need(!std::isnan(large), large < kActionGoalMs, u"50 ms"_s);
        break;
    case Row::Memory:
        v.goal = u"<=1.1x floor"_s;
        need(!std::isnan(floorRatio), floorRatio <= 1.1, u"floor"_s);
        break;
    case Row::MemoryRead:
        v.goal = u"<=1.5x floor"_s;
        need(!std::isnan(floorRatio), floorRatio <= 1.5, u"floor"_s);
        break;
    default:
        break;
    }
    if (v.met.isEmpty())
        v.met = u"-"_s;
    return v;
}

QString machineModel()
{
    QFile f(u"/proc/cpuinfo"_s);
    if (f.open(QIODevice::ReadOnly))
        for (const QByteArray& line : f.readAll().split('\n'))
            if (line.startsWith("model name"))
                return QString::fromUtf8(line.mid(line.indexOf(':') + 1).trimmed());
    return u"unknown"_s;
}

QString pad(const QString& s, int width, bool right = false)
{
    return right ? s.rightJustified(width) : s.leftJustified(width);
}

} // namespace

QString loadAverage()
{
    QFile f(u"/proc/loadavg"_s);
    if (!f.open(QIODevice::ReadOnly))
        return u"unknown"_s;
    return QString::fromLatin1(f.readAll()).split(u' ').mid(0, 3).join(u' ');
}

// Long: one pass over the rows prints the table and builds its JSON together, so the two never disagree.
int report(const std::map<QString, SizeResults>& results, const QJsonArray& core, const QString& jsonPath,
           const QString& commit, const QString& loadBefore)
{
    const auto get = [&](const QString& size, const QString& key) -> const Measure* {
        const auto s = results.find(size);
        if (s == results.end())
            return nullptr;
        const auto m = s->second.m.find(key);
        return m == s->second.m.end() ? nullptr : &m->second;
    };
    const auto value = [&](const QString& size, const QString& key) {
        const Measure* m = get(size, key);
        return m && m->has() ? m->value() : std::nan("");
    };

    const QStringList header{u"action"_s, u"large ms"_s, u"huge ms"_s, u"huge/large"_s,
                             u"floor"_s,  u"x floor"_s,  u"goal"_s,    u"met?"_s};
    const QList<int> widths{32, 9, 9, 10, 8, 7, 24, 5};
    const auto line = [&](const QStringList& cells) {
        QString out;
        for (int i = 0; i < cells.size(); ++i)
            out += pad(cells[i], widths[i], i >= 1 && i <= 5) + (i + 1 < cells.size() ? u" | "_s : QString());
        std::printf("%s\n", qPrintable(out.trimmed()));
    };

    QJsonArray jsonRows;
    QStringList skipped;
    int missed = 0;
    std::printf("\n");
    line(header);
    QStringList rule;
    for (int w : widths)
        rule.append(QString(w, u'-'));
    line(rule);
    for (const Row& row : rows()) {
        const double large = value(u"large"_s, row.key);
        const double huge = value(u"huge"_s, row.key);
        if (std::isnan(large) && std::isnan(huge)) {
            const Measure* m = get(u"large"_s, row.key);
            if (!m)
                m = get(u"huge"_s, row.key);
            const QString why = m && !m->skipped.isEmpty() ? m->skipped : u"not measured"_s;
            skipped.append(row.label + u": "_s + why);
            line({row.label,
                  u"skip"_s,
                  u"skip"_s,
                  {},
                  {},
                  {},
                  judge(row, large, huge, std::nan("")).goal,
                  u"skip"_s});
            QJsonObject o;
            o[u"action"_s] = row.label;
            o[u"skipped"_s] = why;
            jsonRows.append(o);
            continue;
        }
        const QString lastSize = std::isnan(huge) ? u"large"_s : u"huge"_s;
        const double floor = row.floorKey.isEmpty() ? std::nan("") : value(lastSize, row.floorKey);
        const double last = std::isnan(huge) ? large : huge;
        const double floorRatio = last / floor;
        const Verdict v = judge(row, large, huge, floorRatio);
        if (v.met == u"NO"_s)
            ++missed;
        const int decimals =
            row.kind == Row::Memory || row.kind == Row::MemoryRead || row.key.startsWith(u"memory"_s) ? 0 : 1;
        line({row.label, fmt(large, decimals), fmt(huge, decimals), fmt(huge / large, 2),
              fmt(floor, decimals), fmt(floorRatio, 2), v.goal,
              v.met + (v.failed.isEmpty() ? QString() : u" ("_s + v.failed.join(u", "_s) + u')')});
        QJsonObject o;
        o[u"action"_s] = row.label;
        o[u"unit"_s] = row.key.startsWith(u"memory"_s) ? u"MiB"_s : u"ms"_s;
        for (const QString& size : {u"large"_s, u"huge"_s}) {
            if (const Measure* m = get(size, row.key); m && m->has()) {
                QJsonObject s;
                s[u"median"_s] = m->value();
                QJsonArray runs;
                for (double r : m->runs)
                    runs.append(r);
                s[u"runs"_s] = runs;
                if (!m->cpu.empty()) {
                    QJsonArray cpu;
                    for (double c : m->cpu)
                        cpu.append(c);
                    s[u"cpuRuns"_s] = cpu;
                    s[u"cpuMedian"_s] = median(m->cpu);
                }
                if (!row.floorKey.isEmpty() && get(size, row.floorKey))
                    s[u"ratioToFloor"_s] = m->value() / value(size, row.floorKey);
                o[size] = s;
            }
        }
        if (!std::isnan(large) && !std::isnan(huge))
            o[u"hugeOverLarge"_s] = huge / large;
        if (!row.floorKey.isEmpty())
            o[u"floor"_s] = row.floorKey;
        o[u"goal"_s] = v.goal;
        o[u"met"_s] = v.met;
        if (!v.failed.isEmpty())
            o[u"failed"_s] = QJsonArray::fromStringList(v.failed);
        jsonRows.append(o);
    }

    // The core benchmarks of bench_core, on their own single-target document.
    if (!core.isEmpty()) {
        line(rule);
        std::printf("core (bench_core, Google Benchmark, its own 10,000-source-field document):\n");
        for (const QJsonValue& b : core) {
            const QJsonObject o = b.toObject();
            if (o.value(u"run_type"_s).toString() == u"aggregate"_s)
                continue;
            double t = o.value(u"real_time"_s).toDouble();
            const QString unit = o.value(u"time_unit"_s).toString();
            t = unit == u"ns"_s ? t / 1e6 : unit == u"us"_s ? t / 1e3 : unit == u"s"_s ? t * 1e3 : t;
            line({u"core: "_s + o.value(u"name"_s).toString(), fmt(t), {}, {}, {}, {}, {}, {}});
        }
    }

    std::printf("\n");
    for (const QString& size : {u"large"_s, u"huge"_s}) {
        const auto s = results.find(size);
        if (s == results.end())
            continue;
        const SizeResults& r = s->second;
        std::printf(
            "%s: %.1f MB (%.1f MiB) of UTF-8, %d source fields, %d target fields, %d dumps, %d rules\n",
            qPrintable(size), double(r.bytes) / 1e6, double(r.bytes) / (1024.0 * 1024.0), r.sourceFields,
            r.targetFields, r.dumps, r.rules);
        const double base = value(size, u"memory: baseline"_s);
        const double parsePeak = value(size, u"memory: pugixml parse"_s);
        if (!std::isnan(base) && !std::isnan(parsePeak)) {
            const double parse = parsePeak - base;
            const double load = value(size, u"memory: load"_s) - base;
            const double read = value(size, u"memory: load to read-back"_s) - base;
            std::printf(
                "  peaks above the RSS before loading: pugixml parse %.0f MiB, loading %.0f MiB (%.2fx), "
                "load to read-back %.0f MiB (%.2fx)\n",
                parse, load, load / parse, read, read / parse);
        }
        const double load = value(size, u"load"_s);
        if (!std::isnan(load))
            std::printf("  assign + ShowControl: %.2fx to UTF-8 + parse, %.2fx the parse alone\n",
                        load / value(size, u"floor: convert+parse"_s), load / value(size, u"floor: parse"_s));
        for (const QString& n : r.notes)
            std::printf("  note (%s): %s\n", qPrintable(size), qPrintable(n));
    }
    for (const QString& s : skipped)
        std::printf("skipped: %s\n", qPrintable(s));
    std::printf(
        "Times are medians of several runs; memory is the peak resident set (VmHWM) of a fresh process\n"
        "after the same set-up, reset just before the phase. \"floor\" and \"x floor\" are at the largest\n"
        "size measured. Growth (huge/large) is judged only above %.0f ms at huge. The JSON holds every run,\n"
        "and the process's CPU time beside the wall-clock time of each timed span.\n",
        kGrowthJudgedAboveMs);

    const QString model = machineModel();
    const int cores = int(std::thread::hardware_concurrency());
    std::printf("machine: %d cores, %s; Qt %s, pugixml %d.%d%s%s\n", cores, qPrintable(model), qVersion(),
                PUGIXML_VERSION / 1000, PUGIXML_VERSION / 10 % 100, commit.isEmpty() ? "" : ", commit ",
                qPrintable(commit));
    std::printf("load average (1, 5, 15 min) before: %s, after: %s\n", qPrintable(loadBefore),
                qPrintable(loadAverage()));

    if (!jsonPath.isEmpty()) {
        QJsonObject root;
        QJsonObject machine;
        machine[u"cores"_s] = cores;
        machine[u"model"_s] = model;
        machine[u"qt"_s] = QString::fromLatin1(qVersion());
        machine[u"pugixml"_s] = PUGIXML_VERSION;
        machine[u"loadAverageBefore"_s] = loadBefore;
        machine[u"loadAverageAfter"_s] = loadAverage();
        root[u"machine"_s] = machine;
        if (!commit.isEmpty())
            root[u"commit"_s] = commit;
        QJsonObject documents;
        for (const auto& [size, r] : results) {
            QJsonObject d;
            d[u"bytes"_s] = double(r.bytes);
            d[u"sourceFields"_s] = r.sourceFields;
            d[u"targetFields"_s] = r.targetFields;
            d[u"dumps"_s] = r.dumps;
            d[u"rules"_s] = r.rules;
            d[u"notes"_s] = QJsonArray::fromStringList(r.notes);
            documents[size] = d;
        }
        root[u"documents"_s] = documents;
        root[u"rows"_s] = jsonRows;
        root[u"core"_s] = core;
        root[u"goalsMissed"_s] = missed;
        QFile f(jsonPath);
        if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            f.write(QJsonDocument(root).toJson());
        std::printf("results: %s\n", qPrintable(jsonPath));
    }
    return 0;
}

} // namespace fb::bench
