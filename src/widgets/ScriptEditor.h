#pragma once

#include <Qsci/qsciscintilla.h>
#include <functional>

namespace fb {

// The editor of every script box: line numbers, the keywords "migrate" (with
// its table) and "dump" (with its number) in colour, undo, and the text as
// the Qt property plainText ("\n" line breaks) with its lock as readOnly.
class ScriptEditor : public QsciScintilla {
    Q_OBJECT
    Q_PROPERTY(QString plainText READ plainText WRITE setPlainText NOTIFY textChanged USER true)
    Q_PROPERTY(bool readOnly READ isReadOnly WRITE setReadOnly)

public:
    explicit ScriptEditor(QWidget* parent = nullptr);

    QString plainText() const;
    void setPlainText(const QString& text);
    void setReadOnly(bool locked) override;

    // Where the words offered on Ctrl+Space come from besides the words of
    // the text itself: the qualified source fields ("pqrst002.custno"),
    // sorted, without repeats. Asked only when completion is asked for.
    void setCompletionSource(std::function<QStringList()> source);
    // Ctrl+Space: completes the word before the cursor with a unique match,
    // or offers the matches in a list.
    void completeWord();

Q_SIGNALS:
    // Tab with a modifier held; the key itself is swallowed.
    void tabWithModifiers(Qt::KeyboardModifiers modifiers);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // The word before the cursor and where it starts.
    QString wordBeforeCursor(int* start) const;
    void replaceWordBeforeCursor(const QString& word);
    // The words of the text that start with the prefix and are longer.
    QStringList wordsOfTheText(const QString& prefix) const;
    void showCompletionList(const QStringList& words);

    std::function<QStringList()> m_completionSource;
    bool m_replacing = false;        // setPlainText is replacing the text
    bool m_lockAfterReplace = false; // the lock to apply once it is in

    // Tab with a modifier: swallowed and reported; true when it was one.
    bool handleModifiedTab(QKeyEvent* event);
};

} // namespace fb
