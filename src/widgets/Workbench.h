#pragma once

#include "core/session/MappingSession.h"

#include <QObject>

class QAbstractItemView;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QTreeView;

namespace fb {

// The consultant's tools on the "Define Dumps" page, beside the described
// commands: a find box above each field list (and how many ticks the
// source list's find hides), "unmapped only", the coverage of the shown dump, the marks of
// the fields and the list of problems. Children of the page; the page
// places them.
class Workbench : public QObject {
    Q_OBJECT
public:
    struct Lists {
        QTreeView* source;
        QTreeView* target;
        QAbstractItemView* grid;
        QComboBox* dumps;
    };
    Workbench(MappingSession& session, QWidget* page, const Lists& lists);

    QLineEdit* findSource() const { return m_findSource; }
    QLineEdit* findTarget() const { return m_findTarget; }
    QLabel* sourceHidden() const { return m_sourceHidden; }
    QCheckBox* unmappedOnly() const { return m_unmappedOnly; }
    QLabel* coverage() const { return m_coverage; }
    QListView* problems() const { return m_problems; }
    // The find box of the list that has the focus, else the target list's.
    QLineEdit* findBoxFor(const QWidget* focus) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showHiddenTicks();

    MappingSession& m_session;
    Lists m_lists;
    QLineEdit* m_findSource;
    QLineEdit* m_findTarget;
    QLabel* m_sourceHidden;
    QCheckBox* m_unmappedOnly;
    QLabel* m_coverage;
    QListView* m_problems;
};

} // namespace fb
