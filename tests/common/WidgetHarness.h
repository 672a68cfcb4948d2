#pragma once

// What every widget test of the control shares: a host window holding one
// ctlFieldbridge, an answerer of modal boxes, a reader of the XML that the
// control hands back, a person's hands and builders of small mapping objects.

#include "ctlFieldbridge.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QMessageBox>
#include <QPointer>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <deque>
#include <functional>
#include <memory>

namespace fbtest {

using namespace Qt::StringLiterals;

// Drops the lines the offscreen platform prints for every window it shows.
void installMessageFilter();
QString readSample(const QString& fileName); // from $FIELDBRIDGE_EXAMPLES
inline QString tempDir()                     // $FIELDBRIDGE_TEMP, ending in '/'
{
    return qEnvironmentVariable("FIELDBRIDGE_TEMP") + u'/';
}

// The XML handed back, as a small tree.
struct XmlElement {
    QString name;
    QList<QPair<QString, QString>> attributes;
    QString text; // own text; empty when only layout between children
    QList<XmlElement> children;

    bool isNull() const { return name.isEmpty(); }
    QString attribute(const QString& attribute) const;
    // The first child of that name (with that attribute value, when given).
    XmlElement child(const QString& childName, const QString& attribute = {},
                     const QString& value = {}) const;
    XmlElement dump(int number) const { return child(u"DUMP"_s, u"No"_s, QString::number(number)); }
};

// The root element; a null element when the text is not well-formed.
// Exactly: every text as the document holds it (CR from a reference, layout
// between elements); otherwise with "\n" line breaks and no layout.
XmlElement parseXml(const QString& text, bool exact = false);

// What a person sees of a modal box when it appears.
struct ModalRecord {
    QString className;
    QString title;
    QString text; // message box: its text; FrmTxtDoc: TxtDoc's text; input box: the prompt
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    bool textVisible = false; // FrmTxtDoc: TxtDoc shown
};

// Answers modal boxes while the code under test waits in their exec(): a
// timer polls for the active modal widget, records each new box and hands
// it, from the event loop, to the next queued answer. A box nobody expected,
// or one that its answer left open, is recorded as unexpected and closed, so
// that a test fails instead of hanging.
class ModalAnswerer : public QObject {
public:
    using Answer = std::function<void(QWidget*)>;

    ModalAnswerer();

    void expect(Answer answer) { m_answers.push_back(std::move(answer)); }
    const QList<ModalRecord>& records() const { return m_records; }
    int count() const { return int(m_records.size()); }
    int pending() const { return int(m_answers.size()); }
    QStringList unexpected() const { return m_unexpected; }
    QString describe() const; // every box seen, for failure messages
    void clear();

    static Answer press(QMessageBox::StandardButton which);
    // FrmTxtDoc as documentation: type a text over the one shown (a null
    // text types nothing), then OK or Cancel (Cancel when OK is off).
    static Answer document(bool ok, const QString& typed = {});
    // FrmTxtDoc as table chooser: pick the table with the keyboard, then OK or Cancel.
    static Answer chooseTable(const QString& table, bool ok);
    static Answer input(const QString& text, bool ok = true);
    static void close(QWidget* box);

private:
    void poll();

    QTimer m_timer;
    std::deque<Answer> m_answers;
    QPointer<QWidget> m_current;
    QList<ModalRecord> m_records;
    QStringList m_unexpected;
};

inline QString cell(const QAbstractItemView* view, int row, int column = 0)
{
    return view->model()->index(row, column).data().toString();
}
QStringList rows(const QAbstractItemView* view, int column = 0);
inline bool ticked(const QAbstractItemView* view, int row)
{
    return view->model()->index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked;
}
inline QString plainText(const QWidget* box)
{
    return box ? box->property("plainText").toString() : u"<no box>"_s;
}
inline bool ownEnabled(const QWidget* w) // its own flag, whatever its frame's state
{
    return w->isEnabledTo(w->parentWidget());
}

// A click in the middle of a cell, scrolled into view first.
void clickCell(QAbstractItemView* view, int row, int column = 0);
void clickCheckBox(QAbstractItemView* view, int row);
void clickHeader(QTreeView* view, int column);
// A click into the empty part of a list below its rows: the focus goes to
// the list and nothing is chosen.
void clickBelowRows(QAbstractItemView* view);
// A click into a box, an editor's viewport or a button.
void clickInto(QWidget* w);
// Types into a widget: "\n" is the Return key, "\t" the Tab key.
void typeText(QWidget* target, const QString& text);
// Sends a key to whatever has the focus; false when nothing has it.
bool keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers = {});

// A host window with the control placed on it, as an application embeds it;
// everything goes through the control's property, method and signal names
// and the objectNames of its screen controls.
class Host {
public:
    Host();

    // The host's order: Edit, TargetTable, MappingObjectXML, ShowControl.
    void load(const QString& targetTable, const QString& xml, bool edit = true);
    // load, then the window is shown and made active.
    bool open(const QString& targetTable, const QString& xml, bool edit = true);
    bool openSample(const QString& fileName, bool edit = true);
    // Mnemonics and focus changes need the window active; under offscreen no
    // window is active again after a modal box.
    bool activate();

    QString xml() const { return ctl->property("MappingObjectXML").toString(); }
    XmlElement document() const { return parseXml(xml()); }

    template <typename T = QWidget> T* find(const QString& objectName) const
    {
        return ctl->findChild<T*>(objectName);
    }
    QAbstractItemView* view(const QString& name) const { return find<QAbstractItemView>(name); }
    QAbstractButton* button(const QString& name) const { return find<QAbstractButton>(name); }
    QTabWidget* tabs() const { return find<QTabWidget>(u"MainTab"_s); }
    QString text(const QString& boxName) const { return plainText(find(boxName)); }
    bool readOnly(const QString& boxName) const { return find(boxName)->property("readOnly").toBool(); }
    QStringList rows(const QString& viewName) const { return fbtest::rows(view(viewName)); }
    QAbstractItemView* grid() const { return view(u"RulesGrid"_s); }
    QTreeView* sourceFields() const { return find<QTreeView>(u"lstSourceFields"_s); }
    QTreeView* targetFields() const { return find<QTreeView>(u"lstTargetFields"_s); }
    QWidget* overlay() const { return find(u"txtgrdline"_s); }
    QString rule(int row) const { return cell(grid(), row, 1); }
    QStringList rules() const { return fbtest::rows(grid(), 1); }
    QString dumpCaption() const;
    bool focusIn(const QString& name) const;

    void clickTab(int index) const;
    void click(const QString& buttonName) const { QTest::mouseClick(button(buttonName), Qt::LeftButton); }
    void clickInto(const QString& name) const { fbtest::clickInto(find(name)); }
    void clickRow(const QString& viewName, int row) const { clickCell(view(viewName), row); }
    void clickBelowRows(const QString& viewName) const { fbtest::clickBelowRows(view(viewName)); }
    // Click into a box, select all, type the text.
    void replaceText(const QString& boxName, const QString& text) const;
    // Alt+U into the dump selector, F4 opens its list, arrows and Enter choose.
    void chooseDump(int number) const;

    std::unique_ptr<QWidget> window;
    ctlFieldbridge* ctl = nullptr;
    ModalAnswerer modals;
};

// A test class whose every test function gets a fresh host; a box nobody
// expected, or an expected one that never came, fails the test.
class HostTest : public QObject {
    Q_OBJECT

protected:
    std::unique_ptr<Host> host;

protected Q_SLOTS:
    void initTestCase() { installMessageFilter(); }
    void init() { host = std::make_unique<Host>(); }
    void cleanup()
    {
        QVERIFY2(host->modals.unexpected().isEmpty(), qPrintable(host->modals.describe()));
        QCOMPARE(host->modals.pending(), 0);
        host.reset();
    }
};

// The session tests' rules001.xml: the target table RULES001, whose grid rows are
//   0 rules001.custno   (L)       5 rules001.note(1) (S)
//   1 rules001.name     (S)       6 rules001.note(2) (S)
//   2 rules001.city     (S)       7 rules001.remark  (U, Text)
//   3 rules001.born     (T, Date) 8 rules001.lang    (M, Multi-Byte String)
//   4 rules001.stamp    (K, UTC)  9 rules001.zip     (S)
// and the source tables srcaa001 and srcbb002, listed in this order:
//   0 srcaa001.custno (L)   4 srcaa001.note(2) (S)    8 srcbb002.city  (S)
//   1 srcaa001.name   (S)   5 srcaa001.memo    (U)    9 srcbb002.stamp (K)
//   2 srcaa001.born   (T)   6 srcaa001.zip     (S)   10 srcbb002.note  (S)
//   3 srcaa001.created(T)   7 srcbb002.custno  (L)
// Dump 1 "First" holds three rules (ZIP stands first in the element but
// belongs to the last grid row), dump 2 "Second" two, one of them of two
// lines; dump 3 "Third" is referenced but has no DUMP element.
QString rulesDocument();
// Dump 1 as the grid shows it.
QStringList firstDumpRules();

} // namespace fbtest
