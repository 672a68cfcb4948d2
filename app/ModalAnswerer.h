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
    // While paused, boxes stay open for someone else to answer.
    void setPaused(bool paused) { m_paused = paused; }

private:
    void poll();

    QTimer m_timer;
    QStringList m_answered;
    bool m_paused = false;
};
