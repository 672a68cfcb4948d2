#pragma once

#include <QAbstractTableModel>
#include <QList>

namespace fb {

// The rules grid: one row per field of the dump's target table; column 0 the
// qualified field name, column 1 the rule (CR LF line breaks, as stored).
class RulesModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setRows(const QStringList& fieldNames); // every rule cell a single blank
    QString text(int row, int column) const;
    void setText(int row, int column, const QString& text);
    void clearRules();

private:
    QList<QString> m_names;
    QList<QString> m_rules;
};

} // namespace fb
