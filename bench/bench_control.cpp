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

#include "MappingGenerator.h"
#include "ctlFieldbridge.h"

#include <pugixml.hpp>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGroupBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <cmath>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using fb::bench::MultiTargetShape;

namespace {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The CPU time of this process: on a machine shared with other work it
// varies less than the wall-clock time a user waits.
double cpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

double median(std::vector<double> v)
{
    if (v.empty())
        return std::nan("");
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

// Everything the event loop still has to do after an action: posted events,
// deferred layouts, repaints of the offscreen backing store.
void settle()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
}

// ---------------------------------------------------------------------------
// Memory: the resident set's high-water mark, reset between phases

long statusKb(const char* key)
{
    QFile f(u"/proc/self/status"_s);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(key) + ':';
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').value(0).toLong();
    return -1;
}

bool resetPeak()
{
    QFile f(u"/proc/self/clear_refs"_s);
    return f.open(QIODevice::WriteOnly) && f.write("5") == 1;
}

// ---------------------------------------------------------------------------
// pugixml alone: the floors

constexpr unsigned kParseFlags = pugi::parse_default | pugi::parse_declaration | pugi::parse_pi |
                                 pugi::parse_comments | pugi::parse_doctype | pugi::parse_fragment;

bool parseInPlace(pugi::xml_document& doc, QByteArray& utf8)
{
    return bool(doc.load_buffer_inplace(utf8.data(), size_t(utf8.size()), kParseFlags, pugi::encoding_utf8));
}

struct StringWriter : pugi::xml_writer {
    std::string out;
    void write(const void* data, size_t size) override { out.append(static_cast<const char*>(data), size); }
};

// ---------------------------------------------------------------------------
// Modal boxes: answered from a polling timer, the time a box stood open
// taken out of the action's time

class ModalAnswerer : public QObject {
public:
    ModalAnswerer()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
        m_timer.start(20);
    }

    // The next box is answered with this button; box opening times are
    // taken from their Show events until disarm().
    void arm(QMessageBox::StandardButton answer)
    {
        m_answers.push_back(answer);
        m_openMs = 0;
        qApp->installEventFilter(this);
        m_timer.setInterval(1);
    }
    // The time boxes stood open since arm().
    double disarm()
    {
        qApp->removeEventFilter(this);
        m_timer.setInterval(20);
        m_answers.clear();
        return m_openMs;
    }
    int answered() const { return m_answered; }
    const QStringList& unexpected() const { return m_unexpected; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show && watched->isWidgetType()) {
            auto* w = static_cast<QWidget*>(watched);
            if (w->isWindow() && w->isModal() && !m_shownAt.count(w))
                m_shownAt[w] = Clock::now();
        }
        return false;
    }

private:
    void poll()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || modal == m_current)
            return;
        m_current = modal;
        const auto found = m_shownAt.find(modal);
        const Clock::time_point shownAt = found != m_shownAt.end() ? found->second : Clock::now();
        QPointer<QWidget> target(modal);
        QMetaObject::invokeMethod(
            this, [this, target, shownAt] { answer(target, shownAt); }, Qt::QueuedConnection);
    }

    void answer(QPointer<QWidget> target, Clock::time_point shownAt)
    {
        if (target) {
            auto* box = qobject_cast<QMessageBox*>(target.data());
            QAbstractButton* button = nullptr;
            if (!m_answers.empty() && box) {
                button = box->button(m_answers.front());
                m_answers.pop_front();
            }
            if (!button) {
                m_unexpected.append(QString::fromLatin1(target->metaObject()->className()) + u": "_s +
                                    (box ? box->text() : target->windowTitle()));
                if (box)
                    button = box->escapeButton() ? box->escapeButton() : box->buttons().value(0);
            }
            m_openMs += msSince(shownAt);
            if (button)
                QTest::mouseClick(button, Qt::LeftButton);
            else
                target->close();
            ++m_answered;
        }
        m_shownAt.clear();
        m_current = nullptr;
    }

    QTimer m_timer;
    std::deque<QMessageBox::StandardButton> m_answers;
    std::map<QWidget*, Clock::time_point> m_shownAt;
    QPointer<QWidget> m_current;
    double m_openMs = 0;
    int m_answered = 0;
    QStringList m_unexpected;
};

// ---------------------------------------------------------------------------
// A host window with the control, and a person's hands

class Host {
public:
    Host() : m_window(std::make_unique<QWidget>())
    {
        m_window->setObjectName(u"HostWindow"_s);
        m_window->resize(1200, 860);
    }

    // A new control, shown empty: Edit and TargetTable set as a host does
    // before it hands the document in.
    void recreate()
    {
        delete ctl;
        ctl = nullptr;
        settle();
        ctl = new ctlFieldbridge(m_window.get());
        ctl->setGeometry(0, 0, 1160, 820);
        ctl->setProperty("Edit", true);
        ctl->setProperty("TargetTable", QString::fromLatin1(fb::bench::kMultiTargetRoot));
        ctl->show();
        settle();
    }

    void load(const QString& text)
    {
        ctl->setProperty("MappingObjectXML", text);
        QMetaObject::invokeMethod(ctl, "ShowControl");
    }

    bool activate()
    {
        m_window->show();
        m_window->activateWindow();
        return QTest::qWaitForWindowActive(m_window.get());
    }

    template <typename T = QWidget>
    T* find(const QString& name) const
    {
        return ctl->findChild<T*>(name);
    }

    void clickTab(int index) const
    {
        QTabBar* bar = find<QTabWidget>(u"MainTab"_s)->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    }

    ctlFieldbridge* ctl = nullptr;

private:
    std::unique_ptr<QWidget> m_window;
};

void clickCell(QAbstractItemView* view, int row, int column)
{
    const QModelIndex index = view->model()->index(row, column);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
}

void clickInto(QWidget* w)
{
    auto* area = qobject_cast<QAbstractScrollArea*>(w);
    QWidget* target = area ? area->viewport() : w;
    QTest::mouseClick(target, Qt::LeftButton, {}, area ? QPoint(target->width() / 2, 6) : target->rect().center());
}

void keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
    if (QWidget* f = QApplication::focusWidget())
        QTest::keyClick(f, key, modifiers);
}

QStringList column(const QAbstractItemView* view, int col)
{
    QStringList out;
    const QAbstractItemModel* m = view->model();
    for (int r = 0; r < m->rowCount(); ++r)
        out.append(m->index(r, col).data().toString());
    return out;
}

int visibleRows(const QTreeView* view)
{
    int n = 0;
    const int rows = view->model()->rowCount();
    for (int r = 0; r < rows; ++r)
        n += view->isRowHidden(r, QModelIndex()) ? 0 : 1;
    return n;
}

// Waits (up to a limit) until the list shows another number of rows, for a
// filter that applies itself after a pause; the time waited, or 0.
double waitForRowsChange(const QTreeView* view, int before, int limitMs = 500)
{
    const auto start = Clock::now();
    while (msSince(start) < limitMs) {
        if (visibleRows(view) != before || view->model()->rowCount() != before)
            return msSince(start);
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return 0;
}

// ---------------------------------------------------------------------------
// Results

struct Measure {
    std::vector<double> runs; // ms, or MiB for memory
    std::vector<double> cpu;  // CPU ms of the process over the same span, where known
    QString skipped;          // why there is no figure
    double value() const { return median(runs); }
    bool has() const { return !runs.empty(); }
};

struct SizeResults {
    std::map<QString, Measure> m;
    QStringList notes;
    qint64 bytes = 0;
    int sourceFields = 0, targetFields = 0, dumps = 0, rules = 0;
};

MultiTargetShape shapeOf(const QString& size)
{
    return size == u"huge"_s ? MultiTargetShape::Huge() : MultiTargetShape::Large();
}

// ---------------------------------------------------------------------------
// The timed part, in this process

class Driver {
public:
    Driver(const QString& sizeName, int runs, SizeResults& out) : m_size(sizeName), m_runs(runs), m_out(out) {}

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
            m_out.notes.append(u"the host window did not become active; focus-driven actions may not store"_s);
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
        check(last.size() > m_out.bytes / 2, u"the document read back is much shorter than the one handed in"_s);
        check(last.contains(u"| edit 1"_s), u"the edited precondition is not in the document read back"_s);
    }

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
        if (!cmb || !details || !sources || !targets || !grid || !map || !guess || !precondition || !sourceTables) {
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
            check(h.find<QTabWidget>(u"MainTab"_s)->currentIndex() == 1, u"the tab bar click did not switch tabs"_s);
            check(cmb->count() == m_out.dumps,
                  u"the dump selector does not list every dump (%1 of %2)"_s.arg(cmb->count()).arg(m_out.dumps));

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
                    sources->model()->setData(sources->model()->index(sourceRow, 0), Qt::Checked, Qt::CheckStateRole);
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
            check(m_modals.answered() > boxesBefore || !std::any_of(beforeGuess.begin(), beforeGuess.end(),
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
            check(h.find<QTabWidget>(u"MainTab"_s)->currentIndex() == 0, u"the tab bar click did not switch back"_s);

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
                    QTest::mouseClick(port, Qt::LeftButton, {}, QPoint(port->width() / 2, port->height() - 4));
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

// ---------------------------------------------------------------------------
// Memory, each phase in a fresh process

// Child: the same set-up as a host (an empty control shown, the text in
// memory), then the peak is reset and one phase runs. Prints one JSON line.
int memoryChild(const QString& size, const QString& phase)
{
    Host host;
    host.recreate();
    const QString text = fb::bench::GenerateMultiTarget(shapeOf(size));
    settle();
    QJsonObject out;
    out[u"baselineKb"_s] = double(statusKb("VmRSS"));
    out[u"resetOk"_s] = resetPeak();
    if (phase == u"pugixml"_s) {
        pugi::xml_document doc;
        QByteArray utf8 = text.toUtf8();
        out[u"parsed"_s] = parseInPlace(doc, utf8);
        out[u"peakKb"_s] = double(statusKb("VmHWM"));
    } else {
        host.load(text);
        settle();
        out[u"peakKb"_s] = double(statusKb("VmHWM"));
        const QString back = host.ctl->property("MappingObjectXML").toString();
        settle();
        out[u"peakReadKb"_s] = double(statusKb("VmHWM"));
        out[u"readChars"_s] = double(back.size());
    }
    std::printf("%s\n", QJsonDocument(out).toJson(QJsonDocument::Compact).constData());
    return 0;
}

std::optional<QJsonObject> runChild(const QString& size, const QString& phase, QString* error)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    p.start(QCoreApplication::applicationFilePath(), {u"--memory-child"_s, size, phase});
    if (!p.waitForFinished(-1) || p.exitCode() != 0) {
        *error = u"the memory child (%1, %2) failed"_s.arg(size, phase);
        return std::nullopt;
    }
    const QList<QByteArray> lines = p.readAllStandardOutput().trimmed().split('\n');
    const QJsonObject o = QJsonDocument::fromJson(lines.value(lines.size() - 1)).object();
    if (o.isEmpty()) {
        *error = u"the memory child (%1, %2) printed no result"_s.arg(size, phase);
        return std::nullopt;
    }
    return o;
}

void measureMemory(const QString& size, int runs, SizeResults& out)
{
    // Three children of each kind; the median peak.
    const int repeats = std::min(runs, 3);
    for (int i = 0; i < repeats; ++i) {
        QString error;
        const auto floor = runChild(size, u"pugixml"_s, &error);
        const auto load = runChild(size, u"load"_s, &error);
        if (!floor || !load) {
            out.notes.append(error);
            return;
        }
        if (!floor->value(u"resetOk"_s).toBool() || !load->value(u"resetOk"_s).toBool())
            out.notes.append(u"/proc/self/clear_refs could not reset the peak: peaks include the set-up"_s);
        out.m[u"memory: pugixml parse"_s].runs.push_back(floor->value(u"peakKb"_s).toDouble() / 1024);
        out.m[u"memory: load"_s].runs.push_back(load->value(u"peakKb"_s).toDouble() / 1024);
        out.m[u"memory: load to read-back"_s].runs.push_back(load->value(u"peakReadKb"_s).toDouble() / 1024);
        out.m[u"memory: baseline"_s].runs.push_back(load->value(u"baselineKb"_s).toDouble() / 1024);
    }
}

// ---------------------------------------------------------------------------
// The table

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
        {u"memory: load to read-back"_s, u"peak MiB: load to read-back"_s, Row::MemoryRead, u"memory: pugixml parse"_s},
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

// The first three fields of /proc/loadavg: other work on the machine makes
// the figures noisier.
QString loadAverage()
{
    QFile f(u"/proc/loadavg"_s);
    if (!f.open(QIODevice::ReadOnly))
        return u"unknown"_s;
    return QString::fromLatin1(f.readAll()).split(u' ').mid(0, 3).join(u' ');
}

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

    const QStringList header{u"action"_s, u"large ms"_s, u"huge ms"_s, u"huge/large"_s, u"floor"_s,
                             u"x floor"_s, u"goal"_s, u"met?"_s};
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
            line({row.label, u"skip"_s, u"skip"_s, {}, {}, {}, judge(row, large, huge, std::nan("")).goal, u"skip"_s});
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
        const int decimals = row.kind == Row::Memory || row.kind == Row::MemoryRead ||
                                     row.key.startsWith(u"memory"_s)
                                 ? 0
                                 : 1;
        line({row.label, fmt(large, decimals), fmt(huge, decimals), fmt(huge / large, 2), fmt(floor, decimals),
              fmt(floorRatio, 2), v.goal, v.met + (v.failed.isEmpty() ? QString() : u" ("_s + v.failed.join(u", "_s) + u')')});
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
        std::printf("%s: %.1f MB (%.1f MiB) of UTF-8, %d source fields, %d target fields, %d dumps, %d rules\n",
                    qPrintable(size), double(r.bytes) / 1e6, double(r.bytes) / (1024.0 * 1024.0), r.sourceFields,
                    r.targetFields, r.dumps, r.rules);
        const double base = value(size, u"memory: baseline"_s);
        const double parsePeak = value(size, u"memory: pugixml parse"_s);
        if (!std::isnan(base) && !std::isnan(parsePeak)) {
            const double parse = parsePeak - base;
            const double load = value(size, u"memory: load"_s) - base;
            const double read = value(size, u"memory: load to read-back"_s) - base;
            std::printf("  peaks above the RSS before loading: pugixml parse %.0f MiB, loading %.0f MiB (%.2fx), "
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
    std::printf("Times are medians of several runs; memory is the peak resident set (VmHWM) of a fresh process\n"
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

void quietOffscreenMessages()
{
    static QtMessageHandler previous = nullptr;
    previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (message.contains(u"propagateSizeHints"_s) || message.contains(u"This plugin does not support"_s))
            return;
        if (previous)
            previous(type, context, message);
    });
}

} // namespace

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
        return f.open(QIODevice::WriteOnly) && f.write(text.data(), qint64(text.size())) == qint64(text.size()) ? 0 : 1;
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
