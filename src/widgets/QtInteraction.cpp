#include "QtInteraction.h"

#include "FrmSuggest.h"
#include "FrmTxtDoc.h"
#include "core/document/LineBreaks.h"

#include <QInputDialog>
#include <QMessageBox>

namespace fb {

MsgAnswer QtInteraction::MsgBox(const QString& prompt, MsgButtons buttons, MsgIcon icon, const QString& title)
{
    QMessageBox box(m_owner);
    box.setObjectName(QStringLiteral("FieldbridgeMessage"));
    box.setWindowTitle(title);
    box.setText(LfText(prompt));
    switch (icon) {
    case MsgIcon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case MsgIcon::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case MsgIcon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case MsgIcon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case MsgIcon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    }
    switch (buttons) {
    case MsgButtons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case MsgButtons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case MsgButtons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    case MsgButtons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    const int answer = box.exec();
    switch (answer) {
    case QMessageBox::Yes:
        return MsgAnswer::Yes;
    case QMessageBox::No:
        return MsgAnswer::No;
    case QMessageBox::Cancel:
        return MsgAnswer::Cancel;
    case QMessageBox::Ok:
        return MsgAnswer::Ok;
    default:
        // Closed without a button: the escape answer of the set.
        return buttons == MsgButtons::YesNo ? MsgAnswer::No
               : buttons == MsgButtons::Ok  ? MsgAnswer::Ok
                                            : MsgAnswer::Cancel;
    }
}

QString QtInteraction::InputBox(const QString& prompt, const QString& title, const QString& defaultText)
{
    QInputDialog dialog(m_owner);
    dialog.setObjectName(QStringLiteral("FieldbridgeInput"));
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setTextValue(defaultText);
    if (dialog.exec() != QDialog::Accepted)
        return QString();
    return dialog.textValue();
}

QString QtInteraction::EditDocText(const QString& title, const QString& text, bool editable)
{
    FrmTxtDoc dialog(title, text, editable, m_owner);
    dialog.exec();
    return dialog.docText();
}

QString QtInteraction::ChooseTargetTable(qint16 dumpNumber, const QStringList& tables, const QString& preset)
{
    FrmTxtDoc dialog(dumpNumber, tables, preset, m_owner);
    dialog.exec();
    return dialog.chosenTable();
}

QList<AcceptedSuggestion> QtInteraction::ReviewSuggestions(const QString& title,
                                                           const QList<SuggestionRow>& rows, double threshold)
{
    FrmSuggest dialog(title, rows, threshold, m_owner);
    return dialog.exec() == QDialog::Accepted ? dialog.accepted() : QList<AcceptedSuggestion>();
}

} // namespace fb
