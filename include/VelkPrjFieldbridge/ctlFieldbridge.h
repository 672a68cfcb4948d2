#pragma once

#include <QString>
#include <QWidget>
#include <memory>

#if defined(VELKPRJFIELDBRIDGE_LIBRARY)
#define VELKPRJFIELDBRIDGE_EXPORT Q_DECL_EXPORT
#else
#define VELKPRJFIELDBRIDGE_EXPORT Q_DECL_IMPORT
#endif

class ctlFieldbridgePrivate;
class QUndoStack;

// The mapping editor control. A host hands in a mapping object through
// MappingObjectXML, sets TargetTable to the root element's name, sets Edit,
// calls ShowControl, answers the builder signals by assigning properties, and
// reads the edited document back through MappingObjectXML.
//
// Members are declared in the order of the host interface. Properties that a
// host only assigns (Editor, TargetTable, Edit, PreCondition) read back the
// last value assigned.
class VELKPRJFIELDBRIDGE_EXPORT ctlFieldbridge : public QWidget {
    Q_OBJECT
    // Reading stores pending edits and writes the export file: not a property
    // for a form designer to read or save.
    Q_PROPERTY(QString MappingObjectXML READ MappingObjectXML WRITE setMappingObjectXML
                   DESIGNABLE false STORED false)
    Q_PROPERTY(QString Editor READ Editor WRITE setEditor)
    Q_PROPERTY(QString TargetTable READ TargetTable WRITE setTargetTable)
    Q_PROPERTY(bool Edit READ Edit WRITE setEdit)
    Q_PROPERTY(QString SourceTables READ SourceTables WRITE setSourceTables)
    Q_PROPERTY(QString PreCondition READ PreCondition WRITE setPreCondition)
    Q_PROPERTY(QString MainQuery READ MainQuery WRITE setMainQuery)
    Q_PROPERTY(QString FieldMapping READ FieldMapping WRITE setFieldMapping)

public:
    explicit ctlFieldbridge(QWidget* parent = nullptr);
    ~ctlFieldbridge() override;

    // Assigning parses the document (a malformed text leaves it empty, with
    // no message); reading stores pending edits, tidies the document, writes
    // the temporary export file and returns the text.
    void setMappingObjectXML(const QString& text);
    QString MappingObjectXML();
    Q_INVOKABLE void Setfocus();
    void setEditor(const QString& Epath);
    QString Editor() const;
    void setTargetTable(const QString& name);
    QString TargetTable() const;
    void setEdit(bool BoolNewValue);
    bool Edit() const;
    void setSourceTables(const QString& tables);
    QString SourceTables();
    void setPreCondition(const QString& text);
    QString PreCondition() const;
    void setMainQuery(const QString& text);
    QString MainQuery() const;
    QString FieldMapping() const;
    void setFieldMapping(const QString& rule);
    Q_INVOKABLE int GetListItemNumber(const QString& strFieldName) const;
    Q_INVOKABLE void ShowControl();
    Q_INVOKABLE void SetTextNumber(const QString& StrType, int LngTextNumber, const QString& StrKey1,
                                   const QString& StrKey2);
    Q_INVOKABLE int GetRowNumber(const QString& i_StrFieldName) const;
    Q_INVOKABLE void GridEdit(short KeyAscii);

    // Beyond the host interface. Every change of the mapping made in the
    // control is a step of this stack, with a text saying what it did; a
    // host binds its Edit menu to it (createUndoAction, createRedoAction).
    // It starts afresh with every document assigned.
    QUndoStack* undoStack() const;
    // The problems of the whole mapping, one line each ("Error  dump 3
    // klmno001.code: ..."), as the problems list shows them.
    Q_INVOKABLE QStringList CheckMapping();
    // How many of them are errors (the rest are warnings).
    Q_INVOKABLE int CheckErrorCount();
    // What the next read of MappingObjectXML will remove with content (dumps
    // holding rules that no script references, main queries with text for
    // tables no longer migrated), one line each; asking removes nothing.
    Q_INVOKABLE QStringList PendingRemovals();

Q_SIGNALS:
    void ShowSourceTablesPopUp(const QString& i_SourceTables);
    void ShowConditionBuilderPopUp(const QString& i_ConditionString, const QString& i_SourceTables);
    void ShowQueryBuilderPopUp(const QString& i_QueryString, const QString& i_SourceTables);
    void ShowFunctionalTextPopUp(const QString& DocType, int LngTextNumber, const QString& StrKey1,
                                 const QString& StrKey2);
    void ShowFunctionBuilderPopUp(const QString& StrCondition, const QString& StrSourceTables);
    void SaveDoneDisabled();
    void SaveDoneEnabled();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    friend class ctlFieldbridgePrivate;
    std::unique_ptr<ctlFieldbridgePrivate> d;
};
