#pragma once

#include "Module1.h"

#include <QDialog>

#include <optional>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace fb {

// The documentation-text dialog and, in its second mode, the chooser of a
// dump's target table. It works on its own copy of the values it is given,
// so that what it hands back is always its own, whatever else happens while
// it is open.
class FrmTxtDoc : public QDialog {
    Q_OBJECT
public:
    FrmTxtDoc(const Module1& values, QWidget* parent);

    // The values after the dialog closed: DocText (text mode) or ChosenTable.
    const Module1& values() const { return m_values; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void onOk();
    void onCancel();

    Module1 m_values;
    QPlainTextEdit* m_txtDoc;
    QComboBox* m_cmbTargetTable;
    QLabel* m_lblTarget;
    QPushButton* m_cmdOk;
    QPushButton* m_cmdCancel;
    bool m_changed = false;
    bool m_byButton = false;
};

// The two ways the control shows the dialog. Each shows it modally and
// waits; each answers nullopt, showing nothing, while another dialog of the
// same control is open (a queued key must not open a second one inside the
// first).
//
// Text mode: the text to store when the dialog closes (the edited text after
// OK or a confirmed close, the text it was opened with otherwise).
std::optional<QString> EditDocText(Module1& shared, QWidget* parent, const QString& title, const QString& text);
// Target-table mode: the table chosen, or the preset when it was cancelled.
std::optional<QString> ChooseTargetTable(Module1& shared, QWidget* parent, qint16 dumpNumber,
                                         const QString& tableList, const QString& preset);

} // namespace fb
