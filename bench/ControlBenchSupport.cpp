// The definitions behind ControlBench.h: clocks, memory figures, the
// answering of modal boxes, the host window and a person's hands, and the
// memory phases, each in a fresh process.

#include "ControlBench.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <optional>

using namespace Qt::StringLiterals;

namespace fb::bench {

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

void settle()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
}

// ---------------------------------------------------------------------------
// Memory

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
// pugixml alone

bool parseInPlace(pugi::xml_document& doc, QByteArray& utf8)
{
    return bool(doc.load_buffer_inplace(utf8.data(), size_t(utf8.size()), kParseFlags, pugi::encoding_utf8));
}

// ---------------------------------------------------------------------------
// Modal boxes

ModalAnswerer::ModalAnswerer()
{
    connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
    m_timer.start(20);
}

void ModalAnswerer::arm(QMessageBox::StandardButton answer)
{
    m_answers.push_back(answer);
    m_openMs = 0;
    qApp->installEventFilter(this);
    m_timer.setInterval(1);
}

double ModalAnswerer::disarm()
{
    qApp->removeEventFilter(this);
    m_timer.setInterval(20);
    m_answers.clear();
    return m_openMs;
}

bool ModalAnswerer::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto* w = static_cast<QWidget*>(watched);
        if (w->isWindow() && w->isModal() && !m_shownAt.count(w))
            m_shownAt[w] = Clock::now();
    }
    return false;
}

void ModalAnswerer::poll()
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

void ModalAnswerer::answer(QPointer<QWidget> target, Clock::time_point shownAt)
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

// ---------------------------------------------------------------------------
// The host and a person's hands

Host::Host() : m_window(std::make_unique<QWidget>())
{
    m_window->setObjectName(u"HostWindow"_s);
    m_window->resize(1200, 860);
}

void Host::recreate()
{
    delete ctl;
    ctl = nullptr;
    settle();
    ctl = new ctlFieldbridge(m_window.get());
    ctl->setGeometry(0, 0, 1160, 820);
    ctl->setProperty("Edit", true);
    ctl->setProperty("TargetTable", QString::fromLatin1(kMultiTargetRoot));
    ctl->show();
    settle();
}

void Host::load(const QString& text)
{
    ctl->setProperty("MappingObjectXML", text);
    QMetaObject::invokeMethod(ctl, "ShowControl");
}

bool Host::activate()
{
    m_window->show();
    m_window->activateWindow();
    return QTest::qWaitForWindowActive(m_window.get());
}

void Host::clickTab(int index) const
{
    QTabBar* bar = find<QTabWidget>(u"MainTab"_s)->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
}

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
    QTest::mouseClick(target, Qt::LeftButton, {},
                      area ? QPoint(target->width() / 2, 6) : target->rect().center());
}

void keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers)
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

double waitForRowsChange(const QTreeView* view, int before, int limitMs)
{
    const auto start = Clock::now();
    while (msSince(start) < limitMs) {
        if (visibleRows(view) != before || view->model()->rowCount() != before)
            return msSince(start);
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return 0;
}

MultiTargetShape shapeOf(const QString& size)
{
    return size == u"huge"_s ? MultiTargetShape::Huge() : MultiTargetShape::Large();
}

// ---------------------------------------------------------------------------
// Memory, each phase in a fresh process

int memoryChild(const QString& size, const QString& phase)
{
    Host host;
    host.recreate();
    const QString text = GenerateMultiTarget(shapeOf(size));
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

namespace {

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

} // namespace

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

void quietOffscreenMessages()
{
    static QtMessageHandler previous = nullptr;
    previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context,
                                         const QString& message) {
        if (message.contains(u"propagateSizeHints"_s) || message.contains(u"This plugin does not support"_s))
            return;
        if (previous)
            previous(type, context, message);
    });
}

} // namespace fb::bench
