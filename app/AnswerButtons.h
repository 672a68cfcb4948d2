#pragma once

#include <QDialog>
#include <QDialogButtonBox>

// The button row of the host's answer dialogs: OK and Cancel when the host
// may answer, Close when it only shows.
inline QDialogButtonBox* MakeAnswerButtons(QDialog* dialog, bool editable)
{
    auto* buttons = new QDialogButtonBox(
        editable ? QDialogButtonBox::Ok | QDialogButtonBox::Cancel : QDialogButtonBox::Close, dialog);
    buttons->setObjectName(QStringLiteral("buttons"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}
