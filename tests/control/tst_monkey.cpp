// Random hands on the control: clicks, double clicks, keys, focus moves, tab
// switches and (in edit mode) typing on whatever part of the control is
// visible and enabled, with every modal box answered at random.
//
// Read-only (Edit False), nothing a person does may change the document. The
// documents are generated so that storing on leave is an identity for them
// (plain LF line breaks, no text that looks like an entity, every dump of a
// multi-target document bound). In edit mode the same actions must neither
// crash nor leave a box open.
//
// FIELDBRIDGE_MONKEY_SEED  the seed (default 20240611); a failure prints it
//                          with the steps taken, so that the run replays
// FIELDBRIDGE_MONKEY_STEPS actions per test row (default 300); a smaller
//                          number replays the start of the same run
// FIELDBRIDGE_MONKEY_TRACE set: print each step as it is taken

#include "WidgetHarness.h"

#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QTabBar>
#include <cstdio>
#include <random>

#if defined(__SANITIZE_ADDRESS__)
#define FIELDBRIDGE_HAS_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FIELDBRIDGE_HAS_ASAN 1
#endif
#endif
#ifdef FIELDBRIDGE_HAS_ASAN
#include <sanitizer/common_interface_defs.h>
#endif

using namespace fbtest;

namespace {

quint32 fromEnvironment(const char* name, quint32 fallback)
{
    bool ok = false;
    const quint32 value = qEnvironmentVariable(name).toUInt(&ok);
    return ok ? value : fallback;
}

const quint32 kSeed = fromEnvironment("FIELDBRIDGE_MONKEY_SEED", 20240611u);
const int kSteps = int(fromEnvironment("FIELDBRIDGE_MONKEY_STEPS", 300));

// How to replay the run under way, and its steps: printed on a failure and
// when a sanitizer stops the process.
QString g_replay;
QStringList g_steps;

void printSteps()
{
    std::fprintf(stderr, "monkey: %s\nmonkey: steps:\n", qPrintable(g_replay));
    for (qsizetype i = 0; i < g_steps.size(); ++i)
        std::fprintf(stderr, "  %4lld %s\n", static_cast<long long>(i + 1), qPrintable(g_steps.at(i)));
}

class Random {
public:
    explicit Random(const QString& row) // rows differ, and each replays alone
    {
        std::seed_seq seq{kSeed, quint32(qHash(row, 0))};
        m_engine.seed(seq);
    }
    quint32 below(quint32 n) { return n ? quint32(m_engine() % n) : 0; }
    template <typename T> const T& of(const QList<T>& list)
    {
        return list.at(qsizetype(below(quint32(list.size()))));
    }

private:
    std::mt19937 m_engine;
};

// 2 to 5 fields drawn from a pool, numbered 1.. in order (the grid places
// rules by No); their names go to *names.
QString randomFields(Random& rnd, QStringList* names = nullptr)
{
    QStringList pool =
        u"CUSTNO TYPE=\"L\" DIGB=\"8\"|NAME TYPE=\"S\" LENG=\"30\"|BORN TYPE=\"T\"|STAMP TYPE=\"K\"|"
        "REMARK TYPE=\"U\"|LANG TYPE=\"M\" LENG=\"10\"|AMOUNT TYPE=\"D\" DIGB=\"9\" DIGA=\"2\""_s.split(u'|');
    QString out;
    for (int i = 1, n = 2 + int(rnd.below(4)); i <= n; ++i) {
        const QString field = pool.takeAt(rnd.below(quint32(pool.size())));
        if (names)
            names->append(field.section(u' ', 0, 0));
        out += u"<%1 No=\"%2\" FNo=\"%2\" %3/>"_s.arg(field.section(u' ', 0, 0))
                   .arg(i)
                   .arg(field.section(u' ', 1));
    }
    return out;
}

// Source tables, a precondition migrating some of them, a main query for
// each, functions, variables, and one to four dumps referenced from one of
// the scripts each, with rules for some of their target table's fields.
QString generateDocument(Random& rnd, const QString& root, bool multiTarget)
{
    const QStringList targets{root.toUpper(), u"MNKYB200"_s};
    QList<QStringList> targetFields(multiTarget ? 2 : 1);
    QString tartab, srctab, dumps;
    for (int t = 0; t < targetFields.size(); ++t)
        tartab += u"<%1>%2</%1>"_s.arg(targets[t], randomFields(rnd, &targetFields[t]));
    QStringList sources;
    for (int i = 0, n = 1 + int(rnd.below(3)); i < n; ++i) {
        sources.append(u"src"_s + QString(2, QChar(u'a' + i)) + u"00"_s + QString::number(i + 1));
        srctab += u"<%1>%2</%1>"_s.arg(sources[i].toUpper(), randomFields(rnd));
    }
    QString precondition = u"| generated\n"_s;
    QStringList queries;
    for (const QString& table : sources.mid(0, 1 + int(rnd.below(quint32(sources.size()))))) {
        precondition += u"migrate "_s + table + u'\n';
        queries.append(
            u"<QUERY ST=\"%1\" TEXT=\"\">select %1.*\nfrom %1\nwhere %1.kind &lt;&gt; \"X\"\nselectdo\n"_s
                .arg(table));
    }
    QString functions = u"function extern long one()\n{\n\treturn 1\n}"_s;
    for (int d = 1, n = 1 + int(rnd.below(4)); d <= n; ++d) {
        const QString text = rnd.of(u"Customers Items Prices"_s.split(u' ')) + u' ' + QString::number(d);
        const QString reference = u"dump %1 %2\n"_s.arg(d).arg(text);
        const quint32 where = rnd.below(3);
        if (where == 0)
            precondition += reference;
        else if (where == 1)
            queries[rnd.below(quint32(queries.size()))] += u'\t' + reference;
        else
            functions += u"\nfunction extern void write%1()\n{\n\t%2}"_s.arg(d).arg(reference);
        const int t = int(rnd.below(quint32(targetFields.size())));
        dumps += u"<DUMP No=\"%1\"%2 TXT=\"%3\">"_s.arg(d).arg(
            multiTarget ? u" TT=\"%1\""_s.arg(targets[t]) : QString(), text);
        for (int f = 0; f < targetFields[t].size(); ++f) {
            const QString name = targetFields[t][f];
            const QString rule =
                rnd.of(u"%1.%2|\"fixed\"|default()|if %1.kind &gt; 1 then\n\treturn 1\nendif||"_s
                           .arg(rnd.of(sources), name.toLower())
                           .split(u'|'));
            if (!rule.isEmpty())
                dumps += u"<%1 No=\"%2\" TYPE=\"%3\" TEXT=\"\">%4</%1>"_s.arg(name)
                             .arg(f + 1)
                             .arg(int(rule.contains(u'\n')))
                             .arg(rule);
        }
        dumps += u"</DUMP>"_s;
    }
    return u"<%1><SRCTBL>%2</SRCTBL><PREC TEXT=\"\">%3end of precondition</PREC>%4<FUNCTIONS>%5</FUNCTIONS>"
           "<VAR>count~|~long~^~include std.inc</VAR>%6%7<TARTAB>%8</TARTAB><SRCTAB>%9</SRCTAB></%1>"_s.arg(
               root, sources.join(u','), precondition,
               queries.join(u"endselect</QUERY>"_s) + u"endselect</QUERY>"_s, functions, dumps,
               multiTarget ? u"<MSCRIPT><%1/><%2/></MSCRIPT>"_s.arg(targets[0], targets[1]) : QString(),
               tartab, srctab);
}

QList<QKeyCombination> keyTable()
{
    QList<QKeyCombination> keys{QKeyCombination(Qt::ShiftModifier, Qt::Key_Tab),
                                QKeyCombination(Qt::ControlModifier, Qt::Key_Space),
                                QKeyCombination(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_Z)};
    for (int k = Qt::Key_A; k <= Qt::Key_Z; ++k)
        for (Qt::KeyboardModifier m : {Qt::NoModifier, Qt::AltModifier, Qt::ControlModifier})
            keys.append(QKeyCombination(m, Qt::Key(k)));
    for (int k = Qt::Key_0; k <= Qt::Key_9; ++k)
        keys.append(QKeyCombination(Qt::Key(k)));
    for (Qt::Key k : {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Return,
                      Qt::Key_Space, Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Home,
                      Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_F4})
        keys.append(QKeyCombination(k));
    return keys;
}

const QStringList kWords =
    u"migrate srcaa001\n|dump 2 Later\n|dump|srcaa001.name|abcde001|if a then\n\tb\nendif|"
    "\t|\n|a,b|<>\""_s.split(u'|');

// A widget as a person would point at it: the nearest named part and its kind.
QString describe(const QWidget* w)
{
    const QWidget* named = w;
    while (named && named->objectName().isEmpty())
        named = named->parentWidget();
    const QString kind = w ? QString::fromLatin1(w->metaObject()->className()) : u"(nothing)"_s;
    return !named ? kind : named == w ? named->objectName() : named->objectName() + u'/' + kind;
}

void step(const QString& what)
{
    g_steps.append(what);
    if (qEnvironmentVariableIsSet("FIELDBRIDGE_MONKEY_TRACE"))
        std::fprintf(stderr, "monkey step %lld: %s\n", static_cast<long long>(g_steps.size()),
                     qPrintable(what));
}

// Any button of a message box; a word or nothing typed into an input box or
// a documentation text; a table chosen; OK or Cancel.
ModalAnswerer::Answer randomAnswer(Random& rnd)
{
    const quint32 r = rnd.below(1u << 16);
    const QString word = rnd.of(kWords).section(u'\n', 0, 0).remove(u'\t'); // an input box takes one line
    return [r, word](QWidget* w) {
        auto* combo = w->findChild<QComboBox*>(u"CmbTargetTable"_s);
        if (auto* box = qobject_cast<QMessageBox*>(w)) {
            if (!box->buttons().isEmpty())
                QTest::mouseClick(box->buttons().at(qsizetype(r % quint32(box->buttons().size()))),
                                  Qt::LeftButton);
        } else if (qobject_cast<QInputDialog*>(w)) {
            ModalAnswerer::input(word, r & 1)(w);
        } else if (combo && combo->isVisible() && combo->count() > 0) {
            ModalAnswerer::chooseTable(combo->itemText(int(r % quint32(combo->count()))), r & 2)(w);
        } else if (w->objectName() == u"FrmTxtDoc"_s) {
            ModalAnswerer::document(r & 1, (r & 4) ? word : QString())(w);
        } else if (auto* dialog = qobject_cast<QDialog*>(w)) {
            (r & 1) ? dialog->accept() : dialog->reject();
        }
    };
}

// One action on a visible, enabled part of the control or of an open popup.
void act(Host& host, Random& rnd, bool edit)
{
    static const QList<QKeyCombination> keys = keyTable();
    while (host.modals.pending() < 8) // every box gets an answer
        host.modals.expect(randomAnswer(rnd));
    if (!host.window->isActiveWindow() && !QApplication::activePopupWidget())
        host.activate();
    QWidget* popup = QApplication::activePopupWidget();
    QList<QWidget*> parts, all = (popup ? popup : host.ctl)->findChildren<QWidget*>();
    for (QWidget* w : all << popup)
        if (w && w->isVisible() && w->isEnabled() && w->width() > 0 && w->height() > 0)
            parts.append(w);
    QWidget* focus = popup ? (popup->focusWidget() ? popup->focusWidget() : popup)
                           : (QApplication::focusWidget() ? QApplication::focusWidget() : host.ctl);
    const quint32 kind = rnd.below(edit ? 100 : 85);
    if (kind < 35 && !parts.isEmpty()) {
        QWidget* w = rnd.of(parts);
        const QPoint at(int(rnd.below(quint32(w->width()))), int(rnd.below(quint32(w->height()))));
        step(u"%1 %2 at (%3,%4)"_s.arg(kind < 25 ? u"click"_s : u"double-click"_s, describe(w))
                 .arg(at.x())
                 .arg(at.y()));
        kind < 25 ? QTest::mouseClick(w, Qt::LeftButton, {}, at)
                  : QTest::mouseDClick(w, Qt::LeftButton, {}, at);
    } else if (kind < 65) {
        const QKeyCombination k = rnd.of(keys);
        step(u"key %1 to %2"_s.arg(QKeySequence(k).toString(), describe(focus)));
        QTest::keyClick(focus, k.key(), k.keyboardModifiers());
    } else if (kind < 75 && !parts.isEmpty()) {
        QWidget* w = rnd.of(parts);
        step(u"focus to "_s + describe(w));
        w->setFocus(Qt::TabFocusReason);
    } else if (kind < 85) {
        QTabBar* bar = host.tabs()->tabBar();
        const int index = int(rnd.below(2));
        step(u"click tab %1"_s.arg(index));
        if (bar->isVisible() && bar->isEnabled())
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    } else {
        const QString text = rnd.of(kWords);
        step(u"type \"%1\" into %2"_s.arg(QString(text).replace(u'\n', u"\\n"_s), describe(focus)));
        typeText(focus, text);
    }
}

} // namespace

class MonkeyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        installMessageFilter();
#ifdef FIELDBRIDGE_HAS_ASAN
        __sanitizer_set_death_callback(printSteps);
#endif
        std::fprintf(stderr, "monkey: seed %u, %d steps per row\n", kSeed, kSteps);
    }

    void monkey_data()
    {
        QTest::addColumn<bool>("edit");
        QTest::addColumn<bool>("multiTarget");
        QTest::newRow("read-only changes nothing, single target") << false << false;
        QTest::newRow("read-only changes nothing, multi target") << false << true;
        QTest::newRow("editing leaves no box open, single target") << true << false;
        QTest::newRow("editing leaves no box open, multi target") << true << true;
    }
    void monkey()
    {
        QFETCH(bool, edit);
        QFETCH(bool, multiTarget);
        const QString row = QString::fromLatin1(QTest::currentDataTag());
        g_replay =
            u"replay: FIELDBRIDGE_MONKEY_SEED=%1 FIELDBRIDGE_MONKEY_STEPS=%2 tst_monkey \"monkey:%3\""_s
                .arg(kSeed)
                .arg(kSteps)
                .arg(row);
        g_steps.clear();
        Random rnd(row);
        const QString root = u"mnkya"_s + QString::number(100 + rnd.below(900));
        Host host;
        host.ctl->setProperty("Editor", u"true"_s); // an editor that leaves the file as it is
        QVERIFY(host.open(root, generateDocument(rnd, root, multiTarget), edit));
        const QString before = host.xml();
        for (int i = 0; i < kSteps; ++i)
            act(host, rnd, edit);
        QTest::qWait(20); // queued answers and deferred work finish before anyone looks
        QStringList problems;
        if (QWidget* open = QApplication::activeModalWidget()) {
            problems.append(u"a box is still open: "_s + describe(open));
            ModalAnswerer::close(open);
        }
        if (!host.modals.unexpected().isEmpty())
            problems.append(u"boxes left open by their answer: "_s + host.modals.unexpected().join(u", "_s));
        const QString after = host.xml();
        qsizetype at = 0;
        while (at < before.size() && at < after.size() && before[at] == after[at])
            ++at;
        const auto excerpt = [at](const QString& text) {
            return QString(text.mid(std::max<qsizetype>(0, at - 80), 160)).replace(u'\n', u"\\n"_s);
        };
        if (!edit && after != before)
            problems.append(
                u"the document changed at character %1:\n  before: ...%2...\n  after:  ...%3..."_s.arg(at)
                    .arg(excerpt(before), excerpt(after)));
        host.modals.clear();
        if (!problems.isEmpty())
            printSteps(); // a test message would be cut short
        QVERIFY2(problems.isEmpty(), qPrintable(g_replay + u'\n' + problems.join(u'\n')));
    }
};

QTEST_MAIN(MonkeyTest)
#include "tst_monkey.moc"
