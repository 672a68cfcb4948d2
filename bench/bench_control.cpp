// What a user of the control waits for, measured on generated multi-target
// mapping objects of two sizes ("large", about 8 MB, and "huge", about
// 33 MB): loading (assign + ShowControl), reading the document back, the
// peak memory of both, and the actions of a person on the two tabs, each
// beside the floor that pugixml alone sets for the same work.
//
// Everything goes through what a host and a person reach: the control's
// properties and methods by name, and its screen controls by objectName,
// driven with clicks and keys. Nothing here includes the control's own
// sources, so the figures stay comparable while its insides change.
//
//   bench_control [--sizes large,huge] [--runs 7] [--json FILE]
//                 [--core FILE]   (Google Benchmark JSON of bench_core, shown in the same table)
//                 [--commit TEXT] [--write-sample SIZE FILE]
//
// The shared pieces are in ControlBench.h (ControlBenchSupport.cpp), the
// table in ControlBenchTable.cpp; this file holds the timed part and main.

#include "ControlBench.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>

using namespace Qt::StringLiterals;
using namespace fb::bench;

namespace {

// ---------------------------------------------------------------------------
// The timed part, in this process

class Driver {
public:
    Driver(const QString& sizeName, int runs, SizeResults& out) : m_size(sizeName), m_runs(runs), m_out(out)
    {}

    void run()
    {
        const MultiTargetShape shape = shapeOf(m_size);
        const std::string utf8 = fb::bench::GenerateMultiTargetUtf8(shape);
        const QString text = QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
        m_out.bytes = qint64(utf8.size());
        countShape(utf8);

        floors(text);
        loads(text);
        if (!m_host.activate())
            m_out.notes.append(
                u"the host window did not become active; focus-driven actions may not store"_s);
        interactions();
        reads();
        if (!m_modals.unexpected().isEmpty())
            m_out.notes.append(u"unexpected boxes: "_s + m_modals.unexpected().join(u"; "_s));
    }

private:
    // The start of a timed span: wall clock now, CPU time noted.
    Clock::time_point begin()
    {
        m_cpuStart = cpuMs();
        return Clock::now();
    }
    // A figure of the span since begin(); withCpu false for a figure that is
    // not that span (the slowest of several keys).
    void add(const QString& name, double ms, bool withCpu = true)
    {
        Measure& m = m_out.m[name];
        m.runs.push_back(ms);
        if (withCpu)
            m.cpu.push_back(cpuMs() - m_cpuStart);
    }
    void skip(const QString& name, const QString& why)
    {
        if (!m_out.m[name].has())
            m_out.m[name].skipped = why;
    }
    void check(bool ok, const QString& what)
    {
        if (!ok && !m_out.notes.contains(what))
            m_out.notes.append(what);
    }

    void countShape(const std::string& utf8)
    {
        pugi::xml_document doc;
        doc.load_buffer(utf8.data(), utf8.size(), kParseFlags, pugi::encoding_utf8);
        const pugi::xml_node root = doc.document_element();
        for (pugi::xml_node t : root.child("SRCTAB").children())
            m_out.sourceFields += int(std::distance(t.children().begin(), t.children().end()));
        for (pugi::xml_node t : root.child("TARTAB").children())
            m_out.targetFields += int(std::distance(t.children().begin(), t.children().end()));
        for (pugi::xml_node d : root.children("DUMP")) {
            ++m_out.dumps;
            m_out.rules += int(std::distance(d.children().begin(), d.children().end()));
        }
    }

    // The floors, as often as the control's own figures.
    void floors(const QString& text)
    {
        const QByteArray utf8 = text.toUtf8();
        for (int i = 0; i < m_runs; ++i) {
            QByteArray copy(utf8.constData(), utf8.size());
            pugi::xml_document doc;
            auto start = begin();
            check(parseInPlace(doc, copy), u"pugixml could not parse the generated text"_s);
            add(u"floor: parse"_s, msSince(start));
        }
        for (int i = 0; i < m_runs; ++i) {
            pugi::xml_document doc;
            auto start = begin();
            QByteArray converted = text.toUtf8();
            parseInPlace(doc, converted);
            add(u"floor: convert+parse"_s, msSince(start));
        }
        QByteArray copy(utf8.constData(), utf8.size());
        pugi::xml_document doc;
        parseInPlace(doc, copy);
        const QString path = QDir(qEnvironmentVariable("FIELDBRIDGE_TEMP")).filePath(u"floor.xml"_s);
        for (int i = 0; i < m_runs; ++i) {
            auto start = begin();
            StringWriter writer;
            doc.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
            const QString back = QString::fromUtf8(writer.out.data(), qsizetype(writer.out.size()));
            QFile file(path);
            if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
                file.write(writer.out.data(), qint64(writer.out.size()));
            file.close();
            add(u"floor: serialise+QString+write"_s, msSince(start));
            check(!back.isEmpty(), u"the serialised floor text is empty"_s);
        }
    }

    void loads(const QString& text)
    {
        for (int i = 0; i < m_runs; ++i) {
            m_host.recreate();
            auto start = begin();
            m_host.load(text);
            settle();
            add(u"load"_s, msSince(start));
        }
    }

    void reads()
    {
        QString last;
        for (int i = 0; i < m_runs; ++i) {
            auto start = begin();
            last = m_host.ctl->property("MappingObjectXML").toString();
            add(u"read"_s, msSince(start));
        }
        check(last.size() > m_out.bytes / 2,
              u"the document read back is much shorter than the one handed in"_s);
        check(last.contains(u"| edit 1"_s), u"the edited precondition is not in the document read back"_s);
    }

    // Long: one run is a person's whole round over both tabs, each step relying on the one before.
    void interactions()
    {
        Host& h = m_host;
        auto* cmb = h.find<QComboBox>(u"CmbDump"_s);
        auto* details = h.find<QGroupBox>(u"Details"_s);
        auto* sources = h.find<QTreeView>(u"lstSourceFields"_s);
        auto* targets = h.find<QTreeView>(u"lstTargetFields"_s);
        auto* grid = h.find<QAbstractItemView>(u"RulesGrid"_s);
        auto* map = h.find<QAbstractButton>(u"CmdMap"_s);
        auto* guess = h.find<QAbstractButton>(u"CmdGuess"_s);
        QWidget* precondition = h.find(u"txtPreCondition"_s);
        auto* sourceTables = h.find<QAbstractItemView>(u"lstSourceTables"_s);
        if (!cmb || !details || !sources || !targets || !grid || !map || !guess || !precondition ||
            !sourceTables) {
            m_out.notes.append(u"a screen control of the contract is missing; no actions measured"_s);
            return;
        }
        const auto timed = [this](const std::function<void()>& action) {
            const auto start = begin();
            action();
            settle();
            return msSince(start);
        };

        for (int run = 0; run < m_runs; ++run) {
            // Tab 1.
            add(u"switch tab"_s, timed([&] { h.clickTab(1); }));
            check(h.find<QTabWidget>(u"MainTab"_s)->currentIndex() == 1,
                  u"the tab bar click did not switch tabs"_s);
            check(cmb->count() == m_out.dumps,
                  u"the dump selector does not list every dump (%1 of %2)"_s.arg(cmb->count())
                      .arg(m_out.dumps));

            // The next dump: into the selector (Alt+U), the next entry with
            // the arrow key, the focus on with Tab.
            if (!cmb->hasFocus()) {
                keyToFocus(Qt::Key_U, Qt::AltModifier);
                settle();
                if (!cmb->hasFocus()) {
                    cmb->setFocus(Qt::ShortcutFocusReason);
                    settle();
                }
            }
            const QString before = details->title();
            add(u"choose a dump"_s, timed([&] {
                    QTest::keyClick(cmb, Qt::Key_Down);
                    QTest::keyClick(cmb, Qt::Key_Tab);
                }));
            check(details->title() != before, u"choosing the next dump did not show it"_s);

            // Map: tick a source field, select a target field, Map.
            const int sourceRow = (run * 131 + 7) % std::max(1, sources->model()->rowCount());
            const int targetRow = (run * 17 + 3) % std::max(1, targets->model()->rowCount());
            add(u"tick a source field"_s, timed([&] {
                    sources->model()->setData(sources->model()->index(sourceRow, 0), Qt::Checked,
                                              Qt::CheckStateRole);
                }));
            add(u"select a target field"_s, timed([&] { clickCell(targets, targetRow, 3); }));
            add(u"Map"_s, timed([&] { QTest::mouseClick(map, Qt::LeftButton); }));
            check(sources->model()->index(sourceRow, 0).data(Qt::CheckStateRole).toInt() != Qt::Checked,
                  u"Map did not take the ticked source field"_s);

            // Guess, answering Yes to the question whether to replace the
            // dump's rules; the time the box stood open is not counted.
            const QStringList beforeGuess = column(grid, 1);
            const int boxesBefore = m_modals.answered();
            m_modals.arm(QMessageBox::Yes);
            const double guessMs = timed([&] { QTest::mouseClick(guess, Qt::LeftButton); });
            const double openMs = m_modals.disarm();
            add(u"Guess"_s, guessMs - openMs);
            const QStringList afterGuess = column(grid, 1);
            check(afterGuess != beforeGuess, u"Guess changed no rule"_s);
            check(m_modals.answered() > boxesBefore ||
                      !std::any_of(beforeGuess.begin(), beforeGuess.end(),
                                   [](const QString& r) { return !r.isEmpty(); }),
                  u"Guess asked nothing although the dump had rules"_s);
            h.activate(); // under offscreen no window is active after a modal box

            // Ctrl+Z: counted only when it brings the rules back.
            {
                const double ms = timed([&] { keyToFocus(Qt::Key_Z, Qt::ControlModifier); });
                if (afterGuess == beforeGuess)
                    skip(u"undo a Guess"_s, u"Guess changed nothing to undo"_s);
                else if (column(grid, 1) == beforeGuess)
                    add(u"undo a Guess"_s, ms);
                else
                    skip(u"undo a Guess"_s, u"Ctrl+Z does not undo a Guess (not there yet)"_s);
            }

            // A cell: click, type a key (the cell opens), click another cell
            // (the rule is stored).
            const int rows = grid->model()->rowCount();
            if (rows > 2) {
                const int row = (run * 29 + 1) % (rows - 2);
                add(u"edit a cell (click, key)"_s, timed([&] {
                        clickCell(grid, row, 1);
                        QTest::keyClick(grid, Qt::Key_X);
                    }));
                add(u"commit a cell"_s, timed([&] { clickCell(grid, row + 2, 1); }));
                check(grid->model()->index(row, 1).data().toString().contains(u'x'),
                      u"the rule typed into the grid was not committed"_s);
            }

            findField(u"txtFindSource"_s, sources, u"find a source field"_s);
            findField(u"txtFindTarget"_s, targets, u"find a target field"_s);
            filterUnmapped(targets);

            // Back to tab 0.
            add(u"switch back"_s, timed([&] { h.clickTab(0); }));
            check(h.find<QTabWidget>(u"MainTab"_s)->currentIndex() == 0,
                  u"the tab bar click did not switch back"_s);

            // The precondition: a comment line typed at its end, then the
            // focus moves to the source table list (the text is stored).
            clickInto(precondition);
            QTest::keyClick(precondition, Qt::Key_End, Qt::ControlModifier);
            settle();
            double slowestKey = 0;
            for (const QChar c : u"\n| edit "_s + QString::number(run + 1)) {
                slowestKey = std::max(slowestKey, timed([&] {
                                          if (c == u'\n')
                                              QTest::keyClick(precondition, Qt::Key_Return);
                                          else
                                              QTest::keyClicks(precondition, QString(c));
                                      }));
            }
            add(u"type in the precondition (slowest key)"_s, slowestKey, false);
            add(u"store the precondition"_s, timed([&] {
                    QWidget* port = sourceTables->viewport();
                    QTest::mouseClick(port, Qt::LeftButton, {},
                                      QPoint(port->width() / 2, port->height() - 4));
                }));
        }
    }

    // Typing a few letters of a field name into a find box: the slowest key,
    // or the wait from the last key until the list shows the matches if that
    // is longer; then the box is emptied again.
    void findField(const QString& boxName, QTreeView* list, const QString& name)
    {
        QWidget* box = m_host.find(boxName);
        if (!box) {
            skip(name, boxName + u" is not there yet"_s);
            return;
        }
        const QString word = list->model()->index(0, 2).data().toString().section(u'.', 1).left(3);
        clickInto(box);
        settle();
        const int before = visibleRows(list);
        double slowest = 0;
        for (const QChar c : word.isEmpty() ? u"a"_s : word) {
            const auto start = Clock::now();
            QTest::keyClicks(box, QString(c));
            settle();
            slowest = std::max(slowest, msSince(start));
        }
        slowest = std::max(slowest, waitForRowsChange(list, before));
        add(name, slowest, false);
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(box, Qt::Key_Delete);
        settle();
    }

    void filterUnmapped(QTreeView* list)
    {
        const QString name = u"filter to unmapped"_s;
        auto* check = m_host.find<QCheckBox>(u"chkUnmappedOnly"_s);
        if (!check) {
            skip(name, u"chkUnmappedOnly is not there yet"_s);
            return;
        }
        double slowest = 0;
        for (int i = 0; i < 2; ++i) { // on, then off again
            const int before = visibleRows(list);
            const auto start = Clock::now();
            QTest::mouseClick(check, Qt::LeftButton);
            settle();
            const double ms = msSince(start);
            slowest = std::max({slowest, ms, ms + waitForRowsChange(list, before, 200)});
        }
        add(name, slowest, false);
    }

    QString m_size;
    int m_runs;
    SizeResults& m_out;
    Host m_host;
    ModalAnswerer m_modals;
    double m_cpuStart = 0;
};

} // namespace

// Long: the child modes, the arguments and the run over the sizes read best in one place.
int main(int argc, char** argv)
{
    // Offscreen always: the same rendering work on every machine.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The exports go into a scratch folder of this run (the children share it).
    std::unique_ptr<QTemporaryDir> scratch;
    if (qEnvironmentVariableIsEmpty("FIELDBRIDGE_BENCH_CHILD")) {
        scratch = std::make_unique<QTemporaryDir>();
        qputenv("FIELDBRIDGE_TEMP", scratch->path().toLocal8Bit());
        qputenv("FIELDBRIDGE_BENCH_CHILD", "1");
    }
    quietOffscreenMessages();
    QApplication app(argc, argv);
    const QStringList args = app.arguments();

    if (args.value(1) == u"--memory-child"_s)
        return memoryChild(args.value(2), args.value(3));
    if (args.value(1) == u"--write-sample"_s) {
        const std::string text = fb::bench::GenerateMultiTargetUtf8(shapeOf(args.value(2)));
        QFile f(args.value(3));
        return f.open(QIODevice::WriteOnly) &&
                       f.write(text.data(), qint64(text.size())) == qint64(text.size())
                   ? 0
                   : 1;
    }

    QStringList sizes{u"large"_s, u"huge"_s};
    int runs = 7;
    QString jsonPath, corePath, commit;
    for (int i = 1; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == u"--sizes"_s && i + 1 < args.size())
            sizes = args[++i].split(u',', Qt::SkipEmptyParts);
        else if (a == u"--runs"_s && i + 1 < args.size())
            runs = std::max(1, args[++i].toInt());
        else if (a == u"--json"_s && i + 1 < args.size())
            jsonPath = args[++i];
        else if (a == u"--core"_s && i + 1 < args.size())
            corePath = args[++i];
        else if (a == u"--commit"_s && i + 1 < args.size())
            commit = args[++i];
        else {
            std::fprintf(stderr, "unknown argument: %s\n", qPrintable(a));
            return 2;
        }
    }

    const QString loadBefore = loadAverage();
    std::map<QString, SizeResults> results;
    for (const QString& size : sizes) {
        if (size != u"large"_s && size != u"huge"_s) {
            std::fprintf(stderr, "unknown size: %s\n", qPrintable(size));
            return 2;
        }
        std::fprintf(stderr, "bench_control: %s, %d runs ...\n", qPrintable(size), runs);
        SizeResults& r = results[size];
        {
            Driver driver(size, runs, r);
            driver.run();
        }
        settle();
        measureMemory(size, runs, r);
    }

    QJsonArray core;
    if (!corePath.isEmpty()) {
        QFile f(corePath);
        if (f.open(QIODevice::ReadOnly))
            core = QJsonDocument::fromJson(f.readAll()).object().value(u"benchmarks"_s).toArray();
    }
    return report(results, core, jsonPath, commit, loadBefore);
}
