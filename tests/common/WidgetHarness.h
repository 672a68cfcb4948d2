#pragma once

// What every widget test of the control shares: a host window holding one
// ctlFieldbridge, an answerer of modal boxes, readers of item views and of
// the XML that the control hands back, a person's hands (clicks, keys,
// typing) and builders of small mapping objects.

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

// ---------------------------------------------------------------------------
// Environment

// Drops the lines the offscreen platform prints for every window it shows
// ("does not support propagateSizeHints()", raise(), grabbing); passes on
// everything else.
void installMessageFilter();
QString readSample(const QString& fileName); // from $FIELDBRIDGE_EXAMPLES
QString tempDir();                           // $FIELDBRIDGE_TEMP, ending in '/'

// Line breaks as a person reads them: CR LF and lone CR as "\n".
QString lf(QString text);

// ---------------------------------------------------------------------------
// The XML handed back, as a small tree

struct XmlElement {
    QString name;
    QList<QPair<QString, QString>> attributes;
    QString text; // own text, "\n" line breaks; empty when only layout between children
    QList<XmlElement> children;

    bool isNull() const { return name.isEmpty(); }
    bool hasAttribute(const QString& attribute) const;
    QString attribute(const QString& attribute) const;
    // The first child of that name (with that attribute value, when given);
    // a null element when there is none.
    XmlElement child(const QString& childName, const QString& attribute = {}, const QString& value = {}) const;
    QList<XmlElement> all(const QString& childName) const;
    QStringList childNames() const;
    // The values of one attribute over the children of that name.
    QStringList attributeValues(const QString& childName, const QString& attribute) const;
    XmlElement dump(int number) const { return child(u"DUMP"_s, u"No"_s, QString::number(number)); }
};

// The root element; a null element when the text is not well-formed.
// Exactly: every text as the document holds it (CR from a reference kept,
// layout between elements kept); otherwise with "\n" line breaks.
XmlElement parseXml(const QString& text, bool exact = false);

// ---------------------------------------------------------------------------
// Modal boxes

// What a person sees of a modal box when it appears.
struct ModalRecord {
    QString className;
    QString objectName;
    QString title;
    QString text; // message box: its text; FrmTxtDoc: TxtDoc's text; input box: the prompt
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    bool textVisible = false;  // FrmTxtDoc: TxtDoc shown
};

// Answers modal boxes while the code under test waits in their exec(): a
// timer polls QApplication::activeModalWidget(), records each new box and
// hands it, from the event loop, to the next queued answer. A box nobody
// expected, or one that its answer left open, is recorded as unexpected and
// closed, so that a test fails instead of hanging.
class ModalAnswerer : public QObject {
public:
    using Answer = std::function<void(QWidget*)>;

    ModalAnswerer();

    void expect(Answer answer) { m_answers.push_back(std::move(answer)); }
    const QList<ModalRecord>& records() const { return m_records; }
    int count() const { return int(m_records.size()); }
    int pending() const { return int(m_answers.size()); }
    QStringList unexpected() const { return m_unexpected; }
    QStringList texts() const;
    QString describe() const; // every box seen, for failure messages
    void clear();

    // A standard button of a message box.
    static Answer press(QMessageBox::StandardButton which);
    // FrmTxtDoc as documentation: type a text over the one shown (a null
    // text types nothing), then CmdOk or CmdCancel (Cancel when OK is off).
    static Answer document(bool ok, const QString& typed = {});
    // FrmTxtDoc as table chooser: pick the table (empty: keep the preset)
    // with the keyboard, then CmdOk or CmdCancel.
    static Answer chooseTable(const QString& table, bool ok = true);
    // An input box: type the text, then OK or Cancel.
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

// ---------------------------------------------------------------------------
// Item views and other widgets

QString cell(const QAbstractItemView* view, int row, int column);
QStringList rows(const QAbstractItemView* view, int column = 0); // one cell per row
QStringList comboTexts(const QComboBox* combo);
bool ticked(const QAbstractItemView* view, int row);
QString plainText(const QWidget* box);
bool ownEnabled(const QWidget* w); // its own flag, whatever its frame's state
bool hasFocus(const QWidget* w);   // the focus is in w or one of its parts

// ---------------------------------------------------------------------------
// A person's hands

// A click in the middle of a cell, scrolled into view first.
void clickCell(QAbstractItemView* view, int row, int column = 0, Qt::KeyboardModifiers modifiers = {});
void clickCheckBox(QAbstractItemView* view, int row);
void clickHeader(QTreeView* view, int column);
// A click into the empty part of a list below its rows: the focus goes to
// the list and nothing is chosen.
void clickBelowRows(QAbstractItemView* view);
// A click into a box, an editor's viewport or a button.
void clickInto(QWidget* w);
// Types into a widget: "\n" is the Return key, "\t" the Tab key.
void typeText(QWidget* target, const QString& text);
// Sends a key to whatever has the focus.
bool keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers = {});

// ---------------------------------------------------------------------------
// The host

// A host window with the control placed on it, as an application embeds it;
// everything goes through the control's property, method and signal names
// and the objectNames of its screen controls.
class Host {
public:
    Host();
    ~Host();

    // The host's order: Edit, TargetTable, MappingObjectXML, ShowControl.
    void load(const QString& targetTable, const QString& xml, bool edit = true);
    // load, then the window is shown and made active.
    bool open(const QString& targetTable, const QString& xml, bool edit = true);
    bool openSample(const QString& fileName, bool edit = true);
    // Mnemonics and focus changes need the window active; under offscreen no
    // window is active again after a modal box.
    bool activate();

    QString xml() const;
    XmlElement document() const { return parseXml(xml()); }

    template <typename T = QWidget>
    T* find(const QString& objectName) const
    {
        return ctl->findChild<T*>(objectName);
    }
    QAbstractItemView* view(const QString& name) const { return find<QAbstractItemView>(name); }
    QAbstractButton* button(const QString& name) const { return find<QAbstractButton>(name); }
    QTabWidget* tabs() const { return find<QTabWidget>(u"MainTab"_s); }
    QString text(const QString& boxName) const { return plainText(find(boxName)); }
    bool readOnly(const QString& boxName) const;
    QStringList rows(const QString& viewName, int column = 0) const { return fbtest::rows(view(viewName), column); }
    // The parts of "Define Dumps".
    QAbstractItemView* grid() const { return view(u"RulesGrid"_s); }
    QTreeView* sourceFields() const { return find<QTreeView>(u"lstSourceFields"_s); }
    QTreeView* targetFields() const { return find<QTreeView>(u"lstTargetFields"_s); }
    QWidget* overlay() const { return find(u"txtgrdline"_s); }
    QComboBox* combo(const QString& name) const { return find<QComboBox>(name); }
    QString rule(int row) const { return cell(grid(), row, 1); }
    QStringList rules() const { return fbtest::rows(grid(), 1); }
    QString dumpCaption() const;
    bool focusIn(const QString& name) const { return hasFocus(find(name)); }

    void clickTab(int index) const;
    void click(const QString& buttonName) const;
    void clickInto(const QString& name) const { fbtest::clickInto(find(name)); }
    void clickRow(const QString& viewName, int row, int column = 0) const { clickCell(view(viewName), row, column); }
    void clickBelowRows(const QString& viewName) const { fbtest::clickBelowRows(view(viewName)); }
    // Click into a box, select all, type the text (Delete for an empty one).
    void replaceText(const QString& boxName, const QString& text) const;
    // Alt+U into the dump selector, F4 opens its list, arrows and Enter choose.
    void chooseDump(int number) const;
    // SetTextNumber("D", ...) through the host method. When the field has no
    // rule element yet this creates one that carries only TEXT: tests use it
    // to see whether the control has already written the rule element.
    void setRuleTextNumber(int dump, const QString& field, int number) const;

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

// ---------------------------------------------------------------------------
// Mapping objects

struct SourceTable {
    QString name;   // as listed in SRCTBL; its definition goes under the upper-case name
    QString fields; // field elements
};

// root, then the given sections (SRCTBL, PREC, QUERY, DUMP, ... written as
// XML), the target table's fields under TARTAB and the source tables'
// definitions under SRCTAB.
QString mappingObject(const QString& root, const QString& sections, const QString& targetFields,
                      const QList<SourceTable>& sources);
// The single-target klmno001 with one target field, the given sections and
// source tables defined with one field each.
QString klmnoDocument(const QString& sections, const QStringList& definedSourceTables = {u"PQRST002"_s});
// A single-target document whose SRCTBL lists the sources (the first one
// migrated) and whose precondition references the dumps.
QString dumpsDocument(const QString& root, const QString& targetFields, const QList<SourceTable>& sources,
                      const QString& dumps, const QString& dumpReferences);

// The target table RULES001 with ten fields; its grid rows are
//   0 rules001.custno   (L)       5 rules001.note(1) (S)
//   1 rules001.name     (S)       6 rules001.note(2) (S)
//   2 rules001.city     (S)       7 rules001.remark  (U, Text)
//   3 rules001.born     (T, Date) 8 rules001.lang    (M, Multi-Byte String)
//   4 rules001.stamp    (K, UTC)  9 rules001.zip     (S)
QString rulesTargetFields();
// Source list rows of the rules document, in list order:
//   0 srcaa001.custno (L)   4 srcaa001.note(2) (S)    8 srcbb002.city  (S)
//   1 srcaa001.name   (S)   5 srcaa001.memo    (U)    9 srcbb002.stamp (K)
//   2 srcaa001.born   (T)   6 srcaa001.zip     (S)   10 srcbb002.note  (S)
//   3 srcaa001.created(T)   7 srcbb002.custno  (L)
QList<SourceTable> rulesSourceTables();
// Dump 1 "First" holds three rules (ZIP stands first in the element but
// belongs to the last grid row), dump 2 "Second" two, one of them of two
// lines; dump 3 "Third" is referenced but has no DUMP element.
QString rulesDumps();
QString rulesDocument(const QString& dumps = rulesDumps());
// Dump 1 as the grid shows it.
QStringList firstDumpRules();

} // namespace fbtest
