#pragma once

// What the widget tests of the control share: a host window holding one
// ctlFieldbridge, the samples, the answerer of modal boxes, and small readers
// of item views and of the XML that the control hands back.

#include "ctlFieldbridge.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QMetaObject>
#include <QPointer>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QXmlStreamReader>

#include <deque>
#include <functional>
#include <memory>

namespace fbtest {

// ---------------------------------------------------------------------------
// Environment

// The offscreen platform warns about size hints for every window it shows;
// that line is noise, everything else is passed on.
inline void installMessageFilter()
{
    static QtMessageHandler previous = nullptr;
    previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (message.contains(QLatin1String("propagateSizeHints")))
            return;
        if (previous)
            previous(type, context, message);
    });
}

inline QString examplesDir()
{
    return qEnvironmentVariable("FIELDBRIDGE_EXAMPLES");
}

inline QString tempDir()
{
    QString dir = qEnvironmentVariable("FIELDBRIDGE_TEMP");
    if (!dir.isEmpty() && !dir.endsWith(u'/'))
        dir += u'/';
    return dir;
}

// A sample mapping object, as a host would read it from disk.
inline QString readSample(const QString& fileName)
{
    QFile file(examplesDir() + u'/' + fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

// ---------------------------------------------------------------------------
// Modal boxes

// What a person sees of a modal box when it appears.
struct ModalRecord {
    QString className;
    QString objectName;
    QString title;
    QString text;                                       // message boxes only
    QMessageBox::Icon icon = QMessageBox::NoIcon;       // message boxes only
    QMessageBox::StandardButtons buttons;               // message boxes only
};

// Answers modal boxes while the code under test waits in their exec(): a
// timer polls QApplication::activeModalWidget(); each new box is recorded
// and handed to the next queued answer. The answer runs from the event loop,
// not from the timer, so that an answer may itself wait for something. A box
// that nobody expected is recorded as unexpected and closed, so that a test
// fails instead of hanging.
class ModalAnswerer : public QObject {
public:
    using Answer = std::function<void(QWidget*)>;

    explicit ModalAnswerer(int intervalMs = 10)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
        m_timer.start(intervalMs);
    }

    void expect(Answer answer) { m_answers.push_back(std::move(answer)); }

    const QList<ModalRecord>& records() const { return m_records; }
    int count() const { return int(m_records.size()); }
    int pending() const { return int(m_answers.size()); }
    QStringList unexpected() const { return m_unexpected; }

    // Describes every box seen, for failure messages.
    QString describe() const
    {
        QStringList lines;
        for (const ModalRecord& r : m_records)
            lines.append(QStringLiteral("%1 '%2': %3").arg(r.className, r.title, r.text));
        return lines.join(QStringLiteral("; "));
    }

    // Presses a standard button of a message box (or closes another box).
    static Answer press(QMessageBox::StandardButton which)
    {
        return [which](QWidget* w) {
            if (auto* box = qobject_cast<QMessageBox*>(w)) {
                if (QAbstractButton* b = box->button(which)) {
                    QTest::mouseClick(b, Qt::LeftButton);
                    return;
                }
            }
            closeBox(w);
        };
    }

    // Clicks the child button of that objectName.
    static Answer clickChild(const QString& objectName)
    {
        return [objectName](QWidget* w) {
            if (auto* b = w->findChild<QAbstractButton*>(objectName))
                QTest::mouseClick(b, Qt::LeftButton);
            else
                closeBox(w);
        };
    }

    static void closeBox(QWidget* w)
    {
        if (auto* box = qobject_cast<QMessageBox*>(w)) {
            QAbstractButton* b = box->escapeButton();
            if (!b && !box->buttons().isEmpty())
                b = box->buttons().constFirst();
            if (b) {
                b->click();
                return;
            }
        }
        if (auto* dialog = qobject_cast<QDialog*>(w)) {
            dialog->reject();
            return;
        }
        w->close();
    }

private:
    void poll()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || modal == m_current)
            return;
        m_current = modal;

        ModalRecord r;
        r.className = QString::fromLatin1(modal->metaObject()->className());
        r.objectName = modal->objectName();
        r.title = modal->windowTitle();
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            r.text = box->text();
            r.icon = box->icon();
            r.buttons = box->standardButtons();
        }
        m_records.append(r);

        Answer answer;
        if (m_answers.empty()) {
            m_unexpected.append(r.className + QStringLiteral(": ") + (r.text.isEmpty() ? r.title : r.text));
            answer = [](QWidget* w) { closeBox(w); };
        } else {
            answer = std::move(m_answers.front());
            m_answers.pop_front();
        }
        QPointer<QWidget> target(modal);
        QMetaObject::invokeMethod(
            this,
            [target, answer] {
                if (target)
                    answer(target);
            },
            Qt::QueuedConnection);
    }

    QTimer m_timer;
    std::deque<Answer> m_answers;
    QPointer<QWidget> m_current;
    QList<ModalRecord> m_records;
    QStringList m_unexpected;
};

// ---------------------------------------------------------------------------
// The host

// A host window with the control placed on it, as an application embeds it.
class Host {
public:
    Host() : window(std::make_unique<QWidget>())
    {
        window->setObjectName(QStringLiteral("HostWindow"));
        window->resize(1000, 700);
        ctl = new ctlFieldbridge(window.get());
        ctl->move(0, 0);
        ctl->resize(960, 660);
    }

    // Shows the host window and makes it the active window: mnemonics and
    // focus changes need it. Also after a modal box, which leaves no window
    // active on the offscreen platform.
    bool activate()
    {
        window->show();
        window->activateWindow();
        return QTest::qWaitForWindowActive(window.get());
    }

    // The host's order of calls: Edit, TargetTable, MappingObjectXML, then
    // ShowControl, all by name.
    void load(const QString& targetTable, const QString& xml, bool edit)
    {
        ctl->setProperty("Edit", edit);
        ctl->setProperty("TargetTable", targetTable);
        ctl->setProperty("MappingObjectXML", xml);
        QMetaObject::invokeMethod(ctl, "ShowControl");
    }

    bool loadSample(const QString& fileName, const QString& targetTable, bool edit)
    {
        const QString xml = readSample(fileName);
        if (xml.isEmpty())
            return false;
        load(targetTable, xml, edit);
        return true;
    }

    QString readXml() const { return ctl->property("MappingObjectXML").toString(); }

    template <typename T = QWidget>
    T* find(const QString& objectName) const
    {
        return ctl->findChild<T*>(objectName);
    }

    QTabWidget* tabs() const { return find<QTabWidget>(QStringLiteral("MainTab")); }

    // Clicks a tab of MainTab as a person does.
    void clickTab(int index) const
    {
        QTabBar* bar = tabs()->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(index).center());
    }

    std::unique_ptr<QWidget> window;
    ctlFieldbridge* ctl = nullptr;
};

// ---------------------------------------------------------------------------
// Reading widgets

inline QStringList columnTexts(const QAbstractItemView* view, int column = 0)
{
    QStringList out;
    const QAbstractItemModel* m = view->model();
    for (int r = 0; r < m->rowCount(); ++r)
        out.append(m->index(r, column).data(Qt::DisplayRole).toString());
    return out;
}

inline QStringList rowTexts(const QAbstractItemView* view, int row)
{
    QStringList out;
    const QAbstractItemModel* m = view->model();
    for (int c = 0; c < m->columnCount(); ++c)
        out.append(m->index(row, c).data(Qt::DisplayRole).toString());
    return out;
}

inline QStringList headerTexts(const QAbstractItemView* view)
{
    QStringList out;
    const QAbstractItemModel* m = view->model();
    for (int c = 0; c < m->columnCount(); ++c)
        out.append(m->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString());
    return out;
}

inline QStringList comboTexts(const QComboBox* combo)
{
    QStringList out;
    for (int i = 0; i < combo->count(); ++i)
        out.append(combo->itemText(i));
    return out;
}

inline QString plainText(const QWidget* box)
{
    return box->property("plainText").toString();
}

inline bool isReadOnly(const QWidget* box)
{
    return box->property("readOnly").toBool();
}

// The widget's own enabled flag, whatever its frame's state.
inline bool ownEnabled(const QWidget* w)
{
    return w->parentWidget() ? w->isEnabledTo(w->parentWidget()) : w->isEnabled();
}

// True when w is the box or one of its inner parts.
inline bool isWithin(const QWidget* w, const QWidget* box)
{
    return w && box && (w == box || box->isAncestorOf(w));
}

inline QString focusName()
{
    QWidget* f = QApplication::focusWidget();
    return f ? QString::fromLatin1(f->metaObject()->className()) + u' ' + f->objectName() : QStringLiteral("(none)");
}

// Clicks into a widget as a person does: into the viewport of a list or an
// editor, onto a button or a combo box itself.
inline void clickInto(QWidget* w, QPoint at = QPoint(6, 6))
{
    QWidget* target = w;
    if (auto* area = qobject_cast<QAbstractScrollArea*>(w))
        target = area->viewport();
    QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, at);
}

// Sends a key to whatever has the focus, as the keyboard does.
inline bool keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWidget* f = QApplication::focusWidget();
    if (!f)
        return false;
    QTest::keyClick(f, key, modifiers);
    return true;
}

// ---------------------------------------------------------------------------
// Reading the XML that the control hands back

struct XmlElement {
    QString name;
    QList<QPair<QString, QString>> attributes;
    QString text; // the element's own text, line breaks as the parser gives them
    QList<XmlElement> children;

    bool isNull() const { return name.isEmpty(); }
    bool hasAttribute(const QString& n) const
    {
        for (const auto& a : attributes)
            if (a.first == n)
                return true;
        return false;
    }
    QString attribute(const QString& n) const
    {
        for (const auto& a : attributes)
            if (a.first == n)
                return a.second;
        return QString();
    }
    QList<XmlElement> all(const QString& n) const
    {
        QList<XmlElement> out;
        for (const XmlElement& c : children)
            if (c.name == n)
                out.append(c);
        return out;
    }
    XmlElement first(const QString& n) const
    {
        for (const XmlElement& c : children)
            if (c.name == n)
                return c;
        return XmlElement();
    }
    // The child whose attribute has that value.
    XmlElement with(const QString& n, const QString& attr, const QString& value) const
    {
        for (const XmlElement& c : children)
            if (c.name == n && c.attribute(attr) == value)
                return c;
        return XmlElement();
    }
};

namespace detail {
inline XmlElement readElement(QXmlStreamReader& reader)
{
    XmlElement e;
    e.name = reader.name().toString();
    for (const QXmlStreamAttribute& a : reader.attributes())
        e.attributes.append({a.name().toString(), a.value().toString()});
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement())
            e.children.append(readElement(reader));
        else if (reader.isCharacters())
            e.text += reader.text();
        else if (reader.isEndElement())
            break;
    }
    return e;
}
} // namespace detail

// The root element of the text; a null element when it is not well-formed.
inline XmlElement parseXml(const QString& text)
{
    QXmlStreamReader reader(text);
    XmlElement root;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            root = detail::readElement(reader);
            break;
        }
    }
    if (reader.hasError())
        return XmlElement();
    return root;
}

// Line breaks as a person reads them: CR LF and lone CR as "\n".
inline QString lines(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

} // namespace fbtest
