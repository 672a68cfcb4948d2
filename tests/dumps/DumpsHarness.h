#pragma once

// What the tests of the "Define Dumps" tab share: a host window that embeds
// one ctlFieldbridge and drives it through its public names only, an answerer
// of modal boxes, builders of small mapping objects, and a reader of the XML
// that the control hands back.

#include "ctlFieldbridge.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QMetaObject>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>
#include <QXmlStreamReader>

#include <deque>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace dumpstest {

// ---------------------------------------------------------------------------
// Environment

// The offscreen platform warns about size hints for every window it shows;
// that line is dropped, everything else is passed on.
inline void installMessageFilter()
{
    static QtMessageHandler previous = nullptr;
    previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
        // The offscreen platform also cannot raise windows or grab the
        // keyboard for a selector's popup list.
        if (message.contains(QLatin1String("propagateSizeHints")) ||
            message.contains(QLatin1String("This plugin does not support")))
            return;
        if (previous)
            previous(type, context, message);
    });
}

inline QString readSample(const QString& fileName)
{
    QFile file(qEnvironmentVariable("FIELDBRIDGE_EXAMPLES") + u'/' + fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

// ---------------------------------------------------------------------------
// The document handed back

// One element of the returned document: its name, attributes, own text and
// child elements, read with QXmlStreamReader.
struct XmlElement {
    QString name;
    QList<QPair<QString, QString>> attributes;
    QString text;
    QList<XmlElement> children;

    bool hasAttribute(const QString& a) const
    {
        for (const auto& p : attributes)
            if (p.first == a)
                return true;
        return false;
    }
    QString attribute(const QString& a) const
    {
        for (const auto& p : attributes)
            if (p.first == a)
                return p.second;
        return QString();
    }
    // Pointers into a temporary would dangle: keep the document in a variable.
    const XmlElement* child(const QString& n) const&& = delete;
    const XmlElement* dump(int number) const&& = delete;
    const XmlElement* child(const QString& n) const&
    {
        for (const XmlElement& c : children)
            if (c.name == n)
                return &c;
        return nullptr;
    }
    QList<const XmlElement*> all(const QString& n) const
    {
        QList<const XmlElement*> out;
        for (const XmlElement& c : children)
            if (c.name == n)
                out.append(&c);
        return out;
    }
    // The DUMP element with this No, or null.
    const XmlElement* dump(int number) const&
    {
        for (const XmlElement* d : all(QStringLiteral("DUMP")))
            if (d->attribute(QStringLiteral("No")) == QString::number(number))
                return d;
        return nullptr;
    }
    QStringList childNames() const
    {
        QStringList out;
        for (const XmlElement& c : children)
            out.append(c.name);
        return out;
    }
};

// Parses the document; the root element comes back (an empty name when the
// text is not well-formed). Line ends inside texts read as "\n".
inline XmlElement parseXml(const QString& text)
{
    QXmlStreamReader reader(text);
    XmlElement root;
    QList<XmlElement*> stack;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            XmlElement e;
            e.name = reader.name().toString();
            for (const QXmlStreamAttribute& a : reader.attributes())
                e.attributes.append({a.name().toString(), a.value().toString()});
            if (stack.isEmpty()) {
                root = e;
                stack.append(&root);
            } else {
                stack.last()->children.append(e);
                stack.append(&stack.last()->children.last());
            }
        } else if (reader.isEndElement()) {
            stack.removeLast();
        } else if (reader.isCharacters() && !stack.isEmpty()) {
            stack.last()->text += reader.text().toString();
        }
    }
    if (reader.hasError())
        return XmlElement();
    // Whitespace between child elements is layout, not text.
    const std::function<void(XmlElement&)> tidy = [&tidy](XmlElement& e) {
        if (!e.children.isEmpty() && e.text.trimmed().isEmpty())
            e.text.clear();
        e.text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        for (XmlElement& c : e.children)
            tidy(c);
    };
    tidy(root);
    return root;
}

// ---------------------------------------------------------------------------
// Small mapping objects

struct SourceTable {
    QString name;   // eight characters, lower case as listed in SRCTBL
    QString fields; // field elements
};

// A single-target mapping object named root: the target table's fields, the
// source tables in SRCTBL order (the first one is migrated), the DUMP
// elements, and a precondition that references the given dumps.
inline QString mappingObject(const QString& root, const QString& targetFields, const QList<SourceTable>& sources,
                             const QString& dumps, const QString& dumpReferences)
{
    QStringList names;
    QString srctab;
    for (const SourceTable& t : sources) {
        names.append(t.name);
        srctab += u'<' + t.name.toUpper() + u'>' + t.fields + QStringLiteral("</") + t.name.toUpper() + u'>';
    }
    return u'<' + root + u'>' + QStringLiteral("<SRCTBL>") + names.join(u',') + QStringLiteral("</SRCTBL>") +
           QStringLiteral("<PREC TEXT=\"\">migrate ") + names.value(0) + u'\n' + dumpReferences +
           QStringLiteral("\nend of precondition</PREC>") + dumps + QStringLiteral("<TARTAB><") + root.toUpper() +
           u'>' + targetFields + QStringLiteral("</") + root.toUpper() + QStringLiteral("></TARTAB><SRCTAB>") +
           srctab + QStringLiteral("</SRCTAB></") + root + u'>';
}

// The target table RULES001 with ten fields; its grid rows are
//   0 rules001.custno   (L)       5 rules001.note(1) (S)
//   1 rules001.name     (S)       6 rules001.note(2) (S)
//   2 rules001.city     (S)       7 rules001.remark  (U, Text)
//   3 rules001.born     (T, Date) 8 rules001.lang    (M, Multi-Byte String)
//   4 rules001.stamp    (K, UTC)  9 rules001.zip     (S)
inline QString rulesTargetFields()
{
    return QStringLiteral(R"(
<CUSTNO No="1" FNo="1" TYPE="L" DIGB="8"/>
<NAME No="2" FNo="2" TYPE="S" LENG="30"/>
<CITY No="3" FNo="3" TYPE="S" LENG="30"/>
<BORN No="4" FNo="4" TYPE="T"/>
<STAMP No="5" FNo="5" TYPE="K"/>
<NOTE__1 No="6" FNo="6" TYPE="S" LENG="20" DEP="2"/>
<NOTE__2 No="7" FNo="6" TYPE="S" LENG="20" DEP="2"/>
<REMARK No="8" FNo="7" TYPE="U"/>
<LANG No="9" FNo="8" TYPE="M" LENG="10"/>
<ZIP No="10" FNo="9" TYPE="S" LENG="10"/>
)");
}

// Source list rows of the rules document, in list order:
//   0 srcaa001.custno (L)   4 srcaa001.note(2) (S)    8 srcbb002.city  (S)
//   1 srcaa001.name   (S)   5 srcaa001.memo    (U)    9 srcbb002.stamp (K)
//   2 srcaa001.born   (T)   6 srcaa001.zip     (S)   10 srcbb002.note  (S)
//   3 srcaa001.created(T)   7 srcbb002.custno  (L)
inline QList<SourceTable> rulesSourceTables()
{
    return {{QStringLiteral("srcaa001"), QStringLiteral(R"(
<CUSTNO No="1" FNo="1" TYPE="L" DIGB="8"/>
<NAME No="2" FNo="2" TYPE="S" LENG="30"/>
<BORN No="3" FNo="3" TYPE="T"/>
<CREATED No="4" FNo="4" TYPE="T"/>
<NOTE__2 No="5" FNo="5" TYPE="S" LENG="20" DEP="2"/>
<MEMO No="6" FNo="6" TYPE="U"/>
<ZIP No="7" FNo="7" TYPE="S" LENG="10"/>
)")},
            {QStringLiteral("srcbb002"), QStringLiteral(R"(
<CUSTNO No="1" FNo="1" TYPE="L" DIGB="8"/>
<CITY No="2" FNo="2" TYPE="S" LENG="30"/>
<STAMP No="3" FNo="3" TYPE="K"/>
<NOTE No="4" FNo="4" TYPE="S" LENG="20"/>
)")}};
}

// Dump 1 "First" holds three rules (ZIP stands first in the element but
// belongs to the last grid row), dump 2 "Second" two, one of them of two
// lines; dump 3 "Third" has no DUMP element in the text.
inline QString rulesDumps()
{
    return QStringLiteral(R"(
<DUMP No="1" TXT="First">
<ZIP No="10" TYPE="0" TEXT="">srcaa001.zip</ZIP>
<CUSTNO No="1" TYPE="0" TEXT="">srcaa001.custno</CUSTNO>
<CITY No="3" TYPE="0" TEXT="">srcbb002.city</CITY>
</DUMP>
<DUMP No="2" TXT="Second">
<NAME No="2" TYPE="0" TEXT="">srcaa001.name</NAME>
<REMARK No="8" TYPE="1" TEXT="">line one
line two</REMARK>
</DUMP>
)");
}

inline QString rulesDocument(const QString& dumps = rulesDumps())
{
    return mappingObject(QStringLiteral("rules001"), rulesTargetFields(), rulesSourceTables(), dumps,
                         QStringLiteral("dump 1 First\ndump 2 Second\ndump 3 Third"));
}

// ---------------------------------------------------------------------------
// Modal boxes

// What a person sees of a modal box when it appears.
struct ModalRecord {
    QString className;
    QString title;
    QString text; // message boxes: the text as shown ("\n" line breaks)
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QStringList entries; // FrmTxtDoc: the entries of its table selector
    QString selected;    // FrmTxtDoc: the entry selected when it opened
};

// Answers modal boxes while the control waits in their exec(): a timer polls
// QApplication::activeModalWidget(), records each new box and hands it to the
// next queued answer. A box nobody expected is recorded and closed, so that a
// test fails instead of hanging.
class ModalAnswerer : public QObject {
public:
    using Answer = std::function<void(QWidget*)>;

    ModalAnswerer()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
        m_timer.start(10);
    }

    void expect(Answer answer) { m_answers.push_back(std::move(answer)); }
    const QList<ModalRecord>& records() const { return m_records; }
    int count() const { return int(m_records.size()); }
    int pending() const { return int(m_answers.size()); }
    int unexpected() const { return m_unexpected; }
    void clear()
    {
        m_records.clear();
        m_answers.clear();
        m_unexpected = 0;
    }

    // Presses a standard button of a message box.
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

    // Chooses a table in FrmTxtDoc (none: keep the preset) and presses OK or Cancel.
    static Answer chooseTable(const QString& table, bool ok = true)
    {
        return [table, ok](QWidget* w) {
            auto* combo = w->findChild<QComboBox*>(QStringLiteral("CmbTargetTable"));
            if (combo && !table.isEmpty())
                combo->setCurrentIndex(combo->findText(table));
            auto* button = w->findChild<QAbstractButton*>(ok ? QStringLiteral("CmdOk") : QStringLiteral("CmdCancel"));
            if (button)
                button->click();
            else
                w->close();
        };
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
        r.title = modal->windowTitle();
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            r.text = box->text();
            r.icon = box->icon();
            r.buttons = box->standardButtons();
        } else if (auto* combo = modal->findChild<QComboBox*>(QStringLiteral("CmbTargetTable"))) {
            for (int i = 0; i < combo->count(); ++i)
                r.entries.append(combo->itemText(i));
            r.selected = combo->currentText();
        }
        m_records.append(r);
        if (m_answers.empty()) {
            ++m_unexpected;
            modal->close();
            return;
        }
        Answer answer = std::move(m_answers.front());
        m_answers.pop_front();
        // Answer from the event loop, once the box is fully shown.
        QTimer::singleShot(0, modal, [answer, modal] { answer(modal); });
    }

    QTimer m_timer;
    std::deque<Answer> m_answers;
    QPointer<QWidget> m_current;
    QList<ModalRecord> m_records;
    int m_unexpected = 0;
};

// ---------------------------------------------------------------------------
// The host

// A host window with the control in it. Everything goes through the
// control's property, method and signal names and the objectNames of its
// screen controls.
class Host {
public:
    Host()
    {
        window.setObjectName(QStringLiteral("HostWindow"));
        auto* layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        control = new ctlFieldbridge(&window);
        layout->addWidget(control);
        window.resize(1200, 860);
    }

    // The host's order: Edit, TargetTable, MappingObjectXML, ShowControl;
    // then the window is shown and activated.
    bool open(const QString& root, const QString& xml, bool edit = true)
    {
        control->setProperty("Edit", edit);
        control->setProperty("TargetTable", root);
        control->setProperty("MappingObjectXML", xml);
        QMetaObject::invokeMethod(control, "ShowControl");
        window.show();
        return activate();
    }

    bool activate()
    {
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window);
    }

    // A click on the tab "Define Dumps".
    void enterDefineDumps()
    {
        QTabBar* bar = control->findChild<QTabWidget*>(QStringLiteral("MainTab"))->findChild<QTabBar*>();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(1).center());
    }

    void enterMappingObject()
    {
        QTabBar* bar = control->findChild<QTabWidget*>(QStringLiteral("MainTab"))->findChild<QTabBar*>();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(0).center());
    }

    template <typename W>
    W* find(const char* name) const
    {
        return control->findChild<W*>(QString::fromLatin1(name));
    }

    QComboBox* cmbDump() const { return find<QComboBox>("CmbDump"); }
    QComboBox* cmbTargetTable() const { return find<QComboBox>("CmbTargetTable"); }
    QTreeView* sourceList() const { return find<QTreeView>("lstSourceFields"); }
    QTreeView* targetList() const { return find<QTreeView>("lstTargetFields"); }
    QTableView* grid() const { return find<QTableView>("RulesGrid"); }
    QPlainTextEdit* overlay() const { return find<QPlainTextEdit>("txtgrdline"); }
    QGroupBox* details() const { return find<QGroupBox>("Details"); }
    QAbstractButton* button(const char* name) const { return find<QAbstractButton>(name); }

    QString xml() { return control->property("MappingObjectXML").toString(); }
    XmlElement document() { return parseXml(xml()); }

    // Cell texts of an item view, by the view's model.
    static QString cell(const QAbstractItemView* view, int row, int column)
    {
        return view->model()->data(view->model()->index(row, column)).toString();
    }
    QString rule(int row) const { return cell(grid(), row, 1); }
    QStringList rules() const
    {
        QStringList out;
        for (int r = 0; r < grid()->model()->rowCount(); ++r)
            out.append(rule(r));
        return out;
    }
    static QStringList column(const QAbstractItemView* view, int c)
    {
        QStringList out;
        for (int r = 0; r < view->model()->rowCount(); ++r)
            out.append(cell(view, r, c));
        return out;
    }

    // A click in the middle of a cell of the grid or of a list row, scrolled
    // into view first as a person would.
    static void clickCell(QAbstractItemView* view, int row, int c, Qt::KeyboardModifiers mods = {})
    {
        const QModelIndex index = view->model()->index(row, c);
        view->scrollTo(index);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, mods, view->visualRect(index).center());
    }
    static void doubleClickCell(QAbstractItemView* view, int row, int c)
    {
        const QModelIndex index = view->model()->index(row, c);
        view->scrollTo(index);
        const QPoint at = view->visualRect(index).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    }

    // A click on the check box of a source-list row.
    static void clickCheckBox(QTreeView* view, int row)
    {
        struct Options : QStyledItemDelegate {
            using QStyledItemDelegate::initStyleOption;
        };
        const QModelIndex index = view->model()->index(row, 0);
        view->scrollTo(index);
        QStyleOptionViewItem option;
        option.initFrom(view);
        option.widget = view;
        option.rect = view->visualRect(index);
        Options().initStyleOption(&option, index);
        const QRect box = view->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, box.center());
    }
    static bool ticked(const QAbstractItemView* view, int row)
    {
        return view->model()->data(view->model()->index(row, 0), Qt::CheckStateRole).toInt() == Qt::Checked;
    }

    // The row of a list whose "Field Name" column (by the list's own column
    // number) shows the name; -1 when none does.
    static int rowOf(const QAbstractItemView* view, int nameColumn, const QString& name)
    {
        for (int r = 0; r < view->model()->rowCount(); ++r)
            if (cell(view, r, nameColumn) == name)
                return r;
        return -1;
    }

    // A click on a column header of a list.
    static void clickHeader(QTreeView* view, int c)
    {
        QHeaderView* header = view->header();
        const QPoint at(header->sectionViewportPosition(c) + header->sectionSize(c) / 2, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
    }

    // Chooses a dump in the selector as a person does with the keyboard:
    // Alt+U into the selector, F4 opens its list, arrows move to the entry,
    // Enter chooses it.
    void chooseDump(int number)
    {
        QComboBox* cmb = cmbDump();
        const int index = cmb->findData(number);
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : control, Qt::Key_U,
                        Qt::AltModifier);
        QTest::keyClick(cmb, Qt::Key_F4);
        QAbstractItemView* list = cmb->view();
        for (int i = list->currentIndex().row(); i < index; ++i)
            QTest::keyClick(list, Qt::Key_Down);
        for (int i = list->currentIndex().row(); i > index; --i)
            QTest::keyClick(list, Qt::Key_Up);
        QTest::keyClick(list, Qt::Key_Return);
    }

    // Picks an entry of a selector: a click opens its list, arrows move to
    // the entry, Enter takes it.
    static void pickInCombo(QComboBox* combo, int index)
    {
        QTest::mouseClick(combo, Qt::LeftButton);
        QAbstractItemView* list = combo->view();
        for (int i = list->currentIndex().row(); i < index; ++i)
            QTest::keyClick(list, Qt::Key_Down);
        for (int i = list->currentIndex().row(); i > index; --i)
            QTest::keyClick(list, Qt::Key_Up);
        QTest::keyClick(list, Qt::Key_Return);
    }

    // Records a documentation number for a field's rule through the host
    // method; when the field has no rule element yet, this creates one that
    // carries only TEXT (no No). Tests use it to see whether the control has
    // already written the field's rule element.
    void setRuleTextNumber(int dump, const QString& field, int number)
    {
        QMetaObject::invokeMethod(control, "SetTextNumber", Q_ARG(QString, QStringLiteral("D")), Q_ARG(int, number),
                                  Q_ARG(QString, QString::number(dump)), Q_ARG(QString, field));
    }

    QWidget window;
    ctlFieldbridge* control = nullptr;
    ModalAnswerer modals;
};

} // namespace dumpstest
