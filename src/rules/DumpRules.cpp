#include "DumpRules.h"

#include "DefineDumpsPage.h"
#include "RulesGridModel.h"
#include "control/BoxText.h"
#include "control/ControlState.h"
#include "dictionary/FieldListModel.h"
#include "document/VbText.h"
#include "forms/FrmTxtDoc.h"
#include "scripts/MappingObjectPage.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTreeView>

namespace fb {

namespace {
const QString kDetailsCaption = QStringLiteral("F&ields of Dump: ");
}

DumpRules::DumpRules(ControlState& state) : s(state) {}

void DumpRules::Connect()
{
    DefineDumpsPage* dd = s.dd;
    QObject::connect(dd->CmbDump, &QComboBox::activated, dd, [this](int i) { onDumpChosen(i); });
    QObject::connect(dd->Command1, &QPushButton::clicked, dd, [this] { onShow(); });
    QObject::connect(dd->lstTargetFields, &QTreeView::clicked, dd,
                     [this](const QModelIndex& i) { onTargetFieldClicked(i.row()); });
    for (QTreeView* list : {dd->lstSourceFields, dd->lstTargetFields}) {
        QObject::connect(list->header(), &QHeaderView::sectionClicked, list, [list](int column) {
            // Each click reverses the order, starting with ascending.
            const bool ascending = !list->property("fbSortAscending").toBool();
            list->setProperty("fbSortAscending", ascending);
            list->model()->sort(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        });
    }
}

// ---- field lists ----------------------------------------------------------

void DumpRules::FillSourceFields()
{
    FieldListModel* model = s.dd->sourceFields;
    model->clear();
    QList<FieldRow> rows;
    for (const QString& table : s.doc.GetSourceTablesText().split(u',')) {
        QString name = table;
        name.remove(u'\r');
        name.remove(u'\n');
        if (vb::Trim(name).isEmpty())
            continue;
        const Node t = s.doc.GetSourceTableNode(name);
        for (Node f = t.firstChildElement(); f; f = f.nextSiblingElement())
            rows.append(MakeFieldRow(t, f));
    }
    model->appendRows(rows);
}

void DumpRules::ShowTargetFields()
{
    s.dd->targetFields->clear();
    s.dd->targetFields->appendTable(s.doc.GetTargetTableNode(0, m_tag));
}

int DumpRules::GetListItemNumber(const QString& fieldName) const
{
    const FieldListModel* model = s.dd->targetFields;
    for (int r = 0; r < model->rowCount(); ++r)
        if (model->cellText(r, 3) == fieldName)
            return r + 1;
    return -1;
}

// ---- dumps ----------------------------------------------------------------

void DumpRules::ClearDumps()
{
    s.dd->CmbDump->clear();
    m_tag.clear();
    s.dd->rules->setRows({});
    s.dd->txtgrdline->hide();
    s.dd->Details->setTitle(kDetailsCaption);
    s.dd->CmbDump->setToolTip(QString());
    s.dd->LBLTargetTableName->clear();
}

void DumpRules::FillDumpSelector()
{
    QComboBox* cmb = s.dd->CmbDump;
    cmb->clear();
    const DumpReferences& refs = s.doc.ReferencedDumps();
    if (refs.isEmpty())
        return;
    for (qsizetype i = 0; i < refs.numbers.size(); ++i)
        cmb->addItem(vb::TwoDigits(refs.numbers[i]) + QStringLiteral("--") + refs.texts[i], int(refs.numbers[i]));
}

void DumpRules::FillTargetTableSelector()
{
    s.dd->CmbTargetTable->clear();
    s.dd->CmbTargetTable->addItems(s.doc.MscriptTables());
}

void DumpRules::StoreDumpRules(const QString& dumpNumber)
{
    if (dumpNumber.isEmpty() || dumpNumber == u"0")
        return;
    const auto number = vb::ToInteger(dumpNumber);
    if (!number)
        return;
    Node dump = s.doc.GetDumpNode(*number);
    if (!dump)
        dump = s.doc.CreateDumpNode(*number);

    if (s.multiTarget) {
        const QString table = s.dd->CmbTargetTable->currentText();
        if (table.isEmpty()) {
            s.ui.MsgBox(QStringLiteral("TargetTable for the Dump Not chosen. Please Choose One Now"),
                        MsgButtons::Ok, MsgIcon::Critical);
            s.control->setProperty("fbQuietTabSwitch", true);
            s.MainTab->setCurrentIndex(1);
            s.control->setProperty("fbQuietTabSwitch", false);
            s.dd->CmbTargetTable->setFocus(Qt::OtherFocusReason);
        } else {
            s.doc.SetNodeAttribute(dump, QStringLiteral("TT"), table);
        }
    }

    const RulesGridModel* grid = s.dd->rules;
    const Node table = s.doc.GetTargetTableNode(*number);
    for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement()) {
        const QString no = f.attribute(QStringLiteral("No"));
        const auto fieldNo = vb::ToInteger(no);
        if (!fieldNo)
            continue;
        const int r = *fieldNo - 1;
        const bool inGrid = r >= 0 && r < grid->rowCount();
        const Node child = dump.childElement(f.name());
        if (!inGrid)
            continue;
        const QString rule = grid->text(r, 1);
        const QString type = rule.contains(QStringLiteral("\r\n")) ? QStringLiteral("1") : QStringLiteral("0");
        if (!child) {
            if (rule.isEmpty())
                continue;
            const Node created = s.doc.AppendChildElement(dump, f.name(), QStringLiteral("No"), no);
            s.doc.SetNodeAttribute(created, QStringLiteral("TEXT"), QString());
            s.doc.SetText(created, rule);
            s.doc.SetNodeAttribute(created, QStringLiteral("TYPE"), type);
        } else if (rule.isEmpty()) {
            s.doc.RemoveChild(dump, child);
        } else {
            s.doc.SetText(child, rule);
            s.doc.SetNodeAttribute(child, QStringLiteral("TYPE"), type);
        }
    }
}

void DumpRules::LoadDumpRules(qint16 number)
{
    RulesGridModel* grid = s.dd->rules;
    grid->clearRules();
    if (s.multiTarget)
        SelectDumpTargetTable(number);
    const Node dump = s.doc.GetDumpNode(number);
    if (!dump) {
        m_tag = vb::TwoDigits(number);
        return;
    }
    for (Node c = dump.firstChildElement(); c; c = c.nextSiblingElement()) {
        const auto no = vb::ToInteger(c.attribute(QStringLiteral("No")));
        if (!no)
            continue;
        const int r = *no - 1;
        if (r >= 0 && r < grid->rowCount())
            grid->setText(r, 1, MappingDocument::UnescapeXmlText(s.doc.GetDumpChildText(number, c.name())));
    }
    s.dd->RulesGrid->scrollToTop();

    QComboBox* cmb = s.dd->CmbDump;
    if (cmb->currentIndex() < 0 && cmb->count() > 0)
        cmb->setCurrentIndex(0);
    const int selected = cmb->currentIndex() >= 0 ? cmb->currentData().toInt() : 0;
    const auto key = vb::ToInteger(cmb->currentText().section(QStringLiteral("--"), 0, 0));
    const QString text = s.doc.KnownDumps().value(key.value_or(0));
    const QString caption = kDetailsCaption + QString::number(selected) + u':' + text;
    s.dd->Details->setTitle(caption);
    cmb->setToolTip(caption);
}

void DumpRules::ShowDump(qint16 number)
{
    m_tag = QString::number(number);
    const Node table = s.doc.GetTargetTableNode(number);
    FillSourceFields();
    s.dd->targetFields->clear();
    s.dd->targetFields->appendTable(table);
    LayoutGrid(table);
    LoadDumpRules(number);
}

QString DumpRules::GetDumpTargetTable(qint16 number)
{
    return s.doc.GetDumpNode(number).attribute(QStringLiteral("TT"));
}

QString DumpRules::GetSelectedTargetTable() const
{
    return s.dd->CmbTargetTable->currentText();
}

void DumpRules::SelectDumpTargetTable(qint16 number)
{
    const QString table = GetDumpTargetTable(number);
    s.dd->CmbTargetTable->setCurrentIndex(s.dd->CmbTargetTable->findText(table, Qt::MatchFixedString));
    s.dd->LBLTargetTableName->setText(table);
}

void DumpRules::RefreshTargetFields()
{
    ShowTargetFields();
    SelectDumpTargetTable(vb::ToInteger(m_tag).value_or(0));
}

void DumpRules::BindDumpToTable(const Node& dump, const QString& table)
{
    if (!dump)
        return;
    s.doc.SetNodeAttribute(dump, QStringLiteral("TT"), table);
    const Node first = s.doc.GetTargetTableDefinition(table).firstChildElement();
    if (!first)
        return;
    // The rule carries its field's No, so that the grid can place it.
    const Node rule =
        s.doc.AppendChildElement(dump, first.name(), QStringLiteral("No"), first.attribute(QStringLiteral("No")));
    s.doc.SetNodeAttribute(rule, QStringLiteral("TEXT"), QString());
    s.doc.SetText(rule, QStringLiteral("default()"));
    s.doc.SetNodeAttribute(rule, QStringLiteral("TYPE"), QStringLiteral("0"));
}

void DumpRules::BindUnboundDumps()
{
    if (!s.multiTarget)
        return;
    QComboBox* cmb = s.dd->CmbDump;
    for (int i = 0; i < cmb->count(); ++i) {
        const auto number = qint16(cmb->itemData(i).toInt());
        const Node dump = s.doc.GetDumpNode(number);
        if (!dump || !dump.attribute(QStringLiteral("TT")).isEmpty())
            continue;
        QString list;
        for (int t = 0; t < s.dd->CmbTargetTable->count(); ++t)
            list += s.dd->CmbTargetTable->itemText(t) + u';';
        s.module.DocTextMode = false;
        s.module.TableList = list;
        s.module.ChosenTable = s.dd->CmbTargetTable->count() > 0 ? s.dd->CmbTargetTable->itemText(0) : QString();
        s.module.DialogDumpNumber = number;
        FrmTxtDoc dialog(s.module, s.control);
        dialog.exec();
        BindDumpToTable(dump, s.module.ChosenTable);
    }
}

qint16 DumpRules::DetailsDumpNumber() const
{
    const QStringList pieces = s.dd->Details->title().split(u':');
    if (pieces.size() < 2)
        return 0;
    return vb::ToInteger(pieces[1]).value_or(0);
}

qint16 DumpRules::SelectedDumpNumber() const
{
    return s.dd->CmbDump->currentIndex() >= 0 ? qint16(s.dd->CmbDump->currentData().toInt()) : 0;
}

void DumpRules::onDumpChosen(int index)
{
    if (!m_tag.isEmpty())
        StoreDumpRules(m_tag);
    const auto number = qint16(s.dd->CmbDump->itemData(index).toInt());
    if (s.dd->lblTargetTable->isVisible())
        s.dd->LBLTargetTableName->setText(GetDumpTargetTable(number));
    m_tag = QString::number(number);
    s.dd->lstTargetFields->setFocus(Qt::OtherFocusReason);
}

void DumpRules::onShow()
{
    if (!m_tag.isEmpty())
        StoreDumpRules(m_tag);
    const int index = s.dd->CmbDump->currentIndex();
    if (index < 0)
        return;
    const auto number = qint16(s.dd->CmbDump->itemData(index).toInt());
    if (s.dd->lblTargetTable->isVisible())
        s.dd->LBLTargetTableName->setText(GetDumpTargetTable(number));
    m_tag = QString::number(number);
}

void DumpRules::DumpSelectorLostFocus()
{
    const QStringList pieces = s.dd->Details->title().split(u':');
    if (pieces.size() < 2)
        return;
    const int index = s.dd->CmbDump->currentIndex();
    if (index < 0)
        return;
    const QString selected = QString::number(s.dd->CmbDump->itemData(index).toInt());
    if (vb::Trim(pieces[1]) != selected) {
        m_tag = selected;
        ShowDump(qint16(selected.toInt()));
    }
}

void DumpRules::onTargetFieldClicked(int row)
{
    const qint16 shown = DetailsDumpNumber();
    const qint16 selected = SelectedDumpNumber();
    if (shown == selected) {
        const QString name = s.dd->targetFields->cellText(row, 3);
        if (!name.isEmpty())
            SelectGridRowOfField(name);
    } else {
        ShowDump(selected);
    }
}

// ---- rules grid -----------------------------------------------------------

void DumpRules::LayoutGrid(const Node& table)
{
    QStringList names;
    for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement())
        names.append(QualifiedFieldName(table, f));
    s.dd->rules->setRows(names);
    s.dd->CmbDump->setToolTip(s.doc.KnownDumps().value(vb::ToInteger(m_tag).value_or(0)));
}

int DumpRules::GetRowNumber(const QString& fieldName) const
{
    const RulesGridModel* grid = s.dd->rules;
    for (int r = 0; r < grid->rowCount(); ++r)
        if (grid->text(r, 0) == fieldName)
            return r;
    return -1;
}

void DumpRules::SetRuleInGrid(const QString& fieldName, const QString& rule)
{
    const int row = GetRowNumber(fieldName);
    if (row >= 0)
        s.dd->rules->setText(row, 1, rule);
}

void DumpRules::SelectGridRowOfField(const QString& fieldName)
{
    QTableView* grid = s.dd->RulesGrid;
    const int row = GetRowNumber(fieldName);
    if (row < 0) {
        grid->scrollToTop();
        return;
    }
    const QModelIndex index = s.dd->rules->index(row, std::max(grid->currentIndex().column(), 0));
    grid->scrollTo(index, QAbstractItemView::PositionAtTop);
    grid->setCurrentIndex(index);
}

QString DumpRules::FieldMapping() const
{
    return QString::number(s.dd->RulesGrid->currentIndex().isValid() ? s.dd->RulesGrid->currentIndex().row() : 0);
}

void DumpRules::SetFieldMapping(const QString& rule)
{
    // The rule goes into the rule cell of the current row: the field-name
    // column is never edited.
    const QModelIndex current = s.dd->RulesGrid->currentIndex();
    if (current.isValid())
        s.dd->rules->setText(current.row(), 1, FromEditorText(ToEditorText(rule)));
    s.dd->CmdFuncBuild->setEnabled(true);
}

} // namespace fb
