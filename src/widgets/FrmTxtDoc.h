#pragma once

#include <QDialog>
#include <QStringList>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace fb {

// The documentation-text dialog and, in its second mode, the chooser of a
// dump's target table.
class FrmTxtDoc : public QDialog {
    Q_OBJECT
public:
    // Text mode: the text under the title, locked unless editable.
    FrmTxtDoc(const QString& title, const QString& text, bool editable, QWidget* parent);
    // Target-table mode: the tables to choose from (the first is selected);
    // the preset is the answer when the dialog is cancelled.
    FrmTxtDoc(qint16 dumpNumber, const QStringList& tables, const QString& preset, QWidget* parent);

    // After it closed: the text to store (the edited text after OK or a
    // confirmed close, the text it was given otherwise) ...
    QString docText() const { return m_docText; }
    // ... or the table chosen.
    QString chosenTable() const { return m_chosenTable; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    FrmTxtDoc(bool textMode, QWidget* parent);
    void onOk();
    void onCancel();

    bool m_textMode;
    bool m_editable = false;
    QString m_docText;
    QString m_chosenTable;
    QPlainTextEdit* m_txtDoc;
    QComboBox* m_cmbTargetTable;
    QLabel* m_lblTarget;
    QPushButton* m_cmdOk;
    QPushButton* m_cmdCancel;
    bool m_changed = false;
    bool m_byButton = false;
};

} // namespace fb
