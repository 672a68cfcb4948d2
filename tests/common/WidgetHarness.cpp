#include "WidgetHarness.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QInputDialog>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QXmlStreamReader>

namespace fbtest {

void installMessageFilter()
{
    static QtMessageHandler previous = nullptr;
    previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
            if (!message.contains(u"propagateSizeHints"_s) &&
                !message.contains(u"This plugin does not support"_s) && previous)
                previous(type, context, message);
        });
}

namespace {
QString readFile(const char* folderVariable, const QString& fileName)
{
    QFile file(qEnvironmentVariable(folderVariable) + u'/' + fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
} // namespace

QString readSample(const QString& fileName)
{
    return readFile("FIELDBRIDGE_EXAMPLES", fileName);
}

QString rulesDocument()
{
    return readFile("FIELDBRIDGE_DOCUMENTS", u"rules001.xml"_s);
}

// ---- XML ------------------------------------------------------------------------

QString XmlElement::attribute(const QString& a) const
{
    for (const auto& [key, value] : attributes)
        if (key == a)
            return value;
    return {};
}

XmlElement XmlElement::child(const QString& childName, const QString& a, const QString& value) const
{
    for (const XmlElement& c : children)
        if (c.name == childName && (a.isEmpty() || c.attribute(a) == value))
            return c;
    return {};
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
    if (!exact) {
        if (!e.children.isEmpty() && e.text.trimmed().isEmpty())
            e.text.clear(); // layout between child elements, not text
        e.text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    }
    return e;
}
} // namespace

XmlElement parseXml(const QString& text, bool exact)
{
    QXmlStreamReader reader(text);
    XmlElement root;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && root.isNull())
            root = readElement(reader, exact);
    }
    return reader.hasError() ? XmlElement() : root; // a second root is an error too
}

// ---- modal boxes ---------------------------------------------------------------

ModalAnswerer::ModalAnswerer()
{
    connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
    m_timer.start(10);
}

QString ModalAnswerer::describe() const
{
    QStringList lines;
    for (const ModalRecord& r : m_records)
        lines.append(u"%1 '%2': %3"_s.arg(r.className, r.title, r.text));
    return lines.join(u"; "_s) +
           (m_unexpected.isEmpty() ? QString() : u"; unexpected: "_s + m_unexpected.join(u", "_s));
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
        auto* edit = w->findChild<QWidget*>(u"TxtDoc"_s);
        if (edit && !typed.isNull()) {
            QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
            typeText(edit, typed);
        }
        auto* button = w->findChild<QAbstractButton*>(ok ? u"CmdOk"_s : u"CmdCancel"_s);
        if (!button || !button->isEnabled())
            button = w->findChild<QAbstractButton*>(u"CmdCancel"_s); // a disabled OK cannot be clicked
        if (button)
            QTest::mouseClick(button, Qt::LeftButton);
    };
}

ModalAnswerer::Answer ModalAnswerer::chooseTable(const QString& table, bool ok)
{
    return [table, ok](QWidget* w) {
        if (auto* combo = w->findChild<QComboBox*>(u"CmbTargetTable"_s)) {
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
        ok ? dialog->accept() : dialog->reject();
    };
}

void ModalAnswerer::close(QWidget* w)
{
    auto* box = qobject_cast<QMessageBox*>(w);
    QAbstractButton* b = box ? box->escapeButton() : nullptr;
    if (box && !b && !box->buttons().isEmpty())
        b = box->buttons().constFirst();
    if (b)
        b->click();
    else if (auto* dialog = qobject_cast<QDialog*>(w))
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
    r.title = modal->windowTitle();
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        r.text = box->text();
        r.icon = box->icon();
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

// ---- views, boxes and hands ------------------------------------------------------

QStringList rows(const QAbstractItemView* view, int column)
{
    QStringList out;
    for (int r = 0; r < view->model()->rowCount(); ++r)
        out.append(cell(view, r, column));
    return out;
}

void clickCell(QAbstractItemView* view, int row, int column)
{
    const QModelIndex index = view->model()->index(row, column);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
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
    const QPoint at(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                    header->height() / 2);
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
    QTest::mouseClick(target, Qt::LeftButton, {},
                      area ? QPoint(target->width() / 2, 6) : target->rect().center());
}

void typeText(QWidget* target, const QString& text)
{
    QString run;
    for (const QChar c : text) {
        if (c != u'\n' && c != u'\t') {
            run += c;
            continue;
        }
        QTest::keyClicks(target, run);
        run.clear();
        QTest::keyClick(target, c == u'\n' ? Qt::Key_Return : Qt::Key_Tab);
    }
    QTest::keyClicks(target, run);
}

bool keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QWidget* f = QApplication::focusWidget();
    if (f)
        QTest::keyClick(f, key, modifiers);
    return f;
}

// ---- the host ------------------------------------------------------------------

Host::Host() : window(std::make_unique<QWidget>())
{
    window->setObjectName(u"HostWindow"_s);
    window->resize(1200, 860);
    ctl = new ctlFieldbridge(window.get());
    ctl->setGeometry(0, 0, 1160, 820);
}

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

QString Host::dumpCaption() const
{
    return find<QGroupBox>(u"Details"_s)->title();
}

bool Host::focusIn(const QString& name) const
{
    const QWidget* w = find(name);
    const QWidget* focus = QApplication::focusWidget();
    return w && focus && (focus == w || w->isAncestorOf(focus));
}

void Host::clickTab(int index) const
{
    QTabBar* bar = tabs()->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
}

void Host::replaceText(const QString& boxName, const QString& text) const
{
    clickInto(boxName);
    QTest::keyClick(find(boxName), Qt::Key_A, Qt::ControlModifier);
    typeText(find(boxName), text);
}

void Host::chooseDump(int number) const
{
    auto* cmb = find<QComboBox>(u"CmbDump"_s);
    if (!keyToFocus(Qt::Key_U, Qt::AltModifier))
        QTest::keyClick(ctl, Qt::Key_U, Qt::AltModifier);
    QTest::keyClick(cmb, Qt::Key_F4);
    // Arrows move through the open list to the entry, Enter takes it.
    QAbstractItemView* list = cmb->view();
    const int index = cmb->findData(number);
    for (int i = list->currentIndex().row(); i < index; ++i)
        QTest::keyClick(list, Qt::Key_Down);
    for (int i = list->currentIndex().row(); i > index; --i)
        QTest::keyClick(list, Qt::Key_Up);
    QTest::keyClick(list, Qt::Key_Return);
}

// ---- documents -----------------------------------------------------------------

QStringList firstDumpRules()
{
    return {u"srcaa001.custno"_s, {}, u"srcbb002.city"_s, {}, {}, {}, {}, {}, {}, u"srcaa001.zip"_s};
}

} // namespace fbtest
