#pragma once

#include "MappingFile.h"

#include <QDialog>

class QListWidget;
class QListWidgetItem;
class QPlainTextEdit;

// The host's builder for a condition, a main query or a field rule: a text
// editor prefilled with the script the control sent, beside a list of the
// source fields of the tables involved; a double click on a field inserts
// "table.field" at the cursor.
class ScriptBuilderDialog : public QDialog {
    Q_OBJECT

public:
    enum class Kind { Condition, Query, Function };

    ScriptBuilderDialog(Kind kind, const QString& script, const QList<MappingFile::SourceTable>& tables,
                        bool editable, QWidget* parent = nullptr);

    // The edited script with LF line breaks.
    QString script() const;

private:
    void insertField(QListWidgetItem* item);

    QPlainTextEdit* m_text = nullptr;
    QListWidget* m_fields = nullptr;
};
