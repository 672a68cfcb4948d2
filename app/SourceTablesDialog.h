#pragma once

#include "MappingFile.h"

#include <QDialog>

class QListWidget;

// The host's source-table picker: every table that the mapping object
// defines under SRCTAB, plus any table already chosen, each with a check box.
// The answer is the checked names joined by "," in list order.
class SourceTablesDialog : public QDialog {
    Q_OBJECT

public:
    SourceTablesDialog(const MappingFile::Catalogue& catalogue, const QString& currentTables, bool editable,
                       QWidget* parent = nullptr);

    QString chosenTables() const;

private:
    QListWidget* m_list = nullptr;
};
