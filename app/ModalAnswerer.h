#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

// Answers every modal box that opens while it runs, as an unattended user
// would: a message box with its default (else escape, else first) button,
// any other dialog with accept(). Used for unattended rendering.
class ModalAnswerer : public QObject {
    Q_OBJECT

public:
    explicit ModalAnswerer(QObject* parent = nullptr);

    // Texts of the boxes answered so far (message text or window title).
    QStringList answered() const { return m_answered; }

private:
    void poll();

    QTimer m_timer;
    QStringList m_answered;
};
