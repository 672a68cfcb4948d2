#include "BoxText.h"

#include "core/document/LineBreaks.h"

#include <QPlainTextEdit>
#include <QTextDocument>
#include <QVariant>
#include <QWidget>

namespace fb {

QString BoxText(const QWidget* box)
{
    if (const auto* edit = qobject_cast<const QPlainTextEdit*>(box)) {
        // toPlainText() turns no-break spaces into blanks; the raw text keeps
        // every character and separates paragraphs with U+2029.
        QString text = edit->document()->toRawText();
        text.replace(QChar::ParagraphSeparator, u'\n');
        return CrLfText(text);
    }
    return box ? CrLfText(box->property("plainText").toString()) : QString();
}

void SetBoxText(QWidget* box, const QString& text)
{
    // Putting the same text in again would move the cursor to the start.
    if (box && BoxText(box) != CrLfText(text))
        box->setProperty("plainText", LfText(text));
}

} // namespace fb
