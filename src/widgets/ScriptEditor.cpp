#include "ScriptEditor.h"

#include "core/document/TextCodec.h"
#include "core/scripts/ScriptScanner.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QListWidget>
#include <QScreen>
#include <Qsci/qscilexercustom.h>
#include <algorithm>

namespace fb {

namespace {

enum Style { Default = 0, Keyword = 1, Reference = 2 };

// Characters of a field name as scripts write it (table.field), in bytes.
bool isWordByte(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '.' || c == '$';
}

// Colours the two keywords that carry structure, found as the scanner finds
// them: whole words between blanks, tabs and line breaks, in any letter case.
class ScriptLexer : public QsciLexerCustom {
public:
    explicit ScriptLexer(QObject* parent) : QsciLexerCustom(parent)
    {
        const QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        setDefaultFont(mono);
        for (int s : {Default, Keyword, Reference})
            setFont(mono, s);
        setColor(QColor(0x20, 0x20, 0x20), Default);
        setColor(QColor(0x00, 0x3c, 0xb4), Keyword);
        setColor(QColor(0x9b, 0x30, 0x00), Reference);
        QFont bold = mono;
        bold.setBold(true);
        setFont(bold, Keyword);
    }

    const char* language() const override { return "FieldbridgeScript"; }

    QString description(int style) const override
    {
        switch (style) {
        case Default:
            return QStringLiteral("Default");
        case Keyword:
            return QStringLiteral("Keyword");
        case Reference:
            return QStringLiteral("Reference");
        default:
            return QString();
        }
    }

    void styleText(int start, int end) override
    {
        auto* ed = qobject_cast<ScriptEditor*>(editor());
        if (!ed || end <= start)
            return;
        // The keywords as the scanner reads them, over the whole text (a
        // keyword's meaning depends on what stands before it), in the
        // editor's positions: bytes of the UTF-8 text.
        const QString text = ed->plainText();
        QList<int> byteAt(text.size() + 1, 0);
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t c = text[i].unicode();
            byteAt[i + 1] = byteAt[i] + (c < 0x80 ? 1 : c < 0x800 ? 2 : QChar::isSurrogate(c) ? 2 : 3);
        }
        QByteArray styles(byteAt.last(), char(Default));
        const auto mark = [&](qsizetype from, qsizetype length, int style) {
            for (int b = byteAt[from]; b < byteAt[from + length]; ++b)
                styles[b] = char(style);
        };
        for (const KeywordSpan& span : KeywordSpans(text)) {
            mark(span.start, span.length, Keyword);
            if (span.argumentStart >= 0 && span.argumentValid)
                mark(span.argumentStart, span.argumentLength, Reference);
        }
        end = std::min(end, int(styles.size()));
        startStyling(start);
        for (int b = start; b < end;) {
            int e = b + 1;
            while (e < end && styles[e] == styles[b])
                ++e;
            setStyling(e - b, styles[b]);
            b = e;
        }
    }
};

} // namespace

ScriptEditor::ScriptEditor(QWidget* parent) : QsciScintilla(parent)
{
    setUtf8(true);
    setEolMode(EolUnix);
    setLexer(new ScriptLexer(this));
    setMarginType(0, NumberMargin);
    setMarginLineNumbers(0, true);
    setMarginWidth(0, QStringLiteral("00000"));
    setTabWidth(4);
    setWrapMode(WrapNone);
    setBraceMatching(SloppyBraceMatch);
    setCaretLineVisible(true);
    setCaretLineBackgroundColor(QColor(0xf3, 0xf6, 0xfb));
    // Completion is offered on Ctrl+Space only: a list that pops up by
    // itself would take Return and Tab from someone typing.
    setAutoCompletionSource(AcsNone);
}

void ScriptEditor::setCompletionSource(std::function<QStringList()> source)
{
    m_completionSource = std::move(source);
}

QString ScriptEditor::wordBeforeCursor(int* start) const
{
    // Editor positions count bytes of the UTF-8 text.
    const long end = SendScintilla(SCI_GETCURRENTPOS);
    long b = end;
    while (b > 0 && isWordByte(char(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(b - 1)))))
        --b;
    if (start)
        *start = int(b);
    QByteArray bytes(int(end - b) + 1, '\0');
    if (end > b)
        SendScintilla(SCI_GETTEXTRANGE, int(b), int(end), bytes.data());
    return QString::fromUtf8(bytes.constData());
}

void ScriptEditor::replaceWordBeforeCursor(const QString& word)
{
    int start = 0;
    wordBeforeCursor(&start);
    SendScintilla(SCI_SETSEL, static_cast<unsigned long>(start), SendScintilla(SCI_GETCURRENTPOS));
    replaceSelectedText(word);
}

void ScriptEditor::completeWord()
{
    if (isReadOnly())
        return;
    const QString prefix = wordBeforeCursor(nullptr);
    QStringList matches;
    const QStringList words = m_completionSource ? m_completionSource() : QStringList();
    for (const QString& w : words)
        if (w.startsWith(prefix, Qt::CaseInsensitive))
            matches.append(w);
    if (matches.isEmpty())
        matches = wordsOfTheText(prefix);
    if (matches.size() == 1)
        replaceWordBeforeCursor(matches.first());
    else if (!matches.isEmpty())
        showCompletionList(matches);
}

QStringList ScriptEditor::wordsOfTheText(const QString& prefix) const
{
    QStringList words;
    const QString text = plainText();
    qsizetype i = 0;
    while (i < text.size()) {
        qsizetype j = i;
        while (j < text.size() && text[j].unicode() < 0x80 && isWordByte(char(text[j].unicode())))
            ++j;
        const QString word = text.mid(i, j - i);
        if (word.size() > prefix.size() && word.startsWith(prefix, Qt::CaseInsensitive))
            words.append(word);
        i = j + 1;
    }
    words.sort(Qt::CaseInsensitive);
    words.removeDuplicates();
    return words;
}

void ScriptEditor::showCompletionList(const QStringList& words)
{
    // A list of our own rather than the editor's: it is placed on the
    // editor's screen even when the caret lies beyond the screen's edge.
    auto* list = new QListWidget(this);
    list->setObjectName(QStringLiteral("completionList"));
    list->setWindowFlags(Qt::Popup);
    list->setAttribute(Qt::WA_DeleteOnClose);
    list->addItems(words);
    list->setCurrentRow(0);
    const auto accept = [this, list](QListWidgetItem* item) {
        if (item)
            replaceWordBeforeCursor(item->text());
        list->close();
    };
    connect(list, &QListWidget::itemActivated, this, accept);
    connect(list, &QListWidget::itemClicked, this, accept);

    const long pos = SendScintilla(SCI_GETCURRENTPOS);
    const QPoint caret(
        int(SendScintilla(SCI_POINTXFROMPOSITION, 0UL, pos)),
        int(SendScintilla(SCI_POINTYFROMPOSITION, 0UL, pos) + SendScintilla(SCI_TEXTHEIGHT, 0UL)));
    const int rows = int(std::min<qsizetype>(words.size(), 10));
    const QSize size(std::max(list->sizeHintForColumn(0) + 2 * list->frameWidth() + 24, 160),
                     rows * list->sizeHintForRow(0) + 2 * list->frameWidth());
    const QRect screen = this->screen()->availableGeometry();
    QPoint at = viewport()->mapToGlobal(caret);
    at.setX(std::clamp(at.x(), screen.left(), std::max(screen.left(), screen.right() - size.width())));
    at.setY(std::clamp(at.y(), screen.top(), std::max(screen.top(), screen.bottom() - size.height())));
    list->setGeometry(QRect(at, size));
    list->show();
    list->setFocus(Qt::PopupFocusReason);
}

QString ScriptEditor::plainText() const
{
    // The editor's own text() drops a leading U+FEFF; the bytes keep it.
    const long length = SendScintilla(SCI_GETTEXTLENGTH);
    QByteArray bytes(int(length) + 1, '\0');
    SendScintilla(SCI_GETTEXT, static_cast<unsigned long>(length + 1), bytes.data());
    bytes.truncate(int(length));
    return Utf8Text(bytes);
}

void ScriptEditor::setPlainText(const QString& text)
{
    if (text == plainText())
        return;
    // A locked editor still shows what the control puts in it. Whoever
    // reacts to the change may lock or unlock the editor while the text is
    // being replaced; that takes effect once the whole text is in.
    m_lockAfterReplace = isReadOnly();
    m_replacing = true;
    QsciScintilla::setReadOnly(false);
    SendScintilla(SCI_SETTEXT, static_cast<unsigned long>(0), text.toUtf8().constData());
    SendScintilla(SCI_EMPTYUNDOBUFFER);
    m_replacing = false;
    QsciScintilla::setReadOnly(m_lockAfterReplace);
}

void ScriptEditor::setReadOnly(bool locked)
{
    if (m_replacing)
        m_lockAfterReplace = locked;
    else
        QsciScintilla::setReadOnly(locked);
}

bool ScriptEditor::handleModifiedTab(QKeyEvent* event)
{
    const Qt::KeyboardModifiers mods =
        event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if ((event->key() != Qt::Key_Tab && event->key() != Qt::Key_Backtab) || mods == Qt::NoModifier)
        return false;
    event->accept();
    Q_EMIT tabWithModifiers(mods);
    return true;
}

bool ScriptEditor::event(QEvent* event)
{
    // Before the widget's own focus navigation, which would take Shift+Tab
    // from a locked editor.
    if (event->type() == QEvent::KeyPress && handleModifiedTab(static_cast<QKeyEvent*>(event)))
        return true;
    return QsciScintilla::event(event);
}

void ScriptEditor::keyPressEvent(QKeyEvent* event)
{
    if (handleModifiedTab(event))
        return;
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::ControlModifier) {
        completeWord(); // completion is offered on request only
        return;
    }
    QsciScintilla::keyPressEvent(event);
}

} // namespace fb
