#include "DumpRules.h"

#include "DefineDumpsPage.h"
#include "RulesGridModel.h"
#include "control/BoxText.h"
#include "control/ControlState.h"
#include "dictionary/FieldListModel.h"
#include "core/document/TextRules.h"
#include "forms/FrmTxtDoc.h"
#include "core/rules/RuleGuess.h"
#include "control/Twips.h"
#include "scripts/ExternalEditor.h"
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
    QObject::connect(dd->CmdMap, &QPushButton::clicked, dd, [this] { Map(); });
    QObject::connect(dd->CmdGuess, &QPushButton::clicked, dd, [this] { Guess(); });
    QObject::connect(dd->CmdFuncBuild, &QPushButton::clicked, dd, [this] { FuncBuild(); });
    QObject::connect(dd->CmdCopyDump, &QPushButton::clicked, dd, [this] { CopyDump(); });
    QObject::connect(dd->CmdChange, &QPushButton::clicked, dd, [this] { ChangeTargetTable(); });
    QObject::connect(dd->CmdDumpText, &QPushButton::clicked, dd, [this] { DumpText(); });
    QObject::connect(dd->CmdEditRule, &QPushButton::clicked, dd, [this] { EditRule(); });
    QObject::connect(dd->RulesGrid, &QTableView::doubleClicked, dd, [this] { GridDoubleClicked(); });
    QObject::connect(dd->RulesGrid->selectionModel(), &QItemSelectionModel::currentChanged, dd,
                     [this](const QModelIndex& c, const QModelIndex& p) { GridCurrentChanged(c, p); });
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
    for (const Node& t : s.doc.ListedSourceTables())
        for (Node f = t.firstChildElement(); f; f = f.nextSiblingElement())
            rows.append(MakeFieldRow(t, f));
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
        cmb->addItem(str::TwoDigits(refs.numbers[i]) + QStringLiteral("--") + refs.texts[i], int(refs.numbers[i]));
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
    const auto number = str::ToInteger(dumpNumber);
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
            s.quietTabSwitch = true;
            s.MainTab->setCurrentIndex(1);
            s.quietTabSwitch = false;
            s.dd->CmbTargetTable->setFocus(Qt::OtherFocusReason);
        } else {
            s.doc.SetNodeAttribute(dump, QStringLiteral("TT"), table);
        }
    }

    const RulesGridModel* grid = s.dd->rules;
    const Node table = s.doc.GetTargetTableNode(*number);
    for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement()) {
        const QString no = f.attribute(QStringLiteral("No"));
        const auto fieldNo = str::ToInteger(no);
        if (!fieldNo)
            continue;
        const int r = *fieldNo - 1;
        if (r < 0 || r >= grid->rowCount())
            continue;
        const QString rule = grid->text(r, 1);
        if (!rule.isEmpty())
            s.doc.WriteRuleElement(dump, f, rule);
        else if (const Node child = dump.childElement(f.name()))
            s.doc.RemoveChild(dump, child);
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
        m_tag = str::TwoDigits(number);
        return;
    }
    for (Node c = dump.firstChildElement(); c; c = c.nextSiblingElement()) {
        const auto no = str::ToInteger(c.attribute(QStringLiteral("No")));
        if (!no)
            continue;
        const int r = *no - 1;
        if (r >= 0 && r < grid->rowCount())
            grid->setText(r, 1, MappingDocument::DisplayText(s.doc.GetDumpChildText(number, c.name())));
    }
    s.dd->RulesGrid->scrollToTop();

    QComboBox* cmb = s.dd->CmbDump;
    if (cmb->currentIndex() < 0 && cmb->count() > 0)
        cmb->setCurrentIndex(0);
    const int selected = cmb->currentIndex() >= 0 ? cmb->currentData().toInt() : 0;
    const auto key = str::ToInteger(cmb->currentText().section(QStringLiteral("--"), 0, 0));
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
    SelectDumpTargetTable(str::ToInteger(m_tag).value_or(0));
}

QString DumpRules::TableListOfSelector() const
{
    QString list;
    for (int t = 0; t < s.dd->CmbTargetTable->count(); ++t)
        list += s.dd->CmbTargetTable->itemText(t) + u';';
    return list;
}

void DumpRules::AddDefaultRule(const Node& dump, const QString& table)
{
    const Node first = s.doc.GetTargetTableDefinition(table).firstChildElement();
    if (dump && first)
        s.doc.AppendRuleElement(dump, first, QStringLiteral("default()"));
}

void DumpRules::BindDumpToTable(const Node& dump, const QString& table)
{
    if (!dump)
        return;
    s.doc.SetNodeAttribute(dump, QStringLiteral("TT"), table);
    AddDefaultRule(dump, table);
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
        const QString first = s.dd->CmbTargetTable->count() > 0 ? s.dd->CmbTargetTable->itemText(0) : QString();
        // A cancelled dialog binds the first table.
        if (const auto chosen = ChooseTargetTable(s.module, s.control, number, TableListOfSelector(), first))
            BindDumpToTable(dump, *chosen);
    }
}

qint16 DumpRules::DetailsDumpNumber() const
{
    const QStringList pieces = s.dd->Details->title().split(u':');
    if (pieces.size() < 2)
        return 0;
    return str::ToInteger(pieces[1]).value_or(0);
}

qint16 DumpRules::SelectedDumpNumber() const
{
    return s.dd->CmbDump->currentIndex() >= 0 ? qint16(s.dd->CmbDump->currentData().toInt()) : 0;
}

void DumpRules::onDumpChosen(int index)
{
    CommitOpenEdit();
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
    CommitOpenEdit();
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
    if (str::Trim(pieces[1]) != selected) {
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
    s.dd->txtgrdline->hide();
    m_syncFieldList = false;
    s.dd->rules->setRows(names);
    m_syncFieldList = true;
    s.dd->CmbDump->setToolTip(s.doc.KnownDumps().value(str::ToInteger(m_tag).value_or(0)));
}

int DumpRules::GetRowNumber(const QString& fieldName) const
{
    const RulesGridModel* grid = s.dd->rules;
    for (int r = 0; r < grid->rowCount(); ++r)
        if (grid->text(r, 0) == fieldName)
            return r;
    return -1;
}

int DumpRules::RowOfFieldPart(const QString& fieldName) const
{
    // The builders name a field by its part from the tenth character on.
    const RulesGridModel* grid = s.dd->rules;
    for (int r = 0; r < grid->rowCount(); ++r)
        if (FieldPartOf(grid->text(r, 0)) == fieldName)
            return r;
    return -1;
}

void DumpRules::SetRuleInGrid(const QString& fieldName, const QString& rule)
{
    const int row = RowOfFieldPart(fieldName);
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
    if (!grid->viewport()->rect().contains(grid->visualRect(index)))
        grid->scrollTo(index, QAbstractItemView::PositionAtTop);
    m_syncFieldList = false; // the list already shows this field
    grid->setCurrentIndex(index);
    m_syncFieldList = true;
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
        s.dd->rules->setText(current.row(), 1, rule);
    s.dd->CmdFuncBuild->setEnabled(true);
}

} // namespace fb

namespace fb {

// ---- in-place editing -----------------------------------------------------

void DumpRules::GridEdit(qint16 keyAscii, bool typed)
{
    // A blank, Enter or another control key opens the rule for change;
    // another key typed over the cell starts a new rule with its character.
    const bool startsNew = typed && !(keyAscii >= 0 && keyAscii <= 32);
    OpenOverlay(startsNew ? QString(QChar(char16_t(keyAscii))) : QString());
}

void DumpRules::OpenOverlay(const QString& typed)
{
    QTableView* grid = s.dd->RulesGrid;
    QPlainTextEdit* overlay = s.dd->txtgrdline;
    QModelIndex current = grid->currentIndex();
    if (!current.isValid()) {
        if (s.dd->rules->rowCount() == 0)
            return;
        current = s.dd->rules->index(0, 1);
        grid->setCurrentIndex(current);
    }
    if (current.column() == 0) {
        current = current.siblingAtColumn(1);
        grid->setCurrentIndex(current);
    }
    overlay->setFont(grid->font());
    // The overlay is locked in read-only mode: what is typed there never
    // replaces the rule.
    SetBoxText(overlay, typed.isEmpty() || !s.edit ? s.dd->rules->text(current.row(), 1) : typed);

    // Over the cell, 70 twips narrower than it.
    const QRect cellRect = grid->visualRect(current);
    const QPoint topLeft = grid->viewport()->mapTo(s.dd->Details, cellRect.topLeft());
    overlay->setGeometry(topLeft.x(), topLeft.y(), cellRect.width() - TwipsToPixelsX(70, grid),
                         cellRect.height());
    overlay->show();
    overlay->raise();
    overlay->setFocus(Qt::OtherFocusReason);
    overlay->moveCursor(QTextCursor::End);
}

void DumpRules::GridDoubleClicked()
{
    QTableView* grid = s.dd->RulesGrid;
    if (grid->currentIndex().column() == 0)
        grid->setCurrentIndex(grid->currentIndex().siblingAtColumn(1));
    GridEdit(32, false);
}

void DumpRules::MoveToNextRow()
{
    QTableView* grid = s.dd->RulesGrid;
    const QModelIndex current = grid->currentIndex();
    if (!current.isValid() || current.row() + 1 >= s.dd->rules->rowCount())
        return;
    const QModelIndex next = current.sibling(current.row() + 1, current.column());
    grid->setCurrentIndex(next);
    const QRect r = grid->visualRect(next);
    if (!grid->viewport()->rect().contains(r))
        grid->scrollTo(next, QAbstractItemView::PositionAtTop);
}

bool DumpRules::GridKeyPress(const QString& text, int key, Qt::KeyboardModifiers modifiers)
{
    QTableView* grid = s.dd->RulesGrid;
    // Ctrl and Alt combinations are commands and access keys, never text.
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    if (key == Qt::Key_Tab) {
        if (grid->currentIndex().column() == 0)
            grid->setCurrentIndex(grid->currentIndex().siblingAtColumn(1));
        MoveToNextRow();
        return true;
    }
    if (text.isEmpty())
        return false; // navigation keys stay with the grid
    if (grid->currentIndex().isValid() && grid->currentIndex().column() == 0)
        grid->setCurrentIndex(grid->currentIndex().siblingAtColumn(1));
    // The whole typed text: a character outside the basic plane is two
    // code units, and half of one is no character at all.
    if (text.size() == 1 && text[0].unicode() <= 32)
        GridEdit(qint16(text[0].unicode()), true);
    else
        OpenOverlay(text);
    return true;
}

void DumpRules::CommitOverlay(int row)
{
    if (s.edit) // a locked overlay holds nothing typed
        s.dd->rules->setText(row, 1, BoxText(s.dd->txtgrdline));
}

void DumpRules::GridCurrentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QPlainTextEdit* overlay = s.dd->txtgrdline;
    if (!overlay->isHidden() && previous.isValid()) {
        // Leaving the cell commits the edit and stores the dump at once.
        CommitOverlay(previous.row());
        overlay->hide();
        StoreDumpRules(m_tag);
    }
    if (m_syncFieldList && current.isValid()) {
        const int item = GetListItemNumber(s.dd->rules->text(current.row(), 0));
        if (item > 0) {
            const QModelIndex listIndex = s.dd->targetFields->index(item - 1, 0);
            s.dd->lstTargetFields->scrollTo(listIndex);
            s.dd->lstTargetFields->setCurrentIndex(listIndex);
        }
    }
}

void DumpRules::GridGotFocus()
{
    QPlainTextEdit* overlay = s.dd->txtgrdline;
    const QModelIndex current = s.dd->RulesGrid->currentIndex();
    if (!overlay->isHidden() && current.isValid()) {
        CommitOverlay(current.row());
        overlay->hide();
    }
}

bool DumpRules::OverlayKeyDown(int key)
{
    if (key == Qt::Key_Escape) {
        s.dd->txtgrdline->hide(); // the cell keeps its old text
        s.dd->RulesGrid->setFocus(Qt::OtherFocusReason);
        return true;
    }
    if (key == Qt::Key_Tab) {
        // The focus moving to the grid commits the edit and moves one row on.
        s.dd->RulesGrid->setFocus(Qt::TabFocusReason);
        return true;
    }
    return false;
}

void DumpRules::OverlayLostFocus()
{
    CommitOpenEdit();
}

void DumpRules::CommitOpenEdit()
{
    QPlainTextEdit* overlay = s.dd->txtgrdline;
    if (overlay->isHidden())
        return;
    const QModelIndex current = s.dd->RulesGrid->currentIndex();
    if (current.isValid())
        CommitOverlay(current.row());
    MoveToNextRow();
    overlay->hide();
}

void DumpRules::SourceFieldsGotFocus()
{
    QTreeView* list = s.dd->lstSourceFields;
    if (s.dd->sourceFields->rowCount() > 0 && list->currentIndex().isValid())
        list->scrollTo(list->currentIndex());
}

// ---- commands -------------------------------------------------------------

void DumpRules::Map()
{
    CommitOpenEdit();
    const QModelIndex target = s.dd->lstTargetFields->currentIndex();
    if (!target.isValid() || !s.dd->lstTargetFields->selectionModel()->isRowSelected(target.row(), QModelIndex()))
        return;
    const FieldListModel* sources = s.dd->sourceFields;
    const FieldListModel* targets = s.dd->targetFields;
    QList<FieldEntry> ticked;
    for (int r = 0; r < sources->rowCount(); ++r)
        if (sources->isChecked(r))
            ticked.append({sources->cellText(r, 2), sources->cellText(r, 3)});
    const QString rule = BuildMappedRule(ticked, targets->cellText(target.row(), 4));
    if (!rule.isEmpty())
        SetRuleInGrid(FieldPartOf(targets->cellText(target.row(), 3)), rule);
    else
        s.ui.MsgBox(QStringLiteral("Please choose a source field to map"), MsgButtons::Ok, MsgIcon::None);
    s.dd->sourceFields->clearChecks();
}

void DumpRules::Guess()
{
    CommitOpenEdit();
    const FieldListModel* sources = s.dd->sourceFields;
    const FieldListModel* targets = s.dd->targetFields;
    if (sources->rowCount() == 0 || targets->rowCount() == 0)
        return;
    const RulesGridModel* grid = s.dd->rules;
    for (int r = 0; r < grid->rowCount(); ++r) {
        if (grid->text(r, 1).isEmpty())
            continue;
        const QString prompt = QStringLiteral("You may lose some/all Data of ") + s.dd->Details->title() +
                               QStringLiteral("\r\n Press 'Yes' to Proceed; 'No' to Cancel ");
        const QString title = QStringLiteral("Guessing rules for dump : ") + QString::number(SelectedDumpNumber());
        if (s.ui.MsgBox(prompt, MsgButtons::YesNo, MsgIcon::Critical, title) != MsgAnswer::Yes)
            return;
        break;
    }
    QList<FieldEntry> sourceEntries;
    sourceEntries.reserve(sources->rowCount());
    for (int r = 0; r < sources->rowCount(); ++r)
        sourceEntries.append({sources->cellText(r, 2), sources->cellText(r, 3)});
    QList<FieldEntry> targetEntries;
    targetEntries.reserve(targets->rowCount());
    for (int r = 0; r < targets->rowCount(); ++r)
        targetEntries.append({targets->cellText(r, 3), targets->cellText(r, 4)});
    for (const GuessedRule& g : GuessRules(sourceEntries, targetEntries))
        SetRuleInGrid(g.fieldName, g.rule);
    StoreDumpRules(m_tag);
}

void DumpRules::FuncBuild()
{
    CommitOpenEdit();
    if (s.dd->CmbDump->currentText().isEmpty())
        return;
    const QModelIndex current = s.dd->RulesGrid->currentIndex();
    const QString rule = current.isValid() ? s.dd->rules->text(current.row(), 1) : QString();
    Q_EMIT s.control->ShowFunctionBuilderPopUp(rule, s.doc.GetSourceTablesText());
}

} // namespace fb

namespace fb {

// ---- copying, rebinding and documenting dumps ---------------------------

void DumpRules::CopyDump()
{
    CommitOpenEdit();
    const qint16 target = SelectedDumpNumber();
    const QString answer = s.ui.InputBox(QStringLiteral("Please enter the dump number to be copied from: "),
                                         QStringLiteral("Copying rules to dump : ") + QString::number(target));
    if (answer.isEmpty())
        return;
    // A number that is not a 16-bit whole number is as invalid as a word.
    const auto source = str::ToInteger(answer);
    if (!str::IsNumeric(answer) || !source) {
        s.ui.MsgBox(QStringLiteral("Invalid Dump Number!"), MsgButtons::Ok, MsgIcon::Critical,
                    QStringLiteral("Copying Dumps"));
        return;
    }
    const Node from = s.doc.GetDumpNode(*source);
    if (!from) {
        s.ui.MsgBox(QStringLiteral("The entered dump number does not exists. "), MsgButtons::Ok,
                    MsgIcon::Exclamation, QStringLiteral("Copy Dumps"));
        return;
    }
    const QString sourceTable = from.attribute(QStringLiteral("TT"));
    Node to = s.doc.GetDumpNode(target);
    if (!to) {
        to = s.doc.CreateDumpNode(target);
        s.doc.SetNodeAttribute(to, QStringLiteral("TT"), sourceTable);
    }
    QString targetTable = to.attribute(QStringLiteral("TT"));
    if (targetTable.isEmpty()) {
        s.doc.SetNodeAttribute(to, QStringLiteral("TT"), sourceTable);
        targetTable = sourceTable;
    }
    if (targetTable.toUpper() != sourceTable.toUpper()) {
        s.ui.MsgBox(QStringLiteral("Dump ") + answer + QStringLiteral("  is associated with table: ") + sourceTable +
                        QStringLiteral(". So it is not possible to copy rules."),
                    MsgButtons::Ok, MsgIcon::Exclamation, QStringLiteral("Copying Dumps "));
        return;
    }
    if (!from.hasChildNodes()) {
        s.ui.MsgBox(QStringLiteral("No rules found for dump ") + answer, MsgButtons::Ok, MsgIcon::Exclamation,
                    QStringLiteral("Copying Dumps .."));
        return;
    }
    const QString confirm = QStringLiteral("Press 'OK' To Copy Dump ") + str::SignPadded(*source) +
                            QStringLiteral(" To Dump : ") + str::SignPadded(target);
    if (s.ui.MsgBox(confirm, MsgButtons::OkCancel, MsgIcon::Information, QStringLiteral("Copy Dumps")) !=
        MsgAnswer::Ok)
        return;
    s.doc.RemoveChildNodes(to);
    int copied = 0;
    for (const Node& child : from.childNodes()) { // none left when a dump is copied onto itself
        s.doc.AppendCopy(to, child);
        ++copied;
    }
    ShowDump(target);
    if (copied > 0)
        s.ui.MsgBox(QStringLiteral("Copying Of Dump: '") + answer + QStringLiteral("' To Dump '") +
                        QString::number(target) + QStringLiteral("'  Was  Successful!!"),
                    MsgButtons::Ok, MsgIcon::Information, QStringLiteral("Copy Dumps"));
    else
        s.ui.MsgBox(QStringLiteral("Source Dump Not Maintained "), MsgButtons::Ok, MsgIcon::Critical,
                    QStringLiteral("Copy Dumps"));
}

bool DumpRules::DumpHasRules(qint16 dump)
{
    for (const Node& child : s.doc.GetDumpNode(dump).childElements())
        if (!child.text().isEmpty() || !child.attribute(QStringLiteral("TEXT")).isEmpty())
            return true;
    return false;
}

void DumpRules::ChangeTargetTable()
{
    CommitOpenEdit();
    const qint16 number = SelectedDumpNumber();
    const auto answer = ChooseTargetTable(s.module, s.control, number, TableListOfSelector(),
                                          s.dd->CmbTargetTable->currentText());
    if (!answer)
        return;
    const QString present = s.dd->LBLTargetTableName->text();
    const QString chosen = *answer;
    if (present.toUpper() != chosen.toUpper()) {
        if (DumpHasRules(number)) {
            const QString n = str::SignPadded(number);
            const QString question = QStringLiteral("You are changing the association of dump") + n +
                                     QStringLiteral(" from table : ") + present + QStringLiteral(" to ") + chosen +
                                     QStringLiteral("\r\nYou lose the maintained rules of dump") + n +
                                     QStringLiteral(" for target table ") + present +
                                     QStringLiteral("\r\n Press 'Yes' to Proceed; 'No' to Cancel the Action");
            if (s.ui.MsgBox(question, MsgButtons::YesNo, MsgIcon::Critical) != MsgAnswer::Yes)
                return;
        }
        const Node dump = s.doc.GetDumpNode(number);
        s.doc.SetNodeAttribute(dump, QStringLiteral("TT"), chosen);
        s.doc.RemoveChildNodes(dump);
        AddDefaultRule(dump, chosen);
        s.dd->LBLTargetTableName->setText(chosen);
        ShowDump(number);
    }
    RefreshTargetFields();
}

Node DumpRules::CurrentRuleElement(QString* fieldLabel)
{
    if (s.dd->CmbDump->currentText().isEmpty())
        return Node();
    const Node dump = s.doc.GetNode(s.doc.SectionPath(QStringLiteral("DUMP")), QStringLiteral("No"),
                                    QString::number(str::ToInteger(m_tag).value_or(0)));
    if (!dump)
        return Node();
    const QModelIndex current = s.dd->RulesGrid->currentIndex();
    const QString label =
        ToStoredFieldName(FieldPartOf(current.isValid() ? s.dd->rules->text(current.row(), 0) : QString()));
    if (fieldLabel)
        *fieldLabel = label;
    if (label.isEmpty())
        return Node();
    return dump.childElement(ToStoredFieldName(label).toUpper());
}

bool DumpRules::FieldHasText()
{
    return !CurrentRuleElement(nullptr).attribute(QStringLiteral("TEXT")).isEmpty();
}

void DumpRules::DumpText()
{
    CommitOpenEdit();
    if (s.dd->CmbDump->currentText().isEmpty())
        return;
    if (!s.doc.GetNode(s.doc.SectionPath(QStringLiteral("DUMP")), QStringLiteral("No"),
                       QString::number(str::ToInteger(m_tag).value_or(0))))
        return;
    QString label;
    const Node rule = CurrentRuleElement(&label);
    if (label.isEmpty())
        return;
    if (!rule) {
        s.ui.MsgBox(QStringLiteral("You Can Maintain Text, only to fields having a rule "), MsgButtons::Ok,
                    MsgIcon::Information);
        return;
    }
    const QString stored = rule.attribute(QStringLiteral("TEXT"));
    const QString working = stored.isEmpty() ? DocTextTemplate() : stored;
    const QString title = QStringLiteral("Text For Field : '") + label + QStringLiteral("'   Dump:") +
                          QString::number(SelectedDumpNumber());
    auto text = EditDocText(s.module, s.control, title, MappingDocument::DisplayText(working));
    if (!text)
        return;
    // The untouched template is no text at all, whatever its line breaks.
    if (ToEditorText(*text) == ToEditorText(DocTextTemplate()))
        text->clear();
    s.doc.SetNodeAttribute(rule, QStringLiteral("TEXT"), *text);
}

void DumpRules::EditRule()
{
    CommitOpenEdit();
    const QModelIndex current = s.dd->RulesGrid->currentIndex();
    s.dd->CmdEditRule->setEnabled(false);
    QString text = current.isValid() ? s.dd->rules->text(current.row(), 1) : QString();
    if (EditExternally(s, QStringLiteral("Rule.qbx"), text) && current.isValid())
        s.dd->rules->setText(current.row(), 1, text); // reaches the dump when the grid is stored
    s.dd->CmdEditRule->setEnabled(true);
    s.dd->RulesGrid->setFocus(Qt::OtherFocusReason);
}

} // namespace fb
