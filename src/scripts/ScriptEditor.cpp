#include "ScriptEditor.h"

#include <Qsci/qscilexercustom.h>

#include <QFontDatabase>
#include <QKeyEvent>

namespace fb {

namespace {

enum Style { Default = 0, Keyword = 1, Reference = 2 };

constexpr int kFieldList = 1; // the id of the list of field names

// Characters of a field name as scripts write it (table.field), in bytes.
bool isWordByte(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
           c == '$';
}

bool isSeparatorByte(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool keywordAt(const QByteArray& s, qsizetype i, const char* word, qsizetype len)
{
    if (i + len > s.size())
        return false;
    if (i > 0 && !isSeparatorByte(s[i - 1]))
        return false;
    for (qsizetype k = 0; k < len; ++k) {
        char c = s[i + k];
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
        if (c != word[k])
            return false;
    }
    return i + len == s.size() || isSeparatorByte(s[i + len]);
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
        QsciScintilla* ed = editor();
        if (!ed || end <= start)
            return;
        const long line = ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<unsigned long>(start));
        start = int(ed->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, static_cast<unsigned long>(line)));
        QByteArray bytes(end - start + 1, '\0');
        ed->SendScintilla(QsciScintillaBase::SCI_GETTEXTRANGE, start, end, bytes.data());
        bytes.truncate(end - start);

        startStyling(start);
        qsizetype i = 0;
        const qsizetype n = bytes.size();
        auto run = [&](qsizetype len, int style) {
            if (len > 0)
                setStyling(int(len), style);
            i += len;
        };
        while (i < n) {
            const bool migrate = keywordAt(bytes, i, "migrate", 7);
            const bool dump = !migrate && keywordAt(bytes, i, "dump", 4);
            if (!migrate && !dump) {
                qsizetype j = i + 1;
                while (j < n && !(isSeparatorByte(bytes[j - 1]) && (bytes[j] == 'm' || bytes[j] == 'M' ||
                                                                     bytes[j] == 'd' || bytes[j] == 'D')))
                    ++j;
                run(j - i, Default);
                continue;
            }
            run(migrate ? 7 : 4, Keyword);
            qsizetype j = i;
            while (j < n && (bytes[j] == ' ' || bytes[j] == '\t'))
                ++j;
            run(j - i, Default);
            j = i;
            while (j < n && !isSeparatorByte(bytes[j]))
                ++j;
            run(j - i, Reference);
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
    // Words of the text are offered on Ctrl+Space only: a list that pops up
    // by itself would take Return and Tab from someone typing.
    setAutoCompletionSource(AcsDocument);
    setAutoCompletionThreshold(0);
    connect(this, &QsciScintilla::userListActivated, this, [this](int id, const QString& chosen) {
        if (id == kFieldList)
            replaceWordBeforeCursor(chosen);
    });
}


void ScriptEditor::setCompletionWords(const QStringList& words)
{
    m_completionWords = words;
    m_completionWords.sort(Qt::CaseInsensitive);
    m_completionWords.removeDuplicates();
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
    for (const QString& w : m_completionWords)
        if (w.startsWith(prefix, Qt::CaseInsensitive))
            matches.append(w);
    if (matches.isEmpty())
        autoCompleteFromDocument();
    else if (matches.size() == 1)
        replaceWordBeforeCursor(matches.first());
    else
        showUserList(kFieldList, matches);
}

void ScriptEditor::setPlainText(const QString& text)
{
    if (text == this->text())
        return;
    const bool locked = isReadOnly();
    if (locked)
        setReadOnly(false); // a locked editor still shows what the control puts in it
    setText(text);
    if (locked)
        setReadOnly(true);
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
