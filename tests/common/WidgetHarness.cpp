#include "WidgetHarness.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QXmlStreamReader>

#include <algorithm>

namespace fbtest {

// ---------------------------------------------------------------------------
// Environment

void installMessageFilter()
{
    static QtMessageHandler previous = nullptr;
    previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (message.contains(QLatin1String("propagateSizeHints")) ||
            message.contains(QLatin1String("This plugin does not support")))
            return;
        if (previous)
            previous(type, context, message);
    });
}

QString readSample(const QString& fileName)
{
    QFile file(qEnvironmentVariable("FIELDBRIDGE_EXAMPLES") + u'/' + fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString tempDir()
{
    QString dir = qEnvironmentVariable("FIELDBRIDGE_TEMP");
    if (!dir.isEmpty() && !dir.endsWith(u'/'))
        dir += u'/';
    return dir;
}

QString lf(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

// ---------------------------------------------------------------------------
// XML

bool XmlElement::hasAttribute(const QString& a) const
{
    return std::any_of(attributes.begin(), attributes.end(), [&a](const auto& p) { return p.first == a; });
}

QString XmlElement::attribute(const QString& a) const
{
    for (const auto& [key, value] : attributes)
        if (key == a)
            return value;
    return {};
}

XmlElement XmlElement::child(const QString& childName, const QString& a, const QString& value) const
{
    const QList<XmlElement> found = all(childName);
    for (const XmlElement& c : found)
        if (a.isEmpty() || c.attribute(a) == value)
            return c;
    return {};
}

QList<XmlElement> XmlElement::all(const QString& childName) const
{
    QList<XmlElement> out;
    std::copy_if(children.begin(), children.end(), std::back_inserter(out),
                 [&childName](const XmlElement& c) { return c.name == childName; });
    return out;
}

QStringList XmlElement::childNames() const
{
    QStringList out;
    for (const XmlElement& c : children)
        out.append(c.name);
    return out;
}

QStringList XmlElement::attributeValues(const QString& childName, const QString& a) const
{
    QStringList out;
    for (const XmlElement& c : all(childName))
        out.append(c.attribute(a));
    return out;
}

namespace {
XmlElement readElement(QXmlStreamReader& reader, bool exact)
{
    XmlElement e;
    e.name = reader.name().toString();
    for (const QXmlStreamAttribute& a : reader.attributes())
        e.attributes.append({a.name().toString(), a.value().toString()});
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement())
            e.children.append(readElement(reader, exact));
        else if (reader.isCharacters())
            e.text += reader.text();
        else if (reader.isEndElement())
            break;
    }
    if (exact)
        return e;
    // Whitespace between child elements is layout, not text.
    if (!e.children.isEmpty() && e.text.trimmed().isEmpty())
        e.text.clear();
    e.text = lf(e.text);
    return e;
}
} // namespace

XmlElement parseXml(const QString& text, bool exact)
{
    QXmlStreamReader reader(text);
    XmlElement root;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            root = readElement(reader, exact);
            break;
        }
    }
    while (!reader.atEnd())
        reader.readNext(); // a second root or trailing garbage is an error too
    return reader.hasError() ? XmlElement() : root;
}

// ---------------------------------------------------------------------------
// Modal boxes

ModalAnswerer::ModalAnswerer()
{
    connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
    m_timer.start(10);
}

QStringList ModalAnswerer::texts() const
{
    QStringList out;
    for (const ModalRecord& r : m_records)
        out.append(r.text);
    return out;
}

QString ModalAnswerer::describe() const
{
    QStringList lines;
    for (const ModalRecord& r : m_records)
        lines.append(u"%1 '%2': %3"_s.arg(r.className, r.title, r.text));
    return lines.join(u"; "_s) + (m_unexpected.isEmpty() ? QString() : u"; unexpected: "_s + m_unexpected.join(u", "_s));
}

void ModalAnswerer::clear()
{
    m_records.clear();
    m_answers.clear();
    m_unexpected.clear();
}

ModalAnswerer::Answer ModalAnswerer::press(QMessageBox::StandardButton which)
{
    return [which](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        if (box && box->button(which))
            QTest::mouseClick(box->button(which), Qt::LeftButton);
    };
}

ModalAnswerer::Answer ModalAnswerer::document(bool ok, const QString& typed)
{
    return [ok, typed](QWidget* w) {
        if (!typed.isNull()) {
            if (auto* edit = w->findChild<QWidget*>(u"TxtDoc"_s)) {
                QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
                typeText(edit, typed);
            }
        }
        auto* button = w->findChild<QAbstractButton*>(ok ? u"CmdOk"_s : u"CmdCancel"_s);
        if (button && button->isEnabled())
            QTest::mouseClick(button, Qt::LeftButton);
        else if (auto* cancel = w->findChild<QAbstractButton*>(u"CmdCancel"_s))
            QTest::mouseClick(cancel, Qt::LeftButton); // a disabled OK cannot be clicked
    };
}

ModalAnswerer::Answer ModalAnswerer::chooseTable(const QString& table, bool ok)
{
    return [table, ok](QWidget* w) {
        auto* combo = w->findChild<QComboBox*>(u"CmbTargetTable"_s);
        if (combo && !table.isEmpty()) {
            const int index = combo->findText(table);
            while (combo->currentIndex() < index)
                QTest::keyClick(combo, Qt::Key_Down);
            while (combo->currentIndex() > index)
                QTest::keyClick(combo, Qt::Key_Up);
        }
        if (auto* button = w->findChild<QAbstractButton*>(ok ? u"CmdOk"_s : u"CmdCancel"_s))
            QTest::mouseClick(button, Qt::LeftButton);
    };
}

ModalAnswerer::Answer ModalAnswerer::input(const QString& text, bool ok)
{
    return [text, ok](QWidget* w) {
        auto* dialog = qobject_cast<QInputDialog*>(w);
        if (!dialog)
            return;
        if (auto* edit = dialog->findChild<QLineEdit*>()) {
            edit->selectAll();
            QTest::keyClicks(edit, text);
        }
        if (ok)
            dialog->accept();
        else
            dialog->reject();
    };
}

void ModalAnswerer::close(QWidget* w)
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
    if (auto* dialog = qobject_cast<QDialog*>(w))
        dialog->reject();
    else
        w->close();
}

void ModalAnswerer::poll()
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
    } else if (auto* input = qobject_cast<QInputDialog*>(modal)) {
        r.text = input->labelText();
    } else if (QWidget* doc = modal->findChild<QWidget*>(u"TxtDoc"_s)) {
        r.text = plainText(doc);
        r.textVisible = doc->isVisible();
    }
    m_records.append(r);

    Answer answer;
    if (m_answers.empty()) {
        m_unexpected.append(r.className + u": "_s + (r.text.isEmpty() ? r.title : r.text));
    } else {
        answer = std::move(m_answers.front());
        m_answers.pop_front();
    }
    // Answered from the event loop, once the box is fully shown.
    QPointer<QWidget> target(modal);
    QMetaObject::invokeMethod(
        this,
        [this, target, answer, name = r.className] {
            if (target && answer)
                answer(target);
            if (target && target->isVisible()) {
                if (answer)
                    m_unexpected.append(name + u" (left open)"_s);
                close(target);
            }
            m_current = nullptr; // the same dialog may be shown again
        },
        Qt::QueuedConnection);
}

// ---------------------------------------------------------------------------
// Item views and other widgets

QString cell(const QAbstractItemView* view, int row, int column)
{
    return view->model()->index(row, column).data().toString();
}

QStringList rows(const QAbstractItemView* view, int column)
{
    QStringList out;
    for (int r = 0; r < view->model()->rowCount(); ++r)
        out.append(cell(view, r, column));
    return out;
}

QStringList comboTexts(const QComboBox* combo)
{
    QStringList out;
    for (int i = 0; i < combo->count(); ++i)
        out.append(combo->itemText(i));
    return out;
}

bool ticked(const QAbstractItemView* view, int row)
{
    return view->model()->index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked;
}

QString plainText(const QWidget* box)
{
    return box ? box->property("plainText").toString() : u"<no box>"_s;
}

bool ownEnabled(const QWidget* w)
{
    return w->parentWidget() ? w->isEnabledTo(w->parentWidget()) : w->isEnabled();
}

bool hasFocus(const QWidget* w)
{
    const QWidget* focus = QApplication::focusWidget();
    return w && focus && (focus == w || w->isAncestorOf(focus));
}

// ---------------------------------------------------------------------------
// A person's hands

void clickCell(QAbstractItemView* view, int row, int column, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex index = view->model()->index(row, column);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, view->visualRect(index).center());
}

void clickCheckBox(QAbstractItemView* view, int row)
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

void clickHeader(QTreeView* view, int column)
{
    QHeaderView* header = view->header();
    const QPoint at(header->sectionViewportPosition(column) + header->sectionSize(column) / 2, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
}

void clickBelowRows(QAbstractItemView* view)
{
    QWidget* port = view->viewport();
    QTest::mouseClick(port, Qt::LeftButton, {}, QPoint(port->width() / 2, port->height() - 4));
}

void clickInto(QWidget* w)
{
    auto* area = qobject_cast<QAbstractScrollArea*>(w);
    QWidget* target = area ? area->viewport() : w;
    QTest::mouseClick(target, Qt::LeftButton, {}, area ? QPoint(target->width() / 2, 6) : target->rect().center());
}

namespace {
// Arrows move through a selector's open list to the entry, Enter takes it.
void chooseInOpenList(QComboBox* combo, int index)
{
    QAbstractItemView* list = combo->view();
    for (int i = list->currentIndex().row(); i < index; ++i)
        QTest::keyClick(list, Qt::Key_Down);
    for (int i = list->currentIndex().row(); i > index; --i)
        QTest::keyClick(list, Qt::Key_Up);
    QTest::keyClick(list, Qt::Key_Return);
}
} // namespace

void typeText(QWidget* target, const QString& text)
{
    QString run;
    const auto flush = [&] {
        if (!run.isEmpty())
            QTest::keyClicks(target, run);
        run.clear();
    };
    for (const QChar c : text) {
        if (c == u'\n' || c == u'\t') {
            flush();
            QTest::keyClick(target, c == u'\n' ? Qt::Key_Return : Qt::Key_Tab);
        } else {
            run += c;
        }
    }
    flush();
}

bool keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QWidget* f = QApplication::focusWidget();
    if (f)
        QTest::keyClick(f, key, modifiers);
    return f;
}

// ---------------------------------------------------------------------------
// The host

Host::Host() : window(std::make_unique<QWidget>())
{
    window->setObjectName(u"HostWindow"_s);
    window->resize(1200, 860);
    ctl = new ctlFieldbridge(window.get());
    ctl->setGeometry(0, 0, 1160, 820);
}

Host::~Host() = default;

void Host::load(const QString& targetTable, const QString& xml, bool edit)
{
    ctl->setProperty("Edit", edit);
    ctl->setProperty("TargetTable", targetTable);
    ctl->setProperty("MappingObjectXML", xml);
    QMetaObject::invokeMethod(ctl, "ShowControl");
}

bool Host::open(const QString& targetTable, const QString& xml, bool edit)
{
    load(targetTable, xml, edit);
    return activate();
}

bool Host::openSample(const QString& fileName, bool edit)
{
    const QString xml = readSample(fileName);
    return !xml.isEmpty() && open(QString(fileName).remove(u".xml"_s), xml, edit);
}

bool Host::activate()
{
    window->show();
    window->activateWindow();
    return QTest::qWaitForWindowActive(window.get());
}

QString Host::xml() const
{
    return ctl->property("MappingObjectXML").toString();
}

bool Host::readOnly(const QString& boxName) const
{
    QWidget* box = find(boxName);
    return box && box->property("readOnly").toBool();
}

QString Host::dumpCaption() const
{
    return find<QGroupBox>(u"Details"_s)->title();
}

void Host::clickTab(int index) const
{
    QTabBar* bar = tabs()->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
}

void Host::click(const QString& buttonName) const
{
    QTest::mouseClick(button(buttonName), Qt::LeftButton);
}

void Host::replaceText(const QString& boxName, const QString& text) const
{
    clickInto(boxName);
    QWidget* box = find(boxName);
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(box, Qt::Key_Delete);
    else
        typeText(box, text);
}

void Host::chooseDump(int number) const
{
    auto* cmb = find<QComboBox>(u"CmbDump"_s);
    if (!keyToFocus(Qt::Key_U, Qt::AltModifier))
        QTest::keyClick(ctl, Qt::Key_U, Qt::AltModifier);
    QTest::keyClick(cmb, Qt::Key_F4);
    chooseInOpenList(cmb, cmb->findData(number));
}

void Host::setRuleTextNumber(int dump, const QString& field, int number) const
{
    QMetaObject::invokeMethod(ctl, "SetTextNumber", Q_ARG(QString, u"D"_s), Q_ARG(int, number),
                              Q_ARG(QString, QString::number(dump)), Q_ARG(QString, field));
}

// ---------------------------------------------------------------------------
// Mapping objects

QString mappingObject(const QString& root, const QString& sections, const QString& targetFields,
                      const QList<SourceTable>& sources)
{
    QString srctab;
    for (const SourceTable& t : sources)
        srctab += u'<' + t.name.toUpper() + u'>' + t.fields + u"</"_s + t.name.toUpper() + u'>';
    return u'<' + root + u'>' + sections + u"<TARTAB><"_s + root.toUpper() + u'>' + targetFields + u"</"_s +
           root.toUpper() + u"></TARTAB><SRCTAB>"_s + srctab + u"</SRCTAB></"_s + root + u'>';
}

QString klmnoDocument(const QString& sections, const QStringList& definedSourceTables)
{
    QList<SourceTable> sources;
    for (const QString& table : definedSourceTables)
        sources.append({table, u"<CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGA=\"8\"/>"_s});
    return mappingObject(u"klmno001"_s, sections,
                         u"<CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGA=\"8\" DSCA=\"Customer\"/>"_s, sources);
}

QString dumpsDocument(const QString& root, const QString& targetFields, const QList<SourceTable>& sources,
                      const QString& dumps, const QString& dumpReferences)
{
    QStringList names;
    for (const SourceTable& t : sources)
        names.append(t.name);
    return mappingObject(root,
                         u"<SRCTBL>"_s + names.join(u',') + u"</SRCTBL><PREC TEXT=\"\">migrate "_s +
                             names.value(0) + u'\n' + dumpReferences + u"\nend of precondition</PREC>"_s + dumps,
                         targetFields, sources);
}

QString rulesTargetFields()
{
    return uR"(
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
)"_s;
}

QList<SourceTable> rulesSourceTables()
{
    return {{u"srcaa001"_s, uR"(
<CUSTNO No="1" FNo="1" TYPE="L" DIGB="8"/>
<NAME No="2" FNo="2" TYPE="S" LENG="30"/>
<BORN No="3" FNo="3" TYPE="T"/>
<CREATED No="4" FNo="4" TYPE="T"/>
<NOTE__2 No="5" FNo="5" TYPE="S" LENG="20" DEP="2"/>
<MEMO No="6" FNo="6" TYPE="U"/>
<ZIP No="7" FNo="7" TYPE="S" LENG="10"/>
)"_s},
            {u"srcbb002"_s, uR"(
<CUSTNO No="1" FNo="1" TYPE="L" DIGB="8"/>
<CITY No="2" FNo="2" TYPE="S" LENG="30"/>
<STAMP No="3" FNo="3" TYPE="K"/>
<NOTE No="4" FNo="4" TYPE="S" LENG="20"/>
)"_s}};
}

QString rulesDumps()
{
    return uR"(
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
)"_s;
}

QString rulesDocument(const QString& dumps)
{
    return dumpsDocument(u"rules001"_s, rulesTargetFields(), rulesSourceTables(), dumps,
                         u"dump 1 First\ndump 2 Second\ndump 3 Third"_s);
}

QStringList firstDumpRules()
{
    return {u"srcaa001.custno"_s, {}, u"srcbb002.city"_s, {}, {}, {}, {}, {}, {}, u"srcaa001.zip"_s};
}

} // namespace fbtest
