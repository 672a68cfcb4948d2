#pragma once

#include <QApplication>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <deque>
#include <functional>

// Answers modal boxes as a person would, while the code under test sits in
// the box's exec(): polls QApplication::activeModalWidget() and hands each
// new box to the next queued answer. A box nobody expected is recorded and
// closed, so a test fails instead of hanging; so is a box that an answer
// left open.
class ModalWatcher : public QObject {
public:
    using Answer = std::function<void(QWidget*)>;

    ModalWatcher()
    {
        connect(&m_timer, &QTimer::timeout, this, &ModalWatcher::poll);
        m_timer.start(20);
    }

    void expect(Answer answer) { m_answers.push_back(std::move(answer)); }

    int pending() const { return int(m_answers.size()); }
    QStringList seen() const { return m_seen; }
    QStringList unexpected() const { return m_unexpected; }

private:
    void poll()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || modal == m_current)
            return;
        m_current = modal;
        const QString name = modal->objectName().isEmpty() ? QString::fromUtf8(modal->metaObject()->className())
                                                           : modal->objectName();
        m_seen.append(name);
        if (m_answers.empty()) {
            m_unexpected.append(name);
            modal->close();
            return;
        }
        Answer answer = std::move(m_answers.front());
        m_answers.pop_front();
        QPointer<QWidget> box = modal;
        answer(modal);
        // An answer that failed half-way leaves its box open: close it, or
        // the code under test would wait in exec() for ever.
        if (box && box->isVisible()) {
            m_unexpected.append(name + QStringLiteral(" (left open)"));
            box->close();
        }
    }

    QTimer m_timer;
    std::deque<Answer> m_answers;
    QPointer<QWidget> m_current;
    QStringList m_seen;
    QStringList m_unexpected;
};
