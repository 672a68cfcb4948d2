#include "QueryScripts.h"

#include "ExternalEditor.h"
#include "MappingObjectPage.h"
#include "ScriptEditor.h"
#include "control/BoxText.h"
#include "control/ControlState.h"
#include "core/dictionary/FieldRules.h"
#include "core/document/TextRules.h"
#include "forms/FrmTxtDoc.h"
#include "rules/DefineDumpsPage.h"

#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeView>

namespace fb {

QueryScripts::QueryScripts(ControlState& state) : s(state) {}

void QueryScripts::Connect()
{
    MappingObjectPage* mo = s.mo;
    QObject::connect(mo->CmdSelectSource, &QPushButton::clicked, mo,
                     [this] { Q_EMIT s.control->ShowSourceTablesPopUp(s.doc.GetSourceTablesText()); });
    QObject::connect(mo->lstMigrateSource, &QTreeView::clicked, mo,
                     [this](const QModelIndex& i) { MigrateSourceClicked(i); });
    QObject::connect(mo->txtMainQuery, &ScriptEditor::textChanged, mo, [this] { ApplyMainQueryLock(); });
    QObject::connect(mo->txtPreCondition, &ScriptEditor::textChanged, mo, [this] {
        if (!s.edit)
            s.mo->CmdPreDoc->setEnabled(HasPreconditionText());
    });
    QObject::connect(mo->CmdBuildPre, &QPushButton::clicked, mo, [this] { onBuildPre(); });
    QObject::connect(mo->cmdBuildMQ, &QPushButton::clicked, mo, [this] { onBuildMQ(); });
    QObject::connect(mo->CmdPreDoc, &QPushButton::clicked, mo, [this] { onPreDoc(); });
    QObject::connect(mo->CmdMQDoc, &QPushButton::clicked, mo, [this] { onMQDoc(); });
    QObject::connect(mo->CmdFunction, &QPushButton::clicked, mo, [this] { onFunction(); });
    QObject::connect(mo->CmdVariables, &QPushButton::clicked, mo, [this] { onVariables(); });
    QObject::connect(mo->CmdOk, &QPushButton::clicked, mo, [this] { onOk(); });
    QObject::connect(mo->CmdCancel, &QPushButton::clicked, mo, [this] { onCancel(); });
    QObject::connect(mo->CmdPreEditor, &QPushButton::clicked, mo, [this] { EditPreconditionExternally(); });
    QObject::connect(mo->CmdMqEditor, &QPushButton::clicked, mo, [this] { EditMainQueryExternally(); });
    QObject::connect(mo->CmdFuncEditor, &QPushButton::clicked, mo, [this] { EditFunctionsOrVariablesExternally(); });
    QObject::connect(mo->PicMQResize, &QAbstractButton::clicked, mo, [this] { ToggleMainQuerySize(); });
    QObject::connect(mo->PicPreResize, &QAbstractButton::clicked, mo, [this] { ToggleMainQuerySize(); });
    QObject::connect(mo->txtPreCondition, &ScriptEditor::tabWithModifiers, mo, [this](Qt::KeyboardModifiers m) {
        if (m == Qt::ControlModifier)
            s.mo->CmdSelectSource->setFocus(Qt::TabFocusReason);
        else if (m == Qt::ShiftModifier)
            s.mo->lstSourceTables->setFocus(Qt::BacktabFocusReason);
    });
    QObject::connect(mo->txtMainQuery, &ScriptEditor::tabWithModifiers, mo, [this](Qt::KeyboardModifiers m) {
        if (m == Qt::ControlModifier)
            s.mo->cmdBuildMQ->setFocus(Qt::TabFocusReason);
        else if (m == Qt::ShiftModifier)
            s.mo->lstMigrateSource->setFocus(Qt::BacktabFocusReason);
    });
}

// ---- source tables --------------------------------------------------------

void QueryScripts::ClearSourceTableList()
{
    s.mo->sourceTablesModel->removeRows(0, s.mo->sourceTablesModel->rowCount());
}

void QueryScripts::RefreshSourceTableList()
{
    QStandardItemModel* model = s.mo->sourceTablesModel;
    QStringList pieces = str::Split(s.doc.GetSourceTablesText(), u',');
    for (QString& p : pieces) {
        p.remove(u'\n');
        p.remove(u'\r');
    }
    if (model->rowCount() == 0) {
        // Every piece gets a row, empty ones too.
        for (const QString& p : pieces)
            model->appendRow(new QStandardItem(p));
    } else {
        QSet<QString> present;
        for (int r = 0; r < model->rowCount(); ++r)
            present.insert(model->item(r)->text());
        for (const QString& p : pieces) {
            if (!present.contains(p) && !str::Trim(p).isEmpty()) {
                model->appendRow(new QStandardItem(p));
                present.insert(p);
            }
        }
    }
    if (!s.doc.GetSourceTablesNode())
        s.doc.SetSourceTablesText(s.doc.GetSourceTablesText());
    if (model->rowCount() > 0) {
        // Each row joins the text only once the text is no longer empty, so
        // leading empty rows leave no separator behind.
        QString text;
        for (int r = 0; r < model->rowCount(); ++r) {
            const QString row = model->item(r)->text();
            text = text.isEmpty() ? row : text + u',' + row;
        }
        s.doc.SetSourceTablesText(text);
    }
    if (s.dd)
        s.dd->lstSourceFields->viewport()->update();

    // The fields of the listed source tables are offered for completion.
    QStringList fields;
    for (const Node& t : s.doc.ListedSourceTables())
        for (Node f = t.firstChildElement(); f; f = f.nextSiblingElement())
            fields.append(QualifiedFieldName(t, f));
    for (ScriptEditor* e : {s.mo->txtPreCondition, s.mo->txtMainQuery, s.mo->txtFunctions, s.mo->txtVariables})
        e->setCompletionWords(fields);
}

void QueryScripts::DeleteSelectedSourceTable()
{
    const QModelIndex current = s.mo->lstSourceTables->currentIndex();
    if (!current.isValid() || !s.mo->lstSourceTables->selectionModel()->isSelected(current))
        return;
    QStandardItemModel* model = s.mo->sourceTablesModel;
    model->removeRow(current.row());
    QStringList rows;
    for (int r = 0; r < model->rowCount(); ++r)
        rows.append(model->item(r)->text());
    s.control->setSourceTables(rows.join(u','));
    RefreshSourceTableList();
}

void QueryScripts::ReconcileSourceTables()
{
    s.doc.MigrateTables() = QStringList{QString()};
    s.scanner.ParseMigrateTables(s.doc.GetPreconditionText());
    bool verdict = true;
    const QStringList sources = str::Split(s.doc.GetSourceTablesText(), u',');
    const QStringList migrate = s.doc.MigrateTables();
    if (str::Trim(migrate.first()).isEmpty()) {
        ShowMigrateQuery(QString());
        FillMigrateSourceList();
        return;
    }
    bool allListed = true;
    for (const QString& name : migrate) {
        if (!ListContains(sources, name)) {
            const QString text = s.doc.GetSourceTablesText();
            s.control->setSourceTables(text.isEmpty() ? name : text + u',' + name);
            verdict = false;
            allListed = false;
            break; // one missing table per run
        }
    }
    if (allListed) {
        for (const QString& name : migrate) {
            if (!s.doc.GetSourceTableNode(name)) {
                verdict = false;
                break;
            }
        }
    }
    s.MainTab->setTabEnabled(1, verdict);
    if (!s.doc.MigrateTables().contains(s.mainQueryTable))
        ShowMigrateQuery(s.doc.MigrateTables().first());
    FillMigrateSourceList();
}

// ---- migrate sources and main query ---------------------------------------

void QueryScripts::FillMigrateSourceList()
{
    QStandardItemModel* model = s.mo->migrateSourceModel;
    model->removeRows(0, model->rowCount());
    if (!s.doc.HasMigrateTables())
        return;
    for (const QString& table : s.doc.MigrateTables()) {
        model->appendRow(new QStandardItem(QStringLiteral("migrate ") + table));
        model->appendRow(new QStandardItem(QString()));
    }
    ApplyMainQueryLock();
}

void QueryScripts::ShowMigrateQuery(const QString& table)
{
    if (!table.isEmpty()) {
        SetBoxText(s.mo->txtMainQuery, MappingDocument::DisplayText(s.doc.GetQueryText(table)));
        s.mainQueryTable = table;
    } else {
        SetBoxText(s.mo->txtMainQuery, QString());
        s.mainQueryTable.clear();
    }
    if (!s.edit)
        s.mo->CmdMQDoc->setEnabled(HasQueryText());
    ApplyMainQueryLock();
}

void QueryScripts::StoreMainQuery()
{
    s.doc.SaveQueryText(s.mainQueryTable, BoxText(s.mo->txtMainQuery));
    s.scanner.CollectDumpReferences();
}

bool QueryScripts::HasQueryText()
{
    return !s.doc.GetQueryNode(s.mainQueryTable).attribute(QStringLiteral("TEXT")).isEmpty();
}

void QueryScripts::MigrateSourceClicked(const QModelIndex& index)
{
    const QString row = index.data().toString();
    if (row.isEmpty())
        return;
    if (!s.mainQueryTable.isEmpty())
        s.doc.SaveQueryText(s.mainQueryTable, BoxText(s.mo->txtMainQuery));
    const int at = str::InStrText(row, QStringLiteral("migrate "));
    const QString table = str::Trim(str::Mid(row, at + 8));
    SetBoxText(s.mo->txtMainQuery, MappingDocument::DisplayText(s.doc.GetQueryText(table)));
    s.mainQueryTable = table;
}

void QueryScripts::ApplyMainQueryLock()
{
    if (!s.edit)
        s.mo->CmdMQDoc->setEnabled(HasQueryText());
    s.mo->txtMainQuery->setReadOnly(s.mo->migrateSourceModel->rowCount() == 0 || !s.edit);
}

// ---- precondition ---------------------------------------------------------

void QueryScripts::ShowPrecondition()
{
    SetBoxText(s.mo->txtPreCondition, MappingDocument::DisplayText(s.doc.GetPreconditionText()));
    if (!s.edit)
        s.mo->CmdPreDoc->setEnabled(HasPreconditionText());
}

void QueryScripts::StorePrecondition()
{
    if (!s.doc.GetPreconditionNode())
        return; // the element is never created here
    s.doc.SetPreconditionText(BoxText(s.mo->txtPreCondition));
    ReconcileSourceTables();
}

bool QueryScripts::HasPreconditionText()
{
    return !s.doc.GetPreconditionNode().attribute(QStringLiteral("TEXT")).isEmpty();
}

void QueryScripts::onBuildPre()
{
    Q_EMIT s.control->ShowConditionBuilderPopUp(s.doc.GetPreconditionText(), s.doc.GetSourceTablesText());
}

void QueryScripts::onBuildMQ()
{
    if (s.mainQueryTable.isEmpty())
        return;
    Q_EMIT s.control->ShowQueryBuilderPopUp(BoxText(s.mo->txtMainQuery), s.mainQueryTable);
}

void QueryScripts::onPreDoc()
{
    const Node prec = s.doc.GetPreconditionNode();
    if (!prec)
        return;
    const QString text = MappingDocument::DisplayText(prec.attribute(QStringLiteral("TEXT")));
    if (const auto result = EditDocText(s.module, s.control, QStringLiteral("Precondition Text"), text))
        s.doc.SetNodeAttribute(s.doc.GetPreconditionNode(), QStringLiteral("TEXT"), *result);
}

void QueryScripts::onMQDoc()
{
    if (s.mainQueryTable.isEmpty() || !s.doc.GetQueryNode(s.mainQueryTable))
        return;
    const QString table = s.mainQueryTable;
    const QString text = MappingDocument::DisplayText(s.doc.GetQueryNode(table).attribute(QStringLiteral("TEXT")));
    const QString title = QStringLiteral("Text for Migrate:") + s.doc.TableName();
    if (const auto result = EditDocText(s.module, s.control, title, text))
        s.doc.SetNodeAttribute(s.doc.GetQueryNode(table), QStringLiteral("TEXT"), *result);
}

// ---- functions and variables ----------------------------------------------

void QueryScripts::SwitchScriptView(bool showPrecondition, bool keepEdits)
{
    MappingObjectPage* mo = s.mo;
    // Writing back the text as it is stored never creates a section that the
    // document did not have.
    const auto writeBack = [this](const QString& section, const QString& stored, const QString& text,
                                  bool (MappingDocument::*set)(const QString&)) {
        if (text != stored || s.doc.GetNode(s.doc.SectionPath(section)))
            (s.doc.*set)(text);
    };
    if (mo->txtFunctions->isVisibleTo(mo)) {
        mo->txtFunctions->hide();
        const QString stored = s.doc.GetFunctionsText();
        writeBack(QStringLiteral("FUNCTIONS"), stored, keepEdits ? BoxText(mo->txtFunctions) : stored,
                  &MappingDocument::SetFunctionsText);
    }
    if (mo->txtVariables->isVisibleTo(mo)) {
        mo->txtVariables->hide();
        const QString stored = s.doc.GetVariablesText();
        writeBack(QStringLiteral("VAR"), stored, keepEdits ? BoxText(mo->txtVariables) : stored,
                  &MappingDocument::SetVariablesText);
    }
    mo->ShowArrangement(showPrecondition);
}

void QueryScripts::onFunction()
{
    SetBoxText(s.mo->txtFunctions, MappingDocument::DisplayText(s.doc.GetFunctionsText()));
    SwitchScriptView(false, false);
    s.mo->txtFunctions->show();
    s.mo->lblPreCondition->setText(QStringLiteral("Functions"));
    s.mo->txtFunctions->setFocus(Qt::OtherFocusReason);
    if (s.edit)
        Q_EMIT s.control->SaveDoneDisabled();
}

void QueryScripts::onVariables()
{
    QString text = s.doc.GetVariablesText();
    text.replace(QStringLiteral("~|~"), QStringLiteral("\t"));
    text.replace(QStringLiteral("~^~"), QStringLiteral("\r\n"));
    SetBoxText(s.mo->txtVariables, MappingDocument::DisplayText(text));
    SwitchScriptView(false, false);
    s.mo->txtVariables->show();
    s.mo->lblPreCondition->setText(QStringLiteral("Variables / Includes "));
    s.mo->txtVariables->setFocus(Qt::OtherFocusReason);
    if (s.edit)
        Q_EMIT s.control->SaveDoneDisabled();
}

void QueryScripts::onOk()
{
    SwitchScriptView(true, true);
    if (s.edit)
        Q_EMIT s.control->SaveDoneEnabled();
}

void QueryScripts::onCancel()
{
    SwitchScriptView(true, false);
    s.mo->txtPreCondition->setFocus(Qt::OtherFocusReason);
    if (s.edit)
        Q_EMIT s.control->SaveDoneEnabled();
}

// ---- external editor ------------------------------------------------------

void QueryScripts::EditPreconditionExternally()
{
    s.mo->CmdPreEditor->setEnabled(false);
    QString text = BoxText(s.mo->txtPreCondition);
    if (EditExternally(s, QStringLiteral("Pre.qbx"), text)) {
        SetBoxText(s.mo->txtPreCondition, text);
        StorePrecondition();
    }
    s.mo->CmdPreEditor->setEnabled(true);
    s.mo->txtPreCondition->setFocus(Qt::OtherFocusReason);
}

void QueryScripts::EditMainQueryExternally()
{
    s.mo->CmdMqEditor->setEnabled(false);
    QString text = BoxText(s.mo->txtMainQuery);
    if (EditExternally(s, QStringLiteral("MQ.qbx"), text))
        SetBoxText(s.mo->txtMainQuery, text);
    s.mo->CmdMqEditor->setEnabled(true);
}

void QueryScripts::EditFunctionsOrVariablesExternally()
{
    const bool functions = s.mo->lblPreCondition->text() == u"Functions";
    ScriptEditor* box = functions ? s.mo->txtFunctions : s.mo->txtVariables;
    s.mo->CmdFuncEditor->setEnabled(false);
    QString text = BoxText(box);
    if (EditExternally(s, functions ? QStringLiteral("func.qbx") : QStringLiteral("var.qbx"), text))
        SetBoxText(box, text);
    s.mo->CmdFuncEditor->setEnabled(true);
    box->setFocus(Qt::OtherFocusReason);
}

// ---- splitter -------------------------------------------------------------

void QueryScripts::ToggleMainQuerySize()
{
    s.mo->setMainQueryEnlarged(!s.mo->mainQueryEnlarged());
    s.mo->ShowArrangement(true);
}

} // namespace fb
