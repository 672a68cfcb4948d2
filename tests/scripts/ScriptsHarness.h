#pragma once

// What the tests of the "Mapping Object" tab share: a host that shows a
// mapping object in one ctlFieldbridge, a person's hands (clicks, key presses,
// typing into a script box), an answerer of modal boxes that records what each
// box said, and a small reader of the XML that the control hands back.

#include "ctlFieldbridge.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QXmlStreamReader>
#include <deque>
#include <functional>
#include <memory>

namespace scripts_test {

// ---------------------------------------------------------------------------
// Environment

// The offscreen platform warns about size hints for every window it shows,
// and about raising the editors' completion popups; those lines are noise,
// everything else is passed on.
inline void installMessageFilter()
{
    static QtMessageHandler previous = nullptr;
    previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
            if (message.contains(QLatin1String("propagateSizeHints")) ||
                message.contains(QLatin1String("This plugin does not support raise()")))
                return;
            if (previous) previous(type, context, message);
        });
}

inline QString readExample(const QString& fileName)
{
    QFile file(qEnvironmentVariable("FIELDBRIDGE_EXAMPLES") + u'/' + fileName);
    if (!file.open(QIODevice::ReadOnly)) return QString();
    return QString::fromUtf8(file.readAll());
}

// ---------------------------------------------------------------------------
// Purpose-made mapping objects. The root is klmno001, a single-target
// document; the caller gives the sections between SRCTBL and TARTAB in their
// XML form (entities written by hand), and the source tables that have field
// definitions under SRCTAB.

inline QString mappingObject(const QString& sections, const QStringList& definedSourceTables = {})
{
    QString srctab;
    for (const QString& table : definedSourceTables)
        srctab += u'<' + table + QStringLiteral("><CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGA=\"8\"/></") +
                  table + u'>';
    return QStringLiteral("<klmno001>") + sections +
           QStringLiteral(
               "<TARTAB><KLMNO001><CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGA=\"8\" DSCA=\"Customer\"/>"
               "</KLMNO001></TARTAB><SRCTAB>") +
           srctab + QStringLiteral("</SRCTAB></klmno001>");
}

// ---------------------------------------------------------------------------
// The XML handed back, as a small tree.

struct XmlElement {
    QString name;
    QXmlStreamAttributes attributes;
    QString text; // the element's own character data
    QList<XmlElement> children;

    bool isNull() const { return name.isEmpty(); }
    bool hasAttribute(const QString& attribute) const { return attributes.hasAttribute(attribute); }
    QString attribute(const QString& attribute) const { return attributes.value(attribute).toString(); }

    // The first child of that name, optionally with an attribute of that value.
    XmlElement child(const QString& childName, const QString& attribute = QString(),
                     const QString& value = QString()) const
    {
        for (const XmlElement& c : children)
            if (c.name == childName && (attribute.isEmpty() || c.attribute(attribute) == value)) return c;
        return XmlElement();
    }

    QList<XmlElement> all(const QString& childName) const
    {
        QList<XmlElement> found;
        for (const XmlElement& c : children)
            if (c.name == childName) found.append(c);
        return found;
    }
};

inline XmlElement readElement(QXmlStreamReader& reader)
{
    XmlElement e;
    e.name = reader.name().toString();
    e.attributes = reader.attributes();
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement) break;
        if (token == QXmlStreamReader::StartElement)
            e.children.append(readElement(reader));
        else if (token == QXmlStreamReader::Characters)
            e.text += reader.text();
    }
    return e;
}

// The document element of a mapping object text; a null element when the text
// is not well-formed.
inline XmlElement parseXml(const QString& text)
{
    QXmlStreamReader reader(text);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement) {
            XmlElement root = readElement(reader);
            return reader.hasError() ? XmlElement() : root;
        }
    }
    return XmlElement();
}

// Line breaks as the XML parser hands them over: one line feed each.
inline QString lf(const QString& text)
{
    QString s = text;
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return s;
}

// ---------------------------------------------------------------------------
// Modal boxes, answered as a person answers them.

struct SeenBox {
    QString kind;  // "message", "FrmTxtDoc", or the class name of anything else
    QString title; // window title
    QString text;  // the message, or the text the documentation dialog shows
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    bool textReadOnly = false; // FrmTxtDoc: TxtDoc locked
    bool okEnabled = false;    // FrmTxtDoc: CmdOk enabled
};

// Polls QApplication::activeModalWidget() while the control sits in a box's
// exec(), records what the box says and hands it to the next queued answer.
// With no answer queued, a message box gets its OK (or its only) button and
// any dialog is cancelled, so that a test fails instead of hanging.
class BoxAnswerer : public QObject {
public:
    using Answer = std::function<void(QWidget*)>;

    BoxAnswerer()
    {
        connect(&m_timer, &QTimer::timeout, this, &BoxAnswerer::poll);
        m_timer.start(15);
    }

    void queue(Answer answer) { m_answers.push_back(std::move(answer)); }
    int pending() const { return int(m_answers.size()); }
    const QList<SeenBox>& seen() const { return m_seen; }
    void clear() { m_seen.clear(); }

    QStringList texts() const
    {
        QStringList t;
        for (const SeenBox& b : m_seen)
            t.append(b.text);
        return t;
    }

    // Answers a message box by the button of that kind.
    static Answer press(QMessageBox::StandardButton which)
    {
        return [which](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            if (box && box->button(which))
                box->button(which)->click();
            else
                w->close();
        };
    }

    // Answers the documentation dialog: optionally types a text over the one
    // shown (as a person does: select all, type), then clicks CmdOk or
    // CmdCancel.
    static Answer documentation(bool ok, const QString& typed = QString(), bool type = false)
    {
        return [ok, typed, type](QWidget* w) {
            if (type) {
                auto* edit = w->findChild<QPlainTextEdit*>(QStringLiteral("TxtDoc"));
                if (edit) {
                    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
                    QTest::keyClicks(edit, typed);
                }
            }
            auto* button =
                w->findChild<QAbstractButton*>(ok ? QStringLiteral("CmdOk") : QStringLiteral("CmdCancel"));
            if (button) QTest::mouseClick(button, Qt::LeftButton);
            if (w->isVisible() && qobject_cast<QDialog*>(w))
                // A disabled CmdOk cannot be clicked: the person cancels.
                if (auto* cancel = w->findChild<QAbstractButton*>(QStringLiteral("CmdCancel")))
                    QTest::mouseClick(cancel, Qt::LeftButton);
        };
    }

private:
    void poll()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || modal == m_current) return;
        m_current = modal;
        m_seen.append(describe(modal));
        if (m_answers.empty()) {
            defaultAnswer(modal);
            return;
        }
        Answer answer = std::move(m_answers.front());
        m_answers.pop_front();
        answer(modal);
    }

    static SeenBox describe(QWidget* modal)
    {
        SeenBox b;
        b.title = modal->windowTitle();
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            b.kind = QStringLiteral("message");
            b.text = box->text();
            b.icon = box->icon();
            b.buttons = box->standardButtons();
        } else if (modal->objectName() == QLatin1String("FrmTxtDoc")) {
            b.kind = QStringLiteral("FrmTxtDoc");
            if (auto* edit = modal->findChild<QPlainTextEdit*>(QStringLiteral("TxtDoc"))) {
                b.text = edit->toPlainText();
                b.textReadOnly = edit->isReadOnly();
            }
            if (auto* ok = modal->findChild<QAbstractButton*>(QStringLiteral("CmdOk")))
                b.okEnabled = ok->isEnabled();
        } else {
            b.kind = QString::fromUtf8(modal->metaObject()->className());
        }
        return b;
    }

    static void defaultAnswer(QWidget* modal)
    {
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            const QList<QAbstractButton*> buttons = box->buttons();
            if (QAbstractButton* ok = box->button(QMessageBox::Ok))
                ok->click();
            else if (buttons.size() == 1)
                buttons.first()->click();
            else
                box->close();
            return;
        }
        if (auto* cancel = modal->findChild<QAbstractButton*>(QStringLiteral("CmdCancel"))) {
            cancel->click();
            return;
        }
        modal->close();
    }

    QTimer m_timer;
    std::deque<Answer> m_answers;
    QPointer<QWidget> m_current;
    QList<SeenBox> m_seen;
};

// ---------------------------------------------------------------------------
// The host: one control as a top-level window, shown the way a host shows a
// document, and a person's hands on it.

class Host {
public:
    // Shows the document: Edit, TargetTable, MappingObjectXML, ShowControl,
    // then the window is shown and made active.
    bool show(const QString& xml, bool edit, const QString& table = QStringLiteral("klmno001"))
    {
        control = std::make_unique<ctlFieldbridge>();
        control->setProperty("Edit", edit);
        control->setProperty("TargetTable", table);
        control->setProperty("MappingObjectXML", xml);
        if (!QMetaObject::invokeMethod(control.get(), "ShowControl")) return false;
        control->resize(1100, 720);
        control->show();
        return activate();
    }

    // Under offscreen no window is active after a modal box closes; focus
    // moves (and the stores that hang on them) need it active again.
    bool activate()
    {
        control->activateWindow();
        return QTest::qWaitForWindowActive(control.get());
    }

    template <typename T = QWidget> T* widget(const QString& name) const
    {
        return control->findChild<T*>(name);
    }

    QAbstractItemView* view(const QString& name) const { return widget<QAbstractItemView>(name); }
    QWidget* editor(const QString& name) const { return widget<QWidget>(name); }
    QAbstractButton* button(const QString& name) const { return widget<QAbstractButton>(name); }
    QTabWidget* tabs() const { return widget<QTabWidget>(QStringLiteral("MainTab")); }
    QString labelText(const QString& name) const
    {
        auto* label = widget<QLabel>(name);
        return label ? label->text() : QStringLiteral("<no label>");
    }

    QString text(const QString& editorName) const
    {
        QWidget* e = editor(editorName);
        return e ? e->property("plainText").toString() : QStringLiteral("<no editor>");
    }

    bool readOnly(const QString& editorName) const
    {
        QWidget* e = editor(editorName);
        return e && e->property("readOnly").toBool();
    }

    // Texts of the rows of a list view (column 0).
    QStringList rows(const QString& viewName) const
    {
        QStringList r;
        QAbstractItemView* v = view(viewName);
        if (!v) return {QStringLiteral("<no view>")};
        for (int i = 0; i < v->model()->rowCount(); ++i)
            r.append(v->model()->index(i, 0).data().toString());
        return r;
    }

    // A click on a row of a list view, at the centre of its cell.
    void clickRow(const QString& viewName, int row) const
    {
        QAbstractItemView* v = view(viewName);
        const QRect cell = v->visualRect(v->model()->index(row, 0));
        QTest::mouseClick(v->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    }

    // A click on the empty part of a list view below its rows: the focus goes
    // to the list and nothing is chosen.
    void clickEmptyPartOf(const QString& viewName) const
    {
        QAbstractItemView* v = view(viewName);
        QTest::mouseClick(v->viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(v->viewport()->width() / 2, v->viewport()->height() - 4));
    }

    void click(const QString& buttonName) const { QTest::mouseClick(button(buttonName), Qt::LeftButton); }

    // A click into a script box.
    void clickInto(const QString& editorName) const
    {
        auto* area = qobject_cast<QAbstractScrollArea*>(editor(editorName));
        QWidget* target = area ? area->viewport() : editor(editorName);
        QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, QPoint(target->width() / 2, 6));
    }

    // Types a text into the focused script box: line feeds as Return, tabs as
    // Tab, everything else as characters. The boxes offer words of the text
    // in a completion list, which would take Return or Tab as the choice of a
    // word: before those keys the list is closed with Escape, as a person
    // who wants the line break closes it.
    static void type(QWidget* target, const QString& text)
    {
        QString run;
        const auto flush = [&] {
            if (!run.isEmpty()) QTest::keyClicks(target, run);
            run.clear();
        };
        for (const QChar c : text) {
            if (c == u'\n') {
                flush();
                QTest::keyClick(target, Qt::Key_Escape);
                QTest::keyClick(target, Qt::Key_Return);
            } else if (c == u'\t') {
                flush();
                QTest::keyClick(target, Qt::Key_Escape);
                QTest::keyClick(target, Qt::Key_Tab);
            } else {
                run += c;
            }
        }
        flush();
    }

    // A person replacing a script box's text: click into it, select all,
    // type the new text (or press Delete for an empty one).
    void replaceText(const QString& editorName, const QString& text) const
    {
        clickInto(editorName);
        QWidget* e = editor(editorName);
        QTest::keyClick(e, Qt::Key_A, Qt::ControlModifier);
        if (text.isEmpty())
            QTest::keyClick(e, Qt::Key_Delete);
        else
            type(e, text);
    }

    // Whether the keyboard focus is in that widget (or a part of it).
    static bool hasFocus(QWidget* w)
    {
        QWidget* focus = QApplication::focusWidget();
        return w && focus && (focus == w || w->isAncestorOf(focus));
    }
    bool focusIn(const QString& name) const { return hasFocus(widget<QWidget>(name)); }

    // Reads the document back as a host does.
    XmlElement read() const { return parseXml(control->property("MappingObjectXML").toString()); }

    std::unique_ptr<ctlFieldbridge> control;
};

} // namespace scripts_test
