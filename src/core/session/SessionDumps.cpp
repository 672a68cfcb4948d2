// The "Define Dumps" tab: the dump selector, a dump's target table, the two
// field lists, and the commands that work on whole dumps (copy, rebind,
// documentation text).

#include "DumpChange_p.h"
#include "core/document/LineBreaks.h"
#include "core/document/TextRules.h"
#include "core/rules/DumpStore.h"

namespace fb {

namespace {
const QString kDetailsCaption = QStringLiteral("F&ields of Dump: ");

// The template offered for a rule documentation that has no text yet.
QString docTextTemplate()
{
    return QStringLiteral("Field Mapping:\n\n\n\n\n\n\nTechnical Notes:");
}
} // namespace

// ---- the field lists -----------------------------------------------------------

const QList<FieldRow>& MappingSession::listedSourceFields()
{
    // Built from the document again only when the list of source tables
    // changed: the tables' definitions are the host's and stay as they are.
    const QString listed = m_doc.GetSourceTablesText();
    if (!m_sourceFieldsKnown || listed != m_sourceFieldsOf) {
        m_sourceFieldRows.clear();
        for (const Node& t : m_doc.ListedSourceTables())
            m_sourceFieldRows.append(FieldRowsOf(t));
        QStringList names;
        names.reserve(m_sourceFieldRows.size());
        for (const FieldRow& row : m_sourceFieldRows)
            names.append(row.name);
        names.sort(Qt::CaseInsensitive);
        names.removeDuplicates();
        m_sourceFieldNames = names;
        m_sourceFieldsOf = listed;
        m_sourceFieldsKnown = true;
    }
    return m_sourceFieldRows;
}

QStringList MappingSession::sourceFieldNames()
{
    listedSourceFields();
    return m_sourceFieldNames;
}

void MappingSession::refillSourceFields()
{
    // The fields of the listed source tables, one table after the other; the
    // list starts afresh (order and ticks) every time.
    m_sourceFields.setRows(listedSourceFields());
}

int MappingSession::GetListItemNumber(const QString& fieldName) const
{
    for (int r = 0; r < m_targetFields.rowCount(); ++r)
        if (m_targetFields.cellText(r, 3) == fieldName)
            return r + 1;
    return -1;
}

void MappingSession::setTargetFieldSelected(int row)
{
    m_targetSelected = row;
}

void MappingSession::TargetFieldClicked(int row)
{
    // The dump whose fields are shown is the one the Details caption names.
    const QStringList pieces = m_details.split(u':');
    const qint16 shown = pieces.size() < 2 ? 0 : str::ToInteger(pieces[1]).value_or(0);
    const qint16 selected = SelectedDumpNumber();
    if (shown == selected) {
        const QString name = m_targetFields.cellText(row, 3);
        if (!name.isEmpty())
            SelectGridRowOfField(name);
    } else {
        ShowDump(selected);
    }
}

// ---- dumps -------------------------------------------------------------------

QStringList MappingSession::dumpEntries() const
{
    QStringList entries;
    for (qsizetype i = 0; i < m_dumpNumbers.size(); ++i)
        entries.append(str::TwoDigits(m_dumpNumbers[i]) + QStringLiteral("--") + m_dumpTexts[i]);
    return entries;
}

qint16 MappingSession::SelectedDumpNumber() const
{
    Q_ASSERT(m_dumpIndex >= -1 && m_dumpIndex < m_dumpNumbers.size());
    Q_ASSERT(m_dumpNumbers.size() == m_dumpTexts.size());
    return m_dumpIndex >= 0 ? m_dumpNumbers[m_dumpIndex] : 0;
}

QString MappingSession::selectedDumpText() const
{
    return m_dumpIndex >= 0 ? dumpEntries().at(m_dumpIndex) : QString();
}

void MappingSession::ClearDumps()
{
    m_dumpNumbers.clear();
    m_dumpTexts.clear();
    m_dumpIndex = -1;
    m_tag.clear();
    Q_EMIT dumpsChanged();
    closeOverlay();
    m_rules.setRows({});
    m_gridRow = m_gridColumn = -1;
    m_details = kDetailsCaption;
    m_dumpToolTip.clear();
    Q_EMIT detailsChanged();
    m_targetTableName.clear();
    Q_EMIT targetTablesChanged();
}

void MappingSession::FillDumpSelector()
{
    m_dumpNumbers.clear();
    m_dumpTexts.clear();
    m_dumpIndex = -1;
    const DumpReferences& refs = m_doc.ReferencedDumps();
    if (!refs.isEmpty()) {
        m_dumpNumbers = refs.numbers;
        m_dumpTexts = refs.texts;
    }
    Q_EMIT dumpsChanged();
}

void MappingSession::setDumpIndex(int index)
{
    const int i = index >= 0 && index < m_dumpNumbers.size() ? index : -1;
    if (i == m_dumpIndex)
        return;
    m_dumpIndex = i;
    Q_EMIT dumpsChanged();
}

void MappingSession::FillTargetTableSelector()
{
    m_targetTables = m_doc.MscriptTables();
    m_targetTableIndex = m_targetTables.isEmpty() ? -1 : 0;
    Q_EMIT targetTablesChanged();
}

void MappingSession::setTargetTableIndex(int index)
{
    m_targetTableIndex = index >= 0 && index < m_targetTables.size() ? index : -1;
}

void MappingSession::StoreDumpRules(const QString& dumpNumber)
{
    if (dumpNumber.isEmpty() || dumpNumber == u"0")
        return;
    const auto number = str::ToInteger(dumpNumber);
    if (!number)
        return;
    Node dump = m_doc.GetDumpNode(*number);
    if (!dump)
        dump = m_doc.CreateDumpNode(*number);

    if (m_multiTarget) {
        const QString table = m_targetTables.value(m_targetTableIndex);
        if (table.isEmpty()) {
            m_ui.MsgBox(QStringLiteral("TargetTable for the Dump Not chosen. Please Choose One Now"),
                        MsgButtons::Ok, MsgIcon::Critical);
            // To "Define Dumps" without its entry steps: they would reload
            // the grid before the rules being stored are written.
            setTab(1);
            requestFocus(Focus::TargetTableSelector);
        } else {
            m_doc.SetDumpTargetTable(dump, table);
        }
    }
    StoreRules(m_doc, dump, m_doc.GetTargetTableNode(*number), m_rules.rowCount(),
               [this](int row) { return m_rules.text(row, 1); });
}

void MappingSession::LoadDumpRules(qint16 number)
{
    m_rules.clearRules();
    if (m_multiTarget)
        SelectDumpTargetTable(number);
    if (!m_doc.GetDumpNode(number)) {
        m_tag = str::TwoDigits(number);
        return;
    }
    for (const GridRule& rule : RulesOfDump(m_doc, number))
        if (rule.row >= 0 && rule.row < m_rules.rowCount())
            m_rules.setText(rule.row, 1, rule.text);
    Q_EMIT gridScrollToTop();

    if (m_dumpIndex < 0 && !m_dumpNumbers.isEmpty())
        setDumpIndex(0);
    const int selected = SelectedDumpNumber();
    const auto key = str::ToInteger(selectedDumpText().section(QStringLiteral("--"), 0, 0));
    m_details =
        kDetailsCaption + QString::number(selected) + u':' + m_doc.KnownDumps().value(key.value_or(0));
    m_dumpToolTip = m_details;
    Q_EMIT detailsChanged();
}

void MappingSession::ShowDump(qint16 number)
{
    m_tag = QString::number(number);
    const Node table = m_doc.GetTargetTableNode(number);
    refillSourceFields();
    m_targetFields.setRows(FieldRowsOf(table));
    m_targetSelected = -1;
    LayoutGrid(table);
    LoadDumpRules(number);
}

void MappingSession::SelectDumpTargetTable(qint16 number)
{
    const QString table = MappingDocument::DumpTargetTable(m_doc.GetDumpNode(number));
    m_targetTableIndex = -1;
    for (int i = 0; i < m_targetTables.size() && !table.isEmpty(); ++i)
        if (m_targetTables[i].compare(table, Qt::CaseInsensitive) == 0) {
            m_targetTableIndex = i;
            break;
        }
    m_targetTableName = table;
    Q_EMIT targetTablesChanged();
}

void MappingSession::RefreshTargetFields()
{
    m_targetFields.setRows(FieldRowsOf(m_doc.GetTargetTableNode(0, m_tag)));
    m_targetSelected = -1;
    SelectDumpTargetTable(str::ToInteger(m_tag).value_or(0));
}

QString MappingSession::TableListOfSelector() const
{
    QString list;
    for (const QString& table : m_targetTables)
        list += table + u';';
    return list;
}

void MappingSession::BindUnboundDumps()
{
    if (!m_multiTarget)
        return;
    for (const qint16 number : QList<qint16>(m_dumpNumbers)) {
        const Node dump = m_doc.GetDumpNode(number);
        if (!dump || !MappingDocument::DumpTargetTable(dump).isEmpty() || m_dialogOpen)
            continue;
        // A cancelled dialog binds the first table.
        m_dialogOpen = true;
        const QString chosen = m_ui.ChooseTargetTable(number, m_targetTables, m_targetTables.value(0));
        m_dialogOpen = false;
        BindDumpToTable(m_doc, dump, chosen);
        // Its fields are new to the checks.
        scheduleDumpCheck(number);
    }
}

void MappingSession::DumpChosen(int index)
{
    CommitOpenEdit();
    if (!m_tag.isEmpty())
        StoreDumpRules(m_tag);
    setDumpIndex(index);
    const qint16 number = SelectedDumpNumber();
    if (m_multiTarget) {
        m_targetTableName = MappingDocument::DumpTargetTable(m_doc.GetDumpNode(number));
        Q_EMIT targetTablesChanged();
    }
    m_tag = QString::number(number);
    requestFocus(Focus::TargetFields);
}

void MappingSession::clickCommand1()
{
    CommitOpenEdit();
    if (!m_tag.isEmpty())
        StoreDumpRules(m_tag);
    if (m_dumpIndex < 0)
        return;
    const qint16 number = SelectedDumpNumber();
    if (m_multiTarget) {
        m_targetTableName = MappingDocument::DumpTargetTable(m_doc.GetDumpNode(number));
        Q_EMIT targetTablesChanged();
    }
    m_tag = QString::number(number);
}

void MappingSession::DumpSelectorLostFocus()
{
    const QStringList pieces = m_details.split(u':');
    if (pieces.size() < 2 || m_dumpIndex < 0)
        return;
    const QString selected = QString::number(SelectedDumpNumber());
    if (str::Trim(pieces[1]) != selected) {
        m_tag = selected;
        ShowDump(SelectedDumpNumber());
    }
}

// ---- commands on whole dumps ----------------------------------------------------

void MappingSession::clickCmdCopyDump()
{
    DumpChange change(*this, DumpAction::Copy);
    CommitOpenEdit();
    const qint16 target = SelectedDumpNumber();
    const QString answer =
        m_ui.InputBox(QStringLiteral("Please enter the dump number to be copied from: "),
                      QStringLiteral("Copying rules to dump : ") + QString::number(target));
    if (answer.isEmpty())
        return;
    // A number that is not a 16-bit whole number is as invalid as a word.
    const auto source = str::ToInteger(answer);
    if (!str::IsNumeric(answer) || !source) {
        m_ui.MsgBox(QStringLiteral("Invalid Dump Number!"), MsgButtons::Ok, MsgIcon::Critical,
                    QStringLiteral("Copying Dumps"));
        return;
    }
    change.setDetail(QString::number(*source));
    const Node from = m_doc.GetDumpNode(*source);
    if (!from) {
        m_ui.MsgBox(QStringLiteral("The entered dump number does not exists. "), MsgButtons::Ok,
                    MsgIcon::Exclamation, QStringLiteral("Copy Dumps"));
        return;
    }
    const QString sourceTable = MappingDocument::DumpTargetTable(from);
    Node to = m_doc.GetDumpNode(target);
    if (!to) {
        to = m_doc.CreateDumpNode(target);
        m_doc.SetDumpTargetTable(to, sourceTable);
    }
    QString targetTable = MappingDocument::DumpTargetTable(to);
    if (targetTable.isEmpty()) {
        m_doc.SetDumpTargetTable(to, sourceTable);
        targetTable = sourceTable;
    }
    if (str::Upper(targetTable) != str::Upper(sourceTable)) {
        m_ui.MsgBox(QStringLiteral("Dump ") + answer + QStringLiteral("  is associated with table: ") +
                        sourceTable + QStringLiteral(". So it is not possible to copy rules."),
                    MsgButtons::Ok, MsgIcon::Exclamation, QStringLiteral("Copying Dumps "));
        return;
    }
    if (!from.hasChildNodes()) {
        m_ui.MsgBox(QStringLiteral("No rules found for dump ") + answer, MsgButtons::Ok, MsgIcon::Exclamation,
                    QStringLiteral("Copying Dumps .."));
        return;
    }
    const QString confirm = QStringLiteral("Press 'OK' To Copy Dump ") + str::SignPadded(*source) +
                            QStringLiteral(" To Dump : ") + str::SignPadded(target);
    if (m_ui.MsgBox(confirm, MsgButtons::OkCancel, MsgIcon::Information, QStringLiteral("Copy Dumps")) !=
        MsgAnswer::Ok)
        return;
    const int copied = CopyDumpRules(m_doc, from, to);
    ShowDump(target);
    if (copied > 0)
        m_ui.MsgBox(QStringLiteral("Copying Of Dump: '") + answer + QStringLiteral("' To Dump '") +
                        QString::number(target) + QStringLiteral("'  Was  Successful!!"),
                    MsgButtons::Ok, MsgIcon::Information, QStringLiteral("Copy Dumps"));
    else
        m_ui.MsgBox(QStringLiteral("Source Dump Not Maintained "), MsgButtons::Ok, MsgIcon::Critical,
                    QStringLiteral("Copy Dumps"));
}

void MappingSession::clickCmdChange()
{
    DumpChange change(*this, DumpAction::Bind);
    CommitOpenEdit();
    if (m_dialogOpen)
        return;
    const qint16 number = SelectedDumpNumber();
    m_dialogOpen = true;
    const QString chosen =
        m_ui.ChooseTargetTable(number, m_targetTables, m_targetTables.value(m_targetTableIndex));
    m_dialogOpen = false;
    const QString present = m_targetTableName;
    change.setDetail(chosen);
    if (str::Upper(present) != str::Upper(chosen)) {
        if (DumpHasRules(m_doc.GetDumpNode(number))) {
            const QString n = str::SignPadded(number);
            const QString question = QStringLiteral("You are changing the association of dump") + n +
                                     QStringLiteral(" from table : ") + present + QStringLiteral(" to ") +
                                     chosen + QStringLiteral("\r\nYou lose the maintained rules of dump") +
                                     n + QStringLiteral(" for target table ") + present +
                                     QStringLiteral("\r\n Press 'Yes' to Proceed; 'No' to Cancel the Action");
            if (m_ui.MsgBox(question, MsgButtons::YesNo, MsgIcon::Critical) != MsgAnswer::Yes)
                return;
        }
        RebindDump(m_doc, m_doc.GetDumpNode(number), chosen);
        m_targetTableName = chosen;
        Q_EMIT targetTablesChanged();
        ShowDump(number);
    }
    RefreshTargetFields();
}

Node MappingSession::CurrentRuleElement(QString* fieldLabel)
{
    if (selectedDumpText().isEmpty())
        return Node();
    const Node dump = m_doc.GetDumpNode(str::ToInteger(m_tag).value_or(0));
    if (!dump)
        return Node();
    const QString label = ToStoredFieldName(FieldPartOf(m_rules.text(m_gridRow, 0)));
    if (fieldLabel)
        *fieldLabel = label;
    if (label.isEmpty())
        return Node();
    if (const Node rule = dump.childElement(str::Upper(ToStoredFieldName(label))))
        return rule;
    // A name that lower case does not give back whole ("İ", the Kelvin
    // sign): the element of the row's own field, named as the table names it.
    Node field = m_doc.GetTargetTableNode(str::ToInteger(m_tag).value_or(0)).firstChildElement();
    for (int row = 0; field && row < m_gridRow; ++row)
        field = field.nextSiblingElement();
    return field ? dump.childElement(field.name()) : Node();
}

void MappingSession::clickCmdDumpText()
{
    DumpChange change(*this, DumpAction::Documentation);
    CommitOpenEdit();
    if (selectedDumpText().isEmpty() || !m_doc.GetDumpNode(str::ToInteger(m_tag).value_or(0)))
        return;
    QString label;
    const Node rule = CurrentRuleElement(&label);
    if (label.isEmpty())
        return;
    change.setDetail(m_rules.text(m_gridRow, 0));
    if (!rule) {
        m_ui.MsgBox(QStringLiteral("You Can Maintain Text, only to fields having a rule "), MsgButtons::Ok,
                    MsgIcon::Information);
        return;
    }
    const QString stored = MappingDocument::DocText(rule);
    const QString working = stored.isEmpty() ? docTextTemplate() : stored;
    const QString title = QStringLiteral("Text For Field : '") + label + QStringLiteral("'   Dump:") +
                          QString::number(SelectedDumpNumber());
    auto text = editDocText(title, MappingDocument::DisplayText(working));
    if (!text)
        return;
    // The untouched template is no text at all, whatever its line breaks.
    if (LfText(*text) == docTextTemplate())
        text->clear();
    m_doc.SetDocText(rule, *text);
}

} // namespace fb
