#pragma once

#include "core/rules/Checks.h"

#include <QAbstractListModel>

namespace fb {

// The problems the checks found, one row each: "Error  dump 3  klmno001.code:
// message". The severity is asked for by kSeverityRole (a Severity as int).
class ProblemsModel : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr int kSeverityRole = Qt::UserRole + 2;
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    void setProblems(const QList<Problem>& problems);
    const QList<Problem>& problems() const { return m_problems; }
    int errorCount() const;

    // One line of a problem, as the list shows it.
    static QString Line(const Problem& problem);

private:
    QList<Problem> m_problems;
};

} // namespace fb
