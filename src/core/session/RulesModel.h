#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QList>
#include <utility>

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

    // Every rule cell a single blank; mandatory: the rows whose field is
    // mandatory (none when shorter).
    void setRows(const QStringList& fieldNames, const QList<bool>& mandatory = {});
    QString text(int row, int column) const;
    void setText(int row, int column, const QString& text);
    void clearRules();
    const QList<QString>& names() const { return m_names; }
    const QList<QString>& rules() const { return m_rules; }
    // Every rule cell at once, as rules() gave them.
    void setRules(const QList<QString>& rules);
    // Several rule cells at once (row, text), told to the views as one change.
    void setRuleTexts(const QList<std::pair<int, QString>>& texts);
    // The first row of the field, or -1.
    int rowOf(const QString& fieldName) const { return m_rowOf.value(fieldName, -1); }
    bool hasRule(int row) const;
    bool isMandatory(int row) const { return row >= 0 && row < m_mandatory.size() && m_mandatory[row]; }

private:
    QList<QString> m_names;
    QList<QString> m_rules;
    QList<bool> m_mandatory;
    QHash<QString, int> m_rowOf;
};

} // namespace fb
