// The behaviour of the control, tested where it lives: every file of cases/
// is a session of steps (what a host and a person do) on a document of
// documents/; what the session shows, asks and hands back is written to a
// log and compared with reference/. update-references.sh writes the logs
// anew after a deliberate change; read the diff before committing it.

#include "core/session/FieldMarks.h"
#include "core/session/MappingSession.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <deque>
#include <functional>
#include <map>
#include <memory>

using namespace Qt::StringLiterals;
using fb::MappingSession;
using fb::MsgAnswer;
using fb::MsgButtons;
using fb::MsgIcon;

namespace {

QString visible(QString text)
{
    text.replace(u"\r\n"_s, u"⏎"_s);
    text.replace(u'\n', u"↵"_s);
    text.replace(u'\r', u"␍"_s);
    text.replace(u'\t', u"⇥"_s);
    return text;
}

QString unescapeStep(QString text)
{
    text.replace(u"\\n"_s, u"\n"_s);
    text.replace(u"\\r"_s, u"\r"_s);
    text.replace(u"\\t"_s, u"\t"_s);
    return text;
}

template <typename E> QString enumName(E value)
{
    return QString::fromLatin1(QMetaEnum::fromType<E>().valueToKey(int(value)));
}

// The document as an indented tree, one element or text per line.
QString indented(const QString& xml)
{
    QXmlStreamReader reader(xml);
    QString out;
    int depth = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        const QString pad(depth * 2, u' ');
        if (reader.isStartElement() && depth == 1 &&
            QStringList{u"TARTAB"_s, u"SRCTAB"_s, u"MSCRIPT"_s}.contains(reader.name().toString())) {
            // The host's dictionary: the control only reads it.
            out += pad + u'<' + reader.name().toString() + u"> (dictionary)\n"_s;
            reader.skipCurrentElement();
        } else if (reader.isStartElement()) {
            out += pad + u'<' + reader.name().toString();
            for (const QXmlStreamAttribute& a : reader.attributes())
                out += u' ' + a.name().toString() + u"=\""_s + visible(a.value().toString()) + u'"';
            out += u">\n"_s;
            ++depth;
        } else if (reader.isEndElement()) {
            --depth;
        } else if (reader.isCharacters() && !reader.isWhitespace()) {
            out += pad + u"| "_s + visible(reader.text().toString()) + u'\n';
        }
    }
    return reader.hasError() ? u"(not well-formed) "_s + xml + u'\n' : out;
}

// The person at the screen: writes down every box and answers it from the
// steps' queue (the first button when nothing is queued).
class ScriptedUser : public fb::Interaction {
public:
    QStringList* log = nullptr;
    std::deque<QString> answers;
    // Steps the host takes while the next review is open, and who takes them.
    std::deque<QString> meanwhile;
    std::function<void(const QString&)> hostStep;

    QString next(const QString& fallback)
    {
        if (answers.empty())
            return fallback;
        QString a = answers.front();
        answers.pop_front();
        return a;
    }
    MsgAnswer MsgBox(const QString& prompt, MsgButtons buttons, MsgIcon icon, const QString& title) override
    {
        static const std::map<QString, MsgAnswer> kAnswers{{u"Ok"_s, MsgAnswer::Ok},
                                                           {u"Cancel"_s, MsgAnswer::Cancel},
                                                           {u"Yes"_s, MsgAnswer::Yes},
                                                           {u"No"_s, MsgAnswer::No}};
        const QString names[] = {u"Ok"_s, u"OkCancel"_s, u"YesNo"_s, u"YesNoCancel"_s};
        const QString icons[] = {u"None"_s, u"Critical"_s, u"Exclamation"_s, u"Information"_s, u"Question"_s};
        const QString first = fb::FirstButton(buttons) == MsgAnswer::Yes ? u"Yes"_s : u"Ok"_s;
        QString answer = next(first);
        if (!kAnswers.count(answer))
            answer = u"%1 (not a button: %2)"_s.arg(first, answer);
        log->append(u"  box %1 %2 \"%3\": %4 -> %5"_s.arg(icons[int(icon)], names[int(buttons)],
                                                          visible(title), visible(prompt), answer));
        return kAnswers.at(answer.section(u' ', 0, 0));
    }
    QString InputBox(const QString& prompt, const QString& title, const QString&) override
    {
        const QString answer = next(QString());
        log->append(u"  input \"%1\": %2 -> \"%3\""_s.arg(visible(title), visible(prompt), answer));
        return answer;
    }
    QString EditDocText(const QString& title, const QString& text, bool editable) override
    {
        const QString answer = next(u"="_s);
        const QString result = answer == u"="_s ? text : unescapeStep(answer);
        log->append(u"  doc \"%1\"%2: %3 -> %4"_s.arg(visible(title), editable ? u""_s : u" locked"_s,
                                                      visible(text), visible(result)));
        return result;
    }
    // Answers: "ticked" (the default) takes what comes ticked, "cancel"
    // nothing; "ROW=table.field" pieces after it take more.
    QList<fb::AcceptedSuggestion>
    ReviewSuggestions(const QString& title, const QList<fb::SuggestionRow>& rows, double threshold) override
    {
        const QStringList answer = next(u"ticked"_s).split(u' ', Qt::SkipEmptyParts);
        log->append(u"  review \"%1\" from %2:"_s.arg(title).arg(threshold));
        for (; !meanwhile.empty(); meanwhile.pop_front()) {
            log->append(u"    meanwhile "_s + meanwhile.front());
            hostStep(meanwhile.front());
        }
        QList<fb::AcceptedSuggestion> taken;
        for (const fb::SuggestionRow& r : rows) {
            const bool ticked = !r.candidates.isEmpty() && r.candidates[0].score >= threshold &&
                                r.currentRule.trimmed().isEmpty();
            if (ticked && answer.value(0) == u"ticked"_s)
                taken.append({r.row, r.candidates[0].source});
            if (!r.candidates.isEmpty())
                log->append(u"    %1%2 %3 %4 (%5)"_s
                                .arg(ticked ? u"[x] "_s : u"[ ] "_s, r.field, r.candidates[0].source)
                                .arg(r.candidates[0].score, 0, 'f', 2)
                                .arg(r.candidates[0].reasons.join(u"; "_s)));
        }
        for (const QString& piece : answer.mid(1))
            taken.append({piece.section(u'=', 0, 0).toInt(), piece.section(u'=', 1)});
        return answer.value(0) == u"cancel"_s ? QList<fb::AcceptedSuggestion>() : taken;
    }
    QString ChooseTargetTable(qint16 dump, const QStringList& tables, const QString& preset) override
    {
        const QString answer = next(u"cancel"_s);
        const QString result = answer == u"cancel"_s ? preset : answer;
        log->append(u"  choose dump %1 from [%2] preset \"%3\" -> \"%4\""_s.arg(dump).arg(tables.join(u';'),
                                                                                          preset, result));
        return result;
    }
};

class Runner {
public:
    explicit Runner(const QString& documents) : m_documents(documents)
    {
        m_user.log = &m_log;
        m_user.hostStep = [this](const QString& line) {
            step(line.section(u' ', 0, 0), line.section(u' ', 1));
        };
    }

    // A fresh control: a new session, its events written to the log.
    void create()
    {
        m_sessionPtr = std::make_unique<MappingSession>(m_user);
        MappingSession* s = m_sessionPtr.get();
        const auto event = [this](const QString& name, const QStringList& args) {
            QStringList shown;
            for (const QString& a : args)
                shown.append(u'"' + visible(a) + u'"');
            m_log.append(u"  event %1(%2)"_s.arg(name, shown.join(u", "_s)));
        };
        QObject::connect(s, &MappingSession::ShowSourceTablesPopUp,
                         [=](const QString& a) { event(u"ShowSourceTablesPopUp"_s, {a}); });
        QObject::connect(s, &MappingSession::ShowConditionBuilderPopUp,
                         [=](const QString& a, const QString& b) {
                             event(u"ShowConditionBuilderPopUp"_s, {a, b});
                         });
        QObject::connect(s, &MappingSession::ShowQueryBuilderPopUp, [=](const QString& a, const QString& b) {
            event(u"ShowQueryBuilderPopUp"_s, {a, b});
        });
        QObject::connect(s, &MappingSession::ShowFunctionBuilderPopUp,
                         [=](const QString& a, const QString& b) {
                             event(u"ShowFunctionBuilderPopUp"_s, {a, b});
                         });
        QObject::connect(s, &MappingSession::SaveDoneDisabled, [=] { event(u"SaveDoneDisabled"_s, {}); });
        QObject::connect(s, &MappingSession::SaveDoneEnabled, [=] { event(u"SaveDoneEnabled"_s, {}); });
        QObject::connect(s, &MappingSession::focusRequested,
                         [this](MappingSession::Focus f) { m_log.append(u"  focus "_s + enumName(f)); });
        QObject::connect(s, &MappingSession::stepRecorded,
                         [this](const QString& text) { m_log.append(u"  step \""_s + text + u'"'); });
    }

    QString run(const QStringList& steps)
    {
        for (const QString& line : steps) {
            if (line.trimmed().isEmpty() || line.startsWith(u'#'))
                continue;
            m_log.append(u"> "_s + line);
            const qsizetype blank = line.indexOf(u' ');
            const QString verb = line.left(blank);
            const QString rest = blank < 0 ? QString() : line.mid(blank + 1);
            if (!step(verb, rest))
                m_log.append(u"  !! unknown step"_s);
        }
        return m_log.join(u'\n') + u'\n';
    }

private:
    static int num(const QString& s) { return s.toInt(); }

    bool step(const QString& verb, const QString& rest)
    {
        using Box = MappingSession::Box;
        static const std::map<QString, Box> kBoxes{{u"precondition"_s, Box::PreCondition},
                                                   {u"mainquery"_s, Box::MainQuery},
                                                   {u"functions"_s, Box::Functions},
                                                   {u"variables"_s, Box::Variables},
                                                   {u"overlay"_s, Box::Overlay}};
        const QStringList words = rest.split(u' ', Qt::SkipEmptyParts);
        if (verb == u"open") // a new control
            create();
        if (!m_sessionPtr)
            return false;
        MappingSession& s = *m_sessionPtr;
        if (verb == u"open" || verb == u"load") { // open|load FILE TABLE [view]
            QFile file(m_documents + words.value(0));
            if (!file.open(QIODevice::ReadOnly))
                return false;
            s.setEdit(words.value(2) != u"view"_s);
            s.setTargetTable(words.value(1));
            s.setMappingObjectXML(QString::fromUtf8(file.readAll()));
            s.ShowControl();
        } else if (verb == u"show") {
            s.ShowControl();
        } else if (verb == u"read") {
            m_log.append(indented(s.MappingObjectXML()).trimmed());
        } else if (verb == u"host") { // host Property value (\n escapes) | host Edit true|false
            QString value = unescapeStep(rest.section(u' ', 1));
            const QString name = words.value(0);
            if (name == u"Edit")
                s.setEdit(value == u"true"_s);
            else if (name == u"SourceTables")
                s.setSourceTables(value);
            else if (name == u"PreCondition")
                s.setPreCondition(value);
            else if (name == u"MainQuery")
                s.setMainQuery(value);
            else if (name == u"FieldMapping")
                s.setFieldMapping(value);
            else if (name == u"Editor")
                s.setEditor(value.replace(u"$SOURCE"_s, QStringLiteral(FIELDBRIDGE_SESSION_DATA)));
            else if (name == u"TargetTable")
                s.setTargetTable(value);
            else if (name == u"SetTextNumber")
                s.SetTextNumber(words.value(1), num(words.value(2)), words.value(3), words.value(4));
            else if (name == u"GridEdit")
                s.GridEdit(short(num(words.value(1))));
            else if (name == u"ask") // values the host reads back
                m_log.append(u"  MainQuery \"%1\" FieldMapping \"%2\" GetRowNumber %3 GetListItemNumber %4"_s
                                 .arg(visible(s.MainQuery()), s.FieldMapping())
                                 .arg(s.GetRowNumber(words.value(1)))
                                 .arg(s.GetListItemNumber(words.value(1))));
            else
                return false;
        } else if (verb == u"answer") {
            m_user.answers.push_back(rest);
        } else if (verb == u"meanwhile") { // meanwhile STEP: taken while the next review is open
            m_user.meanwhile.push_back(rest);
        } else if (verb == u"tab") {
            s.TabChanged(num(rest));
        } else if (verb == u"box" || verb == u"leave") {
            const auto box = kBoxes.find(words.value(0));
            if (box == kBoxes.end())
                return false;
            if (verb == u"box")
                s.setBoxText(box->second, unescapeStep(rest.section(u' ', 1)));
            else
                s.BoxLostFocus(box->second);
        } else if (verb == u"click") {
            return click(rest);
        } else if (verb == u"dump") { // choose an entry of the selector, then leave it
            s.DumpChosen(s.dumpEntries().indexOf(QRegularExpression(u"^0*"_s + rest + u"--.*"_s)));
            s.DumpSelectorLostFocus();
        } else if (verb == u"select") { // the selector's selection moves, nothing chosen
            s.setDumpIndex(s.dumpEntries().indexOf(QRegularExpression(u"^0*"_s + rest + u"--.*"_s)));
        } else if (verb == u"targettable") {
            s.setTargetTableIndex(s.targetTables().indexOf(rest));
        } else if (verb == u"cell") {
            s.setGridCurrent(num(words.value(0)), num(words.value(1)));
        } else if (verb == u"type") { // typed into the grid: first key, then the overlay
            const QString text = unescapeStep(rest);
            if (s.GridKeyPress(text.left(1), 0, false) && text.size() > 1)
                s.setBoxText(Box::Overlay, text);
        } else if (verb == u"key") { // grid keys: Tab, Return, Space, Alt+x
            const bool alt = rest.startsWith(u"Alt+"_s);
            const int key = rest == u"Tab"_s ? int(Qt::Key_Tab) : 0;
            const QString text = rest == u"Return"_s  ? u"\r"_s
                                 : rest == u"Space"_s ? u" "_s
                                 : alt                ? rest.mid(4)
                                                      : QString();
            m_log.append(u"  used %1"_s.arg(s.GridKeyPress(text, key, alt)));
        } else if (verb == u"overlaykey") {
            s.OverlayKey(rest == u"Tab"_s ? Qt::Key_Tab : Qt::Key_Escape);
        } else if (verb == u"doubleclick") {
            s.GridDoubleClicked();
        } else if (verb == u"gridfocus") {
            s.GridGotFocus();
        } else if (verb == u"tick") {
            for (const QString& w : words)
                s.sourceFields()->setChecked(num(w), true);
        } else if (verb == u"target") {
            s.setTargetFieldSelected(num(rest));
        } else if (verb == u"targetclick") {
            s.setTargetFieldSelected(num(rest));
            s.TargetFieldClicked(num(rest));
        } else if (verb == u"sort") {
            (words.value(0) == u"source"_s ? s.sourceFields() : s.targetFields())
                ->sortByHeaderClick(num(words.value(1)));
        } else if (verb == u"migrate") {
            s.MigrateSourceClicked(num(rest));
        } else if (verb == u"delete") {
            s.DeleteSourceTable(num(rest));
        } else if (verb == u"tabkey") { // Tab with Ctrl or Shift in a script box
            s.TabWithModifiers(kBoxes.at(words.value(0)), words.value(1) == u"ctrl"_s,
                               words.value(1) == u"shift"_s);
        } else if (verb == u"alt") {
            m_log.append(u"  shortcut %1"_s.arg(s.AltShortcut(rest.at(0), true)));
        } else if (verb == u"leavecontrol") {
            s.ControlLostFocus();
        } else if (verb == u"undo" || verb == u"redo") {
            verb == u"undo" ? s.Undo() : s.Redo();
            m_log.append(u"  next undo \"%1\" redo \"%2\""_s.arg(s.undoText(), s.redoText()));
        } else if (verb == u"mark") { // mark NAME: what undo or redo must give back exactly
            m_marks[rest] = s.document().Serialize() + s.rules()->rules().join(u'|');
        } else if (verb == u"same") {
            m_log.append(u"  same as %1: %2"_s.arg(rest).arg(
                m_marks.value(rest) == s.document().Serialize() + s.rules()->rules().join(u'|')));
        } else if (verb == u"find") { // find source|target|grid words
            fb::FieldFilterModel* f = words.value(0) == u"source"_s   ? s.shownSourceFields()
                                      : words.value(0) == u"target"_s ? s.shownTargetFields()
                                                                      : s.shownRules();
            f->setFilterWords(rest.section(u' ', 1));
            shown(f);
        } else if (verb == u"unmapped") {
            s.setUnmappedOnly(rest == u"on"_s);
            shown(s.shownTargetFields());
            shown(s.shownRules());
        } else if (verb == u"coverage") {
            m_log.append(u"  label \"%1\""_s.arg(s.coverageText()));
            for (int e = 0; e < s.dumpEntries().size(); ++e)
                m_log.append(u"  tip %1 \"%2\""_s.arg(e).arg(s.dumpCoverageToolTip(e)));
        } else if (verb == u"problems") {
            for (const fb::Problem& p : s.CheckMapping())
                m_log.append(u"  "_s + fb::ProblemsModel::Line(p));
        } else if (verb == u"showproblem") {
            s.ShowProblem(num(rest));
        } else if (verb == u"state") {
            state();
        } else if (verb == u"fields") {
            fields(words.value(0) == u"source"_s ? s.sourceFields() : s.targetFields());
        } else {
            return false;
        }
        return true;
    }

    bool click(const QString& name)
    {
        static const std::map<QString, void (MappingSession::*)()> kCommands{
            {u"CmdSelectSource"_s, &MappingSession::clickCmdSelectSource},
            {u"CmdBuildPre"_s, &MappingSession::clickCmdBuildPre},
            {u"cmdBuildMQ"_s, &MappingSession::clickCmdBuildMQ},
            {u"CmdPreDoc"_s, &MappingSession::clickCmdPreDoc},
            {u"CmdMQDoc"_s, &MappingSession::clickCmdMQDoc},
            {u"CmdFunction"_s, &MappingSession::clickCmdFunction},
            {u"CmdVariables"_s, &MappingSession::clickCmdVariables},
            {u"CmdOk"_s, &MappingSession::clickCmdOk},
            {u"CmdCancel"_s, &MappingSession::clickCmdCancel},
            {u"CmdPreEditor"_s, &MappingSession::clickCmdPreEditor},
            {u"CmdMqEditor"_s, &MappingSession::clickCmdMqEditor},
            {u"CmdFuncEditor"_s, &MappingSession::clickCmdFuncEditor},
            {u"PicMQResize"_s, &MappingSession::ToggleMainQuerySize},
            {u"Command1"_s, &MappingSession::clickCommand1},
            {u"CmdMap"_s, &MappingSession::clickCmdMap},
            {u"CmdGuess"_s, &MappingSession::clickCmdGuess},
            {u"CmdCopyDump"_s, &MappingSession::clickCmdCopyDump},
            {u"CmdChange"_s, &MappingSession::clickCmdChange},
            {u"CmdDumpText"_s, &MappingSession::clickCmdDumpText},
            {u"CmdEditRule"_s, &MappingSession::clickCmdEditRule},
            {u"CmdFuncBuild"_s, &MappingSession::clickCmdFuncBuild},
            {u"CmdSuggest"_s, &MappingSession::clickCmdSuggest}};
        const auto command = kCommands.find(name);
        if (command == kCommands.end())
            return false;
        (m_sessionPtr.get()->*(command->second))();
        return true;
    }

    // What the screen shows, in a few lines.
    void state()
    {
        using Box = MappingSession::Box;
        using Command = MappingSession::Command;
        MappingSession& s = *m_sessionPtr;
        QStringList off;
        for (int c = 0; c < int(MappingSession::kCommands); ++c)
            if (!s.commandEnabled(Command(c)))
                off.append(enumName(Command(c)));
        m_log.append(u"  tab %1%2 view %3%4 multi-target %5 disabled [%6]"_s.arg(s.currentTab())
                         .arg(s.tabEnabled(1) ? u""_s : u" (Define Dumps unavailable)"_s)
                         .arg(int(s.scriptView()))
                         .arg(s.mainQueryEnlarged() ? u" enlarged"_s : u""_s)
                         .arg(s.multiTarget())
                         .arg(off.join(u' ')));
        for (Box b : {Box::PreCondition, Box::MainQuery, Box::Functions, Box::Variables, Box::Overlay})
            if (!s.boxText(b).isEmpty() || s.boxLocked(b))
                m_log.append(u"  %1%2: %3"_s.arg(enumName(b), s.boxLocked(b) ? u" (locked)"_s : u""_s,
                                                 visible(s.boxText(b))));
        m_log.append(u"  source tables [%1] migrate [%2]"_s.arg(s.sourceTableRows().join(u'|'),
                                                                s.migrateRows().join(u'|')));
        m_log.append(
            u"  dumps [%1] selected %2 tag \"%3\" details \"%4\" tip \"%5\""_s.arg(s.dumpEntries().join(u'|'))
                .arg(s.dumpIndex())
                .arg(s.SelectorTag(), s.detailsCaption(), visible(s.dumpToolTip())));
        if (s.multiTarget())
            m_log.append(u"  target tables [%1] selected %2 name \"%3\""_s.arg(s.targetTables().join(u'|'))
                             .arg(s.targetTableIndex())
                             .arg(s.targetTableName()));
        QStringList rules;
        for (int r = 0; r < s.rules()->rowCount(); ++r)
            if (!s.rules()->text(r, 1).isEmpty())
                rules.append(u"%1=%2"_s.arg(r).arg(visible(s.rules()->text(r, 1))));
        m_log.append(u"  grid %1 rows, current %2,%3%4, rules: %5"_s.arg(s.rules()->rowCount())
                         .arg(s.gridRow())
                         .arg(s.gridColumn())
                         .arg(s.overlayOpen() ? u", overlay open"_s : u""_s)
                         .arg(rules.join(u"; "_s)));
    }

    // The rows a narrowed list shows: their names and marks, and the ticks it hides.
    void shown(fb::FieldFilterModel* f)
    {
        const int nameColumn = f == m_sessionPtr->shownRules()          ? 0
                               : f == m_sessionPtr->shownSourceFields() ? 2
                                                                        : 3;
        static const char* const marks[] = {"", " +", " !"};
        QStringList rows;
        for (int r = 0; r < f->rowCount(); ++r)
            rows.append(f->index(r, nameColumn).data().toString() +
                        QLatin1String(marks[f->index(r, 0).data(fb::kFieldMarkRole).toInt()]));
        m_log.append(u"  shown %1 of %2: %3%4"_s.arg(f->rowCount())
                         .arg(f->sourceModel()->rowCount())
                         .arg(rows.join(u", "_s))
                         .arg(f->hiddenCheckedCount() ? u" (%1 ticked hidden)"_s.arg(f->hiddenCheckedCount())
                                                      : u""_s));
    }

    void fields(fb::FieldListModel* model)
    {
        for (int r = 0; r < model->rowCount(); ++r) {
            QStringList cells;
            for (int c = 0; c < model->columnCount(); ++c)
                cells.append(model->cellText(r, c));
            m_log.append(u"  %1%2"_s.arg(model->isChecked(r) ? u"[x] "_s : u""_s, cells.join(u" | "_s)));
        }
    }

    QString m_documents;
    QMap<QString, QString> m_marks;
    QStringList m_log;
    ScriptedUser m_user;
    std::unique_ptr<MappingSession> m_sessionPtr;
};

} // namespace

class SessionTest : public QObject {
    Q_OBJECT

    const QString m_data = QStringLiteral(FIELDBRIDGE_SESSION_DATA);

private Q_SLOTS:
    void initTestCase()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        qputenv("FIELDBRIDGE_TEMP", QFile::encodeName(QDir::tempPath() + u"/fieldbridge-session-test"_s));
    }

    void sessions_data()
    {
        QTest::addColumn<QString>("name");
        const QStringList cases =
            QDir(m_data + u"/cases"_s).entryList({u"*.steps"_s}, QDir::Files, QDir::Name);
        QVERIFY(!cases.isEmpty());
        for (const QString& file : cases)
            QTest::newRow(qPrintable(file.chopped(6))) << file.chopped(6);
    }
    void sessions()
    {
        QFETCH(QString, name);
        QFile steps(m_data + u"/cases/"_s + name + u".steps"_s);
        QVERIFY(steps.open(QIODevice::ReadOnly));
        Runner runner(m_data + u"/documents/"_s);
        const QString log = runner.run(QString::fromUtf8(steps.readAll()).split(u'\n'));
        const QString referencePath = m_data + u"/reference/"_s + name + u".log"_s;
        if (qEnvironmentVariableIsSet("FIELDBRIDGE_UPDATE_REFERENCES")) {
            QFile out(referencePath);
            QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
            out.write(log.toUtf8());
            return;
        }
        QFile reference(referencePath);
        QVERIFY2(reference.open(QIODevice::ReadOnly), qPrintable(u"no reference: "_s + referencePath));
        const QStringList expected = QString::fromUtf8(reference.readAll()).split(u'\n');
        const QStringList actual = log.split(u'\n');
        for (qsizetype i = 0; i < std::max(expected.size(), actual.size()); ++i)
            QVERIFY2(actual.value(i) == expected.value(i),
                     qPrintable(u"%1 line %2:\n  actual   %3\n  expected %4"_s.arg(name).arg(i + 1).arg(
                         actual.value(i), expected.value(i))));
    }
};

QTEST_GUILESS_MAIN(SessionTest)
#include "tst_session.moc"
