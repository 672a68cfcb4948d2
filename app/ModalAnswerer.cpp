#include "ModalAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>

ModalAnswerer::ModalAnswerer(QObject* parent) : QObject(parent)
{
    m_timer.setInterval(50);
    connect(&m_timer, &QTimer::timeout, this, &ModalAnswerer::poll);
    m_timer.start();
}

void ModalAnswerer::poll()
{
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || m_paused)
        return;
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        m_answered.append(box->text());
        QAbstractButton* button = box->defaultButton();
        if (!button)
            button = box->escapeButton();
        if (!button && !box->buttons().isEmpty())
            button = box->buttons().constFirst();
        if (button) {
            button->click();
            return;
        }
    }
    if (auto* dialog = qobject_cast<QDialog*>(modal)) {
        m_answered.append(dialog->windowTitle());
        dialog->accept();
    }
}
