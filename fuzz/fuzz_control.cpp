// The mapping object through the whole control on the offscreen platform, as
// a host hands it over: TargetTable from the root element's name, Edit on,
// MappingObjectXML, ShowControl, a visit to "Define Dumps" and back, and a
// read. The text read is handed to a fresh control and read again: the two
// reads must be equal, and each read's export file must hold what it returned.
//
// Every modal box that appears is answered from the event loop of its exec(),
// with OK or Cancel picked from a hash of the input, so that no input hangs
// and a crash replays the same answers.

#include "FuzzSupport.h"
#include "ctlFieldbridge.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QInputDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <cstdlib>

namespace {

class BoxAnswerer {
public:
    BoxAnswerer()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { poll(); });
        m_timer.start(0);
    }

    void reset(size_t seed)
    {
        m_bits = seed;
        m_current = nullptr;
    }

private:
    void poll()
    {
        QWidget* box = QApplication::activeModalWidget();
        if (!box || box == m_current)
            return;
        m_current = box;
        const bool ok = (m_bits & 1) != 0;
        m_bits = (m_bits >> 1) | (m_bits << (sizeof m_bits * 8 - 1));
        // Answered once the box is fully shown, from its own event loop.
        QTimer::singleShot(0, &m_timer, [this, target = QPointer<QWidget>(box), ok] {
            if (target)
                answer(target, ok);
            if (target && target->isVisible())
                close(target);
            m_current = nullptr; // the same box may be shown again
        });
    }

    static void answer(QWidget* box, bool ok)
    {
        if (auto* message = qobject_cast<QMessageBox*>(box)) {
            const QList<QAbstractButton*> buttons = message->buttons();
            QAbstractButton* b =
                ok ? static_cast<QAbstractButton*>(message->defaultButton()) : message->escapeButton();
            if (!b && !buttons.isEmpty())
                b = ok ? buttons.constFirst() : buttons.constLast();
            if (b)
                b->click();
        } else if (auto* input = qobject_cast<QInputDialog*>(box)) {
            ok ? input->accept() : input->reject();
        } else if (auto* dialog = qobject_cast<QDialog*>(box)) {
            auto* button = dialog->findChild<QAbstractButton*>(ok ? QStringLiteral("CmdOk")
                                                                  : QStringLiteral("CmdCancel"));
            if (button && button->isEnabled())
                button->click();
        }
    }

    static void close(QWidget* box)
    {
        if (auto* dialog = qobject_cast<QDialog*>(box))
            dialog->reject();
        else
            box->close();
    }

    QTimer m_timer;
    QPointer<QWidget> m_current;
    size_t m_bits = 0;
};

// Live until the process ends: libFuzzer leaves through exit(), and Qt's
// own statics may be gone by the time a static QApplication would go.
QString g_scratch;
BoxAnswerer* g_answerer = nullptr;

void settle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Whatever the control leaves in the scratch folder goes after each input,
// so that files of earlier inputs neither pile up nor vouch for later ones.
void clearScratch()
{
    // Paths joined as text: a table name may begin with ":", and QDir takes
    // such a name for a path into the resources, which it cannot remove.
    for (const QString& name :
         QDir(g_scratch).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System)) {
        const QString path = g_scratch + u'/' + name;
        if (!QFile::remove(path))
            QDir(path).removeRecursively();
    }
}

// The read, and the export file it wrote: the only file in the folder.
QString read(ctlFieldbridge& ctl)
{
    const QString text = ctl.property("MappingObjectXML").toString();
    const QStringList files = QDir(g_scratch).entryList(QDir::Files);
    if (files.size() != 1)
        fbfuzz::differs("a read leaves one export file", QStringLiteral("one file"), files.join(u'|'));
    QFile file(g_scratch + u'/' + files.first());
    if (!file.open(QIODevice::ReadOnly))
        fbfuzz::differs("the export file can be read", files.first(), file.errorString());
    const QString exported = QString::fromUtf8(file.readAll());
    if (exported != text)
        fbfuzz::differs("the export file holds the text read", text, exported);
    return text;
}

QString openAndRead(const QString& table, const QString& xml, bool visitDumps)
{
    ctlFieldbridge ctl;
    ctl.resize(1160, 820);
    ctl.setProperty("TargetTable", table);
    ctl.setProperty("Edit", true);
    ctl.setProperty("MappingObjectXML", xml);
    QMetaObject::invokeMethod(&ctl, "ShowControl");
    settle();
    if (visitDumps) {
        auto* tabs = ctl.findChild<QTabWidget*>(QStringLiteral("MainTab"));
        tabs->setCurrentIndex(1);
        settle();
        tabs->setCurrentIndex(0);
        settle();
    }
    const QString text = read(ctl);
    settle();
    return text;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        static QByteArray runtime = QDir::tempPath().toUtf8() + "/fuzz_control-runtime-XXXXXX";
        if (::mkdtemp(runtime.data()))
            qputenv("XDG_RUNTIME_DIR", runtime);
    }
    static QByteArray scratch = QDir::tempPath().toUtf8() + "/fuzz_control-XXXXXX";
    if (!::mkdtemp(scratch.data()))
        std::abort();
    g_scratch = QString::fromUtf8(scratch);
    qputenv("FIELDBRIDGE_TEMP", scratch);
    std::atexit([] { QDir(g_scratch).removeRecursively(); });

    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
        // The offscreen platform's notes about every window it shows.
        if (type == QtWarningMsg && message.contains(QLatin1String("This plugin does not support")))
            return;
        std::fprintf(stderr, "%s\n", qPrintable(message));
    });

    static int argc = 1;
    static char name[] = "fuzz_control";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
    g_answerer = new BoxAnswerer;

    // Qt fills its caches (fonts, styles, icons) on the first control; do
    // that here, so that leak checks of the first inputs do not count them.
    openAndRead(QStringLiteral("klmno001"), QStringLiteral("<klmno001><PREC>dump 1 x\n</PREC></klmno001>"),
                true);
    clearScratch();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = fbfuzz::inputText(data, size);
    const QString table = fbfuzz::rootElementName(text);
    g_answerer->reset(qHash(QByteArrayView(reinterpret_cast<const char*>(data), qsizetype(size)), 0));

    const QString first = openAndRead(table, text, true);
    clearScratch();
    const QString second = openAndRead(table, first, false);
    clearScratch();
    if (second != first)
        fbfuzz::differs("a fresh control hands back a different text than the one it was given", first,
                        second);
    return 0;
}
