#include "SourceTablesDialog.h"

#include "AnswerButtons.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

SourceTablesDialog::SourceTablesDialog(const MappingFile::Catalogue& catalogue, const QString& currentTables,
                                       bool editable, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("SourceTablesDialog"));
    setWindowTitle(tr("Source Tables"));

    auto* hint = new QLabel(tr("Tick the tables this mapping object reads from. A table that is already in "
                               "the control's list stays there until you delete it from the list."),
                            this);
    hint->setWordWrap(true);

    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("lstTables"));

    // Tables already chosen keep their spelling and their order; the rest of
    // the defined tables follow in document order, in lower case.
    const QStringList current = MappingFile::splitTableList(currentTables);
    QStringList names = current;
    for (const MappingFile::SourceTable& table : catalogue.sourceTables) {
        if (!names.contains(table.name, Qt::CaseInsensitive))
            names.append(table.name.toLower());
    }
    for (const QString& name : names) {
        auto* item = new QListWidgetItem(name, m_list);
        Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (editable)
            flags |= Qt::ItemIsUserCheckable;
        item->setFlags(flags);
        item->setCheckState(current.contains(name) ? Qt::Checked : Qt::Unchecked);
        for (const MappingFile::SourceTable& table : catalogue.sourceTables) {
            if (table.name.compare(name, Qt::CaseInsensitive) == 0)
                item->setToolTip(tr("%n field(s)", nullptr, int(table.fields.size())));
        }
    }

    auto* buttons = MakeAnswerButtons(this, editable);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(hint);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    resize(360, 420);
}

QString SourceTablesDialog::chosenTables() const
{
    QStringList checked;
    for (int row = 0; row < m_list->count(); ++row) {
        const QListWidgetItem* item = m_list->item(row);
        if (item->checkState() == Qt::Checked)
            checked.append(item->text());
    }
    return checked.join(u',');
}
