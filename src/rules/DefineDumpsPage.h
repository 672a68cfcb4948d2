#pragma once

#include <QGroupBox>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTableView;
class QTreeView;

namespace fb {

class FieldListModel;
class RulesGridModel;

// The frame of the "Define Dumps" tab: dump selector, target table, the two
// field lists, the rules grid with its overlay box, and the commands.
class DefineDumpsPage : public QGroupBox {
    Q_OBJECT
public:
    explicit DefineDumpsPage(QWidget* parent);

    void LayoutChildren();

    QLabel* lblDump;
    QComboBox* CmbDump;
    QPushButton* Command1;
    QLabel* lblTargetTable;
    QComboBox* CmbTargetTable;
    QLabel* LBLTargetTableName;
    QPushButton* CmdChange;
    QLabel* lblSourceFields;
    QTreeView* lstSourceFields;
    FieldListModel* sourceFields;
    QLabel* lblTargetFields;
    QTreeView* lstTargetFields;
    FieldListModel* targetFields;
    QPushButton* CmdMap;
    QPushButton* CmdGuess;
    QPushButton* CmdCopyDump;
    QPushButton* CmdEditRule;
    QPushButton* CmdDumpText;
    QPushButton* CmdFuncBuild;
    QGroupBox* Details;
    QTableView* RulesGrid;
    RulesGridModel* rules;
    QPlainTextEdit* txtgrdline;
};

} // namespace fb
