#pragma once

#include <QString>

class QModelIndex;

namespace fb {

struct ControlState;

// The behaviour of the "Mapping Object" tab: source tables, migrate sources
// and main queries, the precondition, functions and variables.
class QueryScripts {
public:
    explicit QueryScripts(ControlState& s);
    void Connect();

    // ---- source tables ----
    void RefreshSourceTableList();
    void ReconcileSourceTables();
    void ClearSourceTableList();
    void DeleteSelectedSourceTable();

    // ---- migrate sources and main query ----
    void FillMigrateSourceList();
    void ShowMigrateQuery(const QString& table);
    void StoreMainQuery();
    bool HasQueryText();
    void MigrateSourceClicked(const QModelIndex& index);
    void ApplyMainQueryLock();

    // ---- precondition ----
    void ShowPrecondition();
    void StorePrecondition();
    bool HasPreconditionText();

    // ---- functions and variables ----
    void SwitchScriptView(bool showPrecondition, bool keepEdits);

    // ---- the external editor ----
    void EditPreconditionExternally();
    void EditMainQueryExternally();
    void EditFunctionsOrVariablesExternally();

    // ---- the splitter between precondition and main query ----
    void ToggleMainQuerySize();

private:
    void onBuildPre();
    void onBuildMQ();
    void onPreDoc();
    void onMQDoc();
    void onFunction();
    void onVariables();
    void onOk();
    void onCancel();

    ControlState& s;
};

} // namespace fb
