// Random hands on the control: clicks, double clicks, keys, focus moves and
// tab switches on whatever part of the control is visible and enabled, with
// every modal box answered at random as it appears.
//
// Read-only (Edit False), nothing a person does may change the document: the
// text read after the actions equals the text read right before them. The
// documents are generated so that storing on leave is an identity for them
// (plain LF line breaks, no text that looks like an entity, every dump of a
// multi-target document bound). In edit mode the same actions, and typing,
// must neither crash nor leave a box open.
//
// FIELDBRIDGE_MONKEY_SEED  the seed (default 20240611); a failure prints it
//                          with the steps taken, so that the run replays
// FIELDBRIDGE_MONKEY_STEPS actions per test row (default 300); a smaller
//                          number replays the start of the same run
// FIELDBRIDGE_MONKEY_TRACE set: print each step as it is taken (for a crash
//                          outside the sanitizers, which print the steps)

#include "WidgetHarness.h"

#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QTabBar>

#include <algorithm>
#include <cstdio>
#include <random>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FIELDBRIDGE_HAS_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define FIELDBRIDGE_HAS_ASAN 1
#endif
#ifdef FIELDBRIDGE_HAS_ASAN
#include <sanitizer/common_interface_defs.h>
#endif

using namespace fbtest;

namespace {


quint32 seedFromEnvironment()
{
    bool ok = false;
    const quint32 seed = qEnvironmentVariable("FIELDBRIDGE_MONKEY_SEED").toUInt(&ok);
    return ok ? seed : 20240611u;
}

int stepsFromEnvironment()
{
    bool ok = false;
    const int steps = qEnvironmentVariableIntValue("FIELDBRIDGE_MONKEY_STEPS", &ok);
    return ok && steps >= 0 ? steps : 300;
}

// The steps of the run under way, printed when a sanitizer stops the process.
QStringList* g_steps = nullptr;
QString g_replay;

[[maybe_unused]] void printSteps() // the sanitizers call it when they stop the run
{
    if (!g_steps)
        return;
    std::fprintf(stderr, "monkey: %s\n", qPrintable(g_replay));
    for (qsizetype i = 0; i < g_steps->size(); ++i)
        std::fprintf(stderr, "  %4lld %s\n", static_cast<long long>(i + 1), qPrintable(g_steps->at(i)));
}

// Where two texts part, with some context on each side; line breaks spelled out.
QString difference(const QString& before, const QString& after)
{
    qsizetype at = 0;
    while (at < before.size() && at < after.size() && before[at] == after[at])
        ++at;
    const qsizetype from = std::max<qsizetype>(0, at - 80);
    const auto excerpt = [from](const QString& text) {
        return QString(text.mid(from, 160)).replace(u'\r', u"\\r"_s).replace(u'\n', u"\\n"_s).replace(u'\t', u"\\t"_s);
    };
    return u"the document changed at character %1 (lengths %2 and %3)\n  before: ...%4...\n  after:  ...%5..."_s.arg(at)
        .arg(before.size())
        .arg(after.size())
        .arg(excerpt(before), excerpt(after));
}

class Random {
public:
    explicit Random(std::seed_seq& seq) : m_engine(seq) {}
    quint32 below(quint32 n) { return n ? quint32(m_engine() % n) : 0; }
    bool chance(quint32 percent) { return below(100) < percent; }
    template <typename T>
    const T& of(const QList<T>& list) { return list.at(qsizetype(below(quint32(list.size())))); }

private:
    std::mt19937 m_engine;
};

// ---------------------------------------------------------------------------
// Generated documents

struct Field {
    QString name;
    QString attributes; // FNo, TYPE and sizes
};

const QList<Field> kFieldPool = {
    {u"CUSTNO"_s, u"TYPE=\"L\" DIGB=\"8\""_s}, {u"NAME"_s, u"TYPE=\"S\" LENG=\"30\""_s},
    {u"CITY"_s, u"TYPE=\"S\" LENG=\"20\""_s},  {u"BORN"_s, u"TYPE=\"T\""_s},
    {u"STAMP"_s, u"TYPE=\"K\""_s},             {u"REMARK"_s, u"TYPE=\"U\""_s},
    {u"LANG"_s, u"TYPE=\"M\" LENG=\"10\""_s},  {u"AMOUNT"_s, u"TYPE=\"D\" DIGB=\"9\" DIGA=\"2\""_s},
    {u"KIND"_s, u"TYPE=\"E\" LENG=\"2\""_s},   {u"ZIP"_s, u"TYPE=\"S\" LENG=\"10\""_s},
};

// count fields of the pool, numbered 1.. in order (the grid places rules by No).
QList<Field> pickFields(Random& rnd, int count)
{
    QList<Field> pool = kFieldPool;
    QList<Field> out;
    while (out.size() < count && !pool.isEmpty())
        out.append(pool.takeAt(qsizetype(rnd.below(quint32(pool.size())))));
    return out;
}

QString fieldElements(const QList<Field>& fields)
{
    QString out;
    for (int i = 0; i < fields.size(); ++i)
        out += u"<%1 No=\"%2\" FNo=\"%2\" %3/>"_s.arg(fields[i].name).arg(i + 1).arg(fields[i].attributes);
    return out;
}

QString ruleText(Random& rnd, const QString& source, const Field& field)
{
    switch (rnd.below(4)) {
    case 0:
        return source + u'.' + field.name.toLower();
    case 1:
        return u"\"fixed\""_s;
    case 2:
        return u"if "_s + source + u".kind > 1 then\n\treturn 1\nendif"_s;
    default:
        return u"default()"_s;
    }
}

struct Document {
    QString root;
    QString xml;
};

// A mapping object drawn at random: source tables with fields, a
// precondition migrating some of them, a main query for each, functions,
// variables, and dumps referenced from the scripts with rules for some of
// their target table's fields. Multi-target documents bind every dump.
Document generateDocument(Random& rnd, bool multiTarget)
{
    const QString root = u"mnkya"_s + QString::number(100 + rnd.below(900));
    const QStringList targets = multiTarget ? QStringList{root.toUpper(), u"MNKYB200"_s} : QStringList{root.toUpper()};
    QList<QList<Field>> targetFields;
    for (int t = 0; t < targets.size(); ++t)
        targetFields.append(pickFields(rnd, 2 + int(rnd.below(6))));

    QStringList sources;
    QString srctab;
    for (int i = 0, n = 1 + int(rnd.below(3)); i < n; ++i) {
        const QString name = u"src"_s + QChar(u'a' + i) + QChar(u'a' + i) + u"00"_s + QString::number(i + 1);
        sources.append(name);
        srctab += u'<' + name.toUpper() + u'>' + fieldElements(pickFields(rnd, 2 + int(rnd.below(4)))) + u"</"_s +
                  name.toUpper() + u'>';
    }
    const QStringList migrated = sources.mid(0, 1 + int(rnd.below(quint32(sources.size()))));

    const int dumpCount = 1 + int(rnd.below(4));
    QStringList dumpTexts;
    for (int d = 1; d <= dumpCount; ++d)
        dumpTexts.append(rnd.of(QStringList{u"Customers"_s, u"Addresses"_s, u"Items"_s, u"Prices"_s}) + u' ' +
                         QString::number(d));

    // Each dump is referenced from one script: the precondition, a main query
    // or the functions.
    QString precondition = u"| generated\n"_s;
    for (const QString& table : migrated)
        precondition += u"migrate "_s + table + u'\n';
    precondition += u"count = 0\n"_s;
    QStringList queries(migrated.size());
    for (int i = 0; i < migrated.size(); ++i)
        queries[i] = u"select "_s + migrated[i] + u".*\nfrom "_s + migrated[i] + u"\nwhere "_s + migrated[i] +
                     u".kind <> \"X\"\nselectdo\n\tcount = count + 1\n"_s;
    QString functions = u"function extern long one()\n{\n\treturn 1\n}\n"_s;
    for (int d = 1; d <= dumpCount; ++d) {
        const QString reference = u"dump "_s + QString::number(d) + u' ' + dumpTexts[d - 1] + u'\n';
        switch (rnd.below(3)) {
        case 0:
            precondition += reference;
            break;
        case 1:
            queries[qsizetype(rnd.below(quint32(queries.size())))] += u'\t' + reference;
            break;
        default:
            functions += u"function extern void write"_s + QString::number(d) + u"()\n{\n\t"_s + reference + u"}\n"_s;
            break;
        }
    }
    precondition += u"end of precondition"_s;

    QString sections = u"<SRCTBL>"_s + sources.join(u',') + u"</SRCTBL><PREC TEXT=\"\">"_s +
                       precondition.toHtmlEscaped() + u"</PREC>"_s;
    for (int i = 0; i < migrated.size(); ++i)
        sections += u"<QUERY ST=\""_s + migrated[i] + u"\" TEXT=\"\">"_s + (queries[i] + u"endselect"_s).toHtmlEscaped() +
                    u"</QUERY>"_s;
    sections += u"<FUNCTIONS>"_s + functions.trimmed() + u"</FUNCTIONS>"_s;
    sections += u"<VAR>count~|~long~^~rate~|~double~^~include std.inc</VAR>"_s;
    for (int d = 1; d <= dumpCount; ++d) {
        const int t = int(rnd.below(quint32(targets.size())));
        sections += u"<DUMP No=\""_s + QString::number(d) + u'"' +
                    (multiTarget ? u" TT=\""_s + targets[t] + u'"' : QString()) + u" TXT=\""_s + dumpTexts[d - 1] +
                    u"\">"_s;
        const QList<Field>& fields = targetFields[t];
        for (int f = 0; f < fields.size(); ++f) {
            if (!rnd.chance(60))
                continue;
            const QString rule = ruleText(rnd, rnd.of(sources), fields[f]);
            sections += u"<%1 No=\"%2\" TYPE=\"%3\" TEXT=\"\">%4</%1>"_s.arg(fields[f].name)
                            .arg(f + 1)
                            .arg(rule.contains(u'\n') ? u"1"_s : u"0"_s)
                            .arg(rule.toHtmlEscaped());
        }
        sections += u"</DUMP>"_s;
    }
    if (multiTarget)
        sections += u"<MSCRIPT><"_s + targets[0] + u"/><"_s + targets[1] + u"/></MSCRIPT>"_s;

    QString tartab;
    for (int t = 0; t < targets.size(); ++t)
        tartab += u'<' + targets[t] + u'>' + fieldElements(targetFields[t]) + u"</"_s + targets[t] + u'>';
    return {root, u'<' + root + u'>' + sections + u"<TARTAB>"_s + tartab + u"</TARTAB><SRCTAB>"_s + srctab +
                      u"</SRCTAB></"_s + root + u'>'};
}

// ---------------------------------------------------------------------------
// The hands

struct KeyStroke {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};

QList<KeyStroke> keyTable()
{
    QList<KeyStroke> keys;
    for (int k = Qt::Key_A; k <= Qt::Key_Z; ++k) {
        keys.append({Qt::Key(k), Qt::NoModifier});
        keys.append({Qt::Key(k), Qt::AltModifier});
        keys.append({Qt::Key(k), Qt::ControlModifier});
    }
    for (int k = Qt::Key_0; k <= Qt::Key_9; ++k)
        keys.append({Qt::Key(k), Qt::NoModifier});
    for (Qt::Key k : {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Return, Qt::Key_Space,
                      Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End,
                      Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_F4})
        keys.append({k, Qt::NoModifier});
    keys.append({Qt::Key_Tab, Qt::ShiftModifier});
    keys.append({Qt::Key_Space, Qt::ControlModifier});
    keys.append({Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier});
    return keys;
}

QString keyName(const KeyStroke& k)
{
    return QKeySequence(QKeyCombination(k.modifiers, k.key)).toString();
}

// A widget as a person would point at it: the nearest named part and its kind.
QString describe(const QWidget* w)
{
    if (!w)
        return u"(nothing)"_s;
    const QWidget* named = w;
    while (named && named->objectName().isEmpty())
        named = named->parentWidget();
    const QString kind = QString::fromLatin1(w->metaObject()->className());
    if (!named)
        return kind;
    return named == w ? named->objectName() : named->objectName() + u'/' + kind;
}

const QStringList kWords = {u"migrate srcaa001\n"_s, u"dump 2 Later\n"_s, u"dump"_s,     u"migrate"_s,
                            u"srcaa001.name"_s,       u"abcde001"_s,       u"x = 1\n"_s, u"if a then\n\tb\nendif"_s,
                            u"\t"_s,                  u"\n"_s,             u"a,b"_s,     u"<>\""_s};

class Monkey {
public:
    Monkey(Host& host, Random& rnd, bool edit) : m_host(host), m_rnd(rnd), m_edit(edit), m_keys(keyTable()) {}

    QStringList steps;

    void run(int count)
    {
        const bool trace = qEnvironmentVariableIsSet("FIELDBRIDGE_MONKEY_TRACE");
        for (int i = 0; i < count; ++i) {
            keepAnswersQueued();
            if (!m_host.window->isActiveWindow() && !QApplication::activePopupWidget())
                m_host.activate();
            const int before = int(steps.size());
            act();
            if (trace)
                for (qsizetype s = before; s < steps.size(); ++s)
                    std::fprintf(stderr, "monkey step %lld: %s\n", static_cast<long long>(s + 1),
                                 qPrintable(steps.at(s)));
        }
        // Let queued answers and deferred work finish before the caller looks.
        QTest::qWait(20);
    }

private:
    // The answerer takes the answers in turn; it must never run out, or a
    // box counts as unexpected.
    void keepAnswersQueued()
    {
        while (m_host.modals.pending() < 8)
            m_host.modals.expect(randomAnswer());
    }

    ModalAnswerer::Answer randomAnswer()
    {
        const quint32 r = m_rnd.below(1u << 16);
        // An input box takes one line: typed keys, no line breaks.
        const QString word = QString(m_rnd.of(kWords).split(u'\n').constFirst()).remove(u'\t');
        return [r, word](QWidget* w) {
            if (auto* box = qobject_cast<QMessageBox*>(w)) {
                QList<QMessageBox::StandardButton> offered;
                for (auto b : {QMessageBox::Ok, QMessageBox::Cancel, QMessageBox::Yes, QMessageBox::No})
                    if (box->button(b))
                        offered.append(b);
                if (!offered.isEmpty())
                    ModalAnswerer::press(offered.at(qsizetype(r % quint32(offered.size()))))(w);
            } else if (qobject_cast<QInputDialog*>(w)) {
                ModalAnswerer::input(word, r & 1)(w);
            } else if (w->objectName() == u"FrmTxtDoc"_s) {
                auto* combo = w->findChild<QComboBox*>(u"CmbTargetTable"_s);
                if (combo && combo->isVisible() && combo->count() > 0)
                    ModalAnswerer::chooseTable(combo->itemText(int(r % quint32(combo->count()))), r & 2)(w);
                else
                    ModalAnswerer::document(r & 1, (r & 4) ? word : QString())(w);
            } else if (auto* dialog = qobject_cast<QDialog*>(w)) {
                (r & 1) ? dialog->accept() : dialog->reject();
            }
        };
    }

    // Every visible, enabled part of the control, or of an open popup.
    QList<QWidget*> candidates() const
    {
        QWidget* popup = QApplication::activePopupWidget();
        QList<QWidget*> all = popup ? popup->findChildren<QWidget*>() : m_host.ctl->findChildren<QWidget*>();
        if (popup)
            all.prepend(popup);
        QList<QWidget*> out;
        for (QWidget* w : all)
            if (w->isVisible() && w->isEnabled() && w->width() > 0 && w->height() > 0)
                out.append(w);
        return out;
    }

    void act()
    {
        const QList<QWidget*> parts = candidates();
        const quint32 kind = m_rnd.below(m_edit ? 100 : 85);
        if (kind < 25 && !parts.isEmpty()) {
            click(m_rnd.of(parts), false);
        } else if (kind < 35 && !parts.isEmpty()) {
            click(m_rnd.of(parts), true);
        } else if (kind < 65) {
            key(m_rnd.of(m_keys));
        } else if (kind < 75 && !parts.isEmpty()) {
            moveFocus(parts);
        } else if (kind < 85) {
            switchTab(int(m_rnd.below(2)));
        } else {
            type(m_rnd.of(kWords));
        }
    }

    void click(QWidget* w, bool twice)
    {
        const QPoint at(int(m_rnd.below(quint32(w->width()))), int(m_rnd.below(quint32(w->height()))));
        steps.append(u"%1 %2 at (%3,%4)"_s.arg(twice ? u"double-click"_s : u"click"_s, describe(w))
                         .arg(at.x())
                         .arg(at.y()));
        const QPointer<QWidget> target(w);
        if (twice)
            QTest::mouseDClick(w, Qt::LeftButton, {}, at);
        else
            QTest::mouseClick(w, Qt::LeftButton, {}, at);
    }

    QWidget* keyTarget() const
    {
        if (QWidget* popup = QApplication::activePopupWidget())
            return popup->focusWidget() ? popup->focusWidget() : popup;
        QWidget* focus = QApplication::focusWidget();
        return focus ? focus : m_host.ctl;
    }

    void key(const KeyStroke& k)
    {
        QWidget* target = keyTarget();
        steps.append(u"key %1 to %2"_s.arg(keyName(k), describe(target)));
        QTest::keyClick(target, k.key, k.modifiers);
    }

    void type(const QString& text)
    {
        QWidget* target = keyTarget();
        steps.append(u"type \"%1\" into %2"_s.arg(QString(text).replace(u'\n', u"\\n"_s).replace(u'\t', u"\\t"_s),
                                                   describe(target)));
        typeText(target, text);
    }

    void moveFocus(const QList<QWidget*>& parts)
    {
        QList<QWidget*> focusable;
        for (QWidget* w : parts)
            if (w->focusPolicy() != Qt::NoFocus)
                focusable.append(w);
        if (focusable.isEmpty())
            return;
        QWidget* w = m_rnd.of(focusable);
        steps.append(u"focus to "_s + describe(w));
        w->setFocus(Qt::TabFocusReason);
    }

    void switchTab(int index)
    {
        QTabBar* bar = m_host.tabs()->tabBar();
        if (!bar->isVisible() || !bar->isEnabled()) {
            steps.append(u"tab %1: the tab strip is not there"_s.arg(index));
            return;
        }
        steps.append(u"click tab %1"_s.arg(index));
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    }

    Host& m_host;
    Random& m_rnd;
    bool m_edit;
    QList<KeyStroke> m_keys;
};


// What a run left behind.
struct Outcome {
    QString problems; // boxes left open; "" when none
    QString before;   // the document read before the actions
    QString after;    // and after them
};

} // namespace

class MonkeyTest : public QObject {
    Q_OBJECT

private:
    quint32 m_seed = seedFromEnvironment();
    int m_steps = stepsFromEnvironment();
    QStringList m_lastSteps;

    // The run's own seed: the base seed and the row, so that rows differ and
    // each replays alone.
    std::seed_seq seedFor(const QString& row) const
    {
        return std::seed_seq{m_seed, quint32(qHash(row, 0))};
    }

    QString replayHint() const
    {
        return u"replay: FIELDBRIDGE_MONKEY_SEED=%1 FIELDBRIDGE_MONKEY_STEPS=%2 tst_monkey \"%3:%4\""_s.arg(m_seed)
            .arg(m_steps)
            .arg(QString::fromLatin1(QTest::currentTestFunction()), QString::fromLatin1(QTest::currentDataTag()));
    }

    // A failure that is not expected: every step goes to the error output
    // (a test message would be cut short); returns the message, which says
    // how to replay.
    QString failure(const QString& what)
    {
        std::fprintf(stderr, "monkey: %s\nmonkey: %s\nmonkey: steps:\n", qPrintable(replayHint()), qPrintable(what));
        for (qsizetype i = 0; i < m_lastSteps.size(); ++i)
            std::fprintf(stderr, "  %4lld %s\n", static_cast<long long>(i + 1), qPrintable(m_lastSteps.at(i)));
        return replayHint() + u'\n' + what;
    }

    static void documents_data()
    {
        QTest::addColumn<bool>("multiTarget");
        QTest::newRow("single target") << false;
        QTest::newRow("multi target") << true;
    }

    // Runs the monkey on a fresh host with a generated document.
    Outcome runMonkey(bool edit, bool multiTarget)
    {
        std::seed_seq seq = seedFor(QString::fromLatin1(QTest::currentDataTag()));
        Random rnd(seq);
        const Document doc = generateDocument(rnd, multiTarget);
        Host host;
        host.ctl->setProperty("Editor", u"true"_s); // an editor that leaves the file as it is
        Outcome out;
        if (!host.open(doc.root, doc.xml, edit)) {
            out.problems = u"the host window did not become active"_s;
            return out;
        }
        out.before = host.xml();

        Monkey monkey(host, rnd, edit);
        g_steps = &monkey.steps;
        g_replay = replayHint();
        monkey.run(m_steps);

        QStringList problems;
        if (QWidget* open = QApplication::activeModalWidget()) {
            problems.append(u"a box is still open: "_s + describe(open));
            ModalAnswerer::close(open);
        }
        if (!host.modals.unexpected().isEmpty())
            problems.append(u"boxes left open by their answer: "_s + host.modals.unexpected().join(u", "_s));
        out.problems = problems.join(u'\n');
        out.after = host.xml();
        m_lastSteps = monkey.steps;
        g_steps = nullptr;
        host.modals.clear();
        return out;
    }

private Q_SLOTS:
    void initTestCase()
    {
        installMessageFilter();
#ifdef FIELDBRIDGE_HAS_ASAN
        __sanitizer_set_death_callback(printSteps);
#endif
        std::fprintf(stderr, "monkey: seed %u, %d steps per row\n", m_seed, m_steps);
    }

    // Read-only, the scripts, lists and every other section stay as they
    // were; so do the dumps, but see below.
    void readOnlyActionsChangeNothing_data() { documents_data(); }
    void readOnlyActionsChangeNothing()
    {
        QFETCH(bool, multiTarget);
        const Outcome run = runMonkey(false, multiTarget);
        if (!run.problems.isEmpty())
            QFAIL(qPrintable(failure(run.problems)));
        if (run.after != run.before)
            QFAIL(qPrintable(failure(difference(run.before, run.after))));
    }

    void editingNeverLeavesABoxOpen_data() { documents_data(); }
    void editingNeverLeavesABoxOpen()
    {
        QFETCH(bool, multiTarget);
        const Outcome run = runMonkey(true, multiTarget);
        if (!run.problems.isEmpty())
            QFAIL(qPrintable(failure(run.problems)));
    }
};

QTEST_MAIN(MonkeyTest)
#include "tst_monkey.moc"
