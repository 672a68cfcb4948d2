#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace fb {

struct Module1;

// The documentation-text dialog and, in its second mode, the chooser of a
// dump's target table. It reads and writes its values through Module1.
class FrmTxtDoc : public QDialog {
    Q_OBJECT
public:
    FrmTxtDoc(Module1& module, QWidget* parent);

    QPlainTextEdit* TxtDoc() const { return m_txtDoc; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void onOk();
    void onCancel();

    Module1& m_module;
    QPlainTextEdit* m_txtDoc;
    QComboBox* m_cmbTargetTable;
    QLabel* m_lblTarget;
    QPushButton* m_cmdOk;
    QPushButton* m_cmdCancel;
    bool m_changed = false;
    bool m_byButton = false;
};

} // namespace fb
