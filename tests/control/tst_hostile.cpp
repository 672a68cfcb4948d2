// Hostile input through the host interface and a person's hands: texts that
// must come back exactly, table names that are not file names, planted links,
// edits that must survive whatever way the grid is left, read-only mode that
// must change nothing, and commands that must not run inside each other.

#include "WidgetHarness.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace fbtest;

namespace {

// A document whose precondition, main query and rule of dump 1 each hold the
// given text (as XML, so that character references can be written).
QString textsDocument(const QString& xmlText)
{
    const QString dump = u"<DUMP No=\"1\" TXT=\"First\"><NAME No=\"2\" TYPE=\"0\" TEXT=\"doc\">"_s + xmlText +
                         u"</NAME></DUMP>"_s;
    return mappingObject(u"rules001"_s,
                         u"<SRCTBL>srcaa001,srcbb002</SRCTBL><PREC TEXT=\"\">"_s + xmlText +
                             u"\nmigrate srcaa001\ndump 1 First</PREC><QUERY ST=\"srcaa001\">"_s + xmlText +
                             u"</QUERY>"_s + dump,
                         rulesTargetFields(), rulesSourceTables());
}

} // namespace

class HostileTest : public HostTest {
    Q_OBJECT

    bool showRules(bool edit = true)
    {
        return host->open(u"rules001"_s, rulesDocument(), edit) && (host->clickTab(1), host->rules() == firstDumpRules());
    }
    // A click on a rule cell and typing: the first key opens the overlay.
    void typeOver(int row, const QString& text)
    {
        clickCell(host->grid(), row, 1);
        QTest::keyClick(host->grid(), text.at(0).toLatin1());
        QTest::keyClicks(host->overlay(), text.mid(1));
    }
    // Every entry of the temporary folder and of the folders around it.
    static QStringList filesAround()
    {
        QStringList all;
        for (const QString& folder : {tempDir(), tempDir() + u"../"_s, tempDir() + u"../../"_s}) {
            const QDir dir(folder);
            for (const QString& entry : dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
                all.append(QFileInfo(dir.filePath(entry)).canonicalFilePath());
        }
        all.sort();
        return all;
    }

private Q_SLOTS:
    void init()
    {
        HostTest::init();
        QDir(tempDir()).removeRecursively();
        QDir().mkpath(tempDir());
    }

    // ---- texts come back as the control's rules make them, nothing else ---------

    void textsComeBackExactly_data()
    {
        QTest::addColumn<QString>("stored"); // as written in the document
        QTest::addColumn<QString>("back");   // the text the document holds after a whole session
        QTest::addColumn<QString>("ruleType");
        QTest::newRow("leading U+FEFF") << u"\uFEFFx"_s << u"\uFEFFx"_s << u"0"_s;
        QTest::newRow("only U+FEFF") << u"\uFEFF"_s << u"\uFEFF"_s << u"0"_s;
        QTest::newRow("CR LF by reference") << u"a&#13;&#10;b"_s << u"a\nb"_s << u"1"_s;
        QTest::newRow("lone CR") << u"a&#13;b"_s << u"a\nb"_s << u"1"_s;
        QTest::newRow("CR CR LF") << u"a&#13;&#13;&#10;b"_s << u"a\n\nb"_s << u"1"_s;
        QTest::newRow("outside the basic plane") << u"📦 𝄞"_s << u"📦 𝄞"_s << u"0"_s;
    }
    void textsComeBackExactly()
    {
        QFETCH(QString, stored);
        QFETCH(QString, back);
        QFETCH(QString, ruleType);
        QVERIFY(host->open(u"rules001"_s, textsDocument(stored)));
        host->clickTab(1);
        host->chooseDump(1);
        host->clickTab(0);
        host->clickTab(1);
        const XmlElement doc = host->document();
        QCOMPARE(doc.child(u"PREC"_s).text, back + u"\nmigrate srcaa001\ndump 1 First"_s);
        QCOMPARE(doc.child(u"QUERY"_s).text, back);
        const XmlElement rule = doc.dump(1).child(u"NAME"_s);
        QCOMPARE(rule.text, back);
        QCOMPARE(rule.attribute(u"TYPE"_s), ruleType);
        QCOMPARE(rule.attribute(u"TEXT"_s), u"doc"_s);
        QCOMPARE(rule.attribute(u"No"_s), u"2"_s);
    }

    // A character outside the basic plane typed as the first key of a rule is
    // two code units: the edit starts with both.
    void firstKeyOutsideTheBasicPlane()
    {
        QVERIFY(showRules());
        clickCell(host->grid(), 1, 1);
        QTest::sendKeyEvent(QTest::KeyAction::Click, host->grid(), Qt::Key_unknown, u"😀"_s, {});
        QCOMPARE(plainText(host->overlay()), u"😀"_s);
        QTest::keyClicks(host->overlay(), u"x"_s);
        clickCell(host->grid(), 5, 1);
        QCOMPARE(host->document().dump(1).child(u"NAME"_s).text, u"😀x"_s);
    }

    // ---- files only directly in the temporary folder, never through a link -------

    void filesStayInTheTemporaryFolder_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("fileName");
        QTest::newRow("two folders up") << u"../../x"_s << u"..%2F..%2Fx .xml"_s;
        QTest::newRow("folders outside") << u"../a/b/c"_s << u"..%2Fa%2Fb%2Fc.xml"_s;
        QTest::newRow("sub-folder") << u"a/b"_s << u"a%2Fb     .xml"_s;
        QTest::newRow("absolute") << u"/etc/x"_s << u"%2Fetc%2Fx  .xml"_s;
        QTest::newRow("short name keeps its blanks") << u"abc"_s << u"abc     .xml"_s;
    }
    void filesStayInTheTemporaryFolder()
    {
        QFETCH(QString, table);
        QFETCH(QString, fileName);
        const QStringList before = filesAround();
        host->load(table, u"<x/>"_s);
        const QString xml = host->xml();
        QFile file(tempDir() + fileName);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(QDir(tempDir()).entryList().join(u'|')));
        QCOMPARE(QString::fromUtf8(file.readAll()), xml);
        QStringList expected = before;
        expected.append(QFileInfo(file).canonicalFilePath());
        expected.sort();
        QCOMPARE(filesAround(), expected);
    }

    void plantedLinksAreReplaced_data()
    {
        QTest::addColumn<bool>("targetExists");
        QTest::newRow("link to a file") << true;
        QTest::newRow("link to a missing file") << false;
    }
    void plantedLinksAreReplaced()
    {
        QFETCH(bool, targetExists);
        const QString victim = tempDir() + u"../victim-of-a-link"_s;
        QFile::remove(victim);
        if (targetExists) {
            QFile f(victim);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("precious");
        }
        const QString exportPath = tempDir() + u"klmno001.xml"_s;
        QVERIFY(QFile::link(victim, exportPath));
        host->load(u"klmno001"_s, klmnoDocument(u"<PREC>p</PREC>"_s));
        const QString xml = host->xml();
        QVERIFY(!QFileInfo(exportPath).isSymLink());
        QFile written(exportPath);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(written.readAll()), xml);
        QCOMPARE(QFileInfo::exists(victim), targetExists);
        if (targetExists) {
            QFile f(victim);
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), QByteArray("precious"));
        }
        QFile::remove(victim);
    }

    // ---- an open edit is committed whatever way the grid is left ---------------

    void openEditSurvivesLeavingTheGrid_data()
    {
        QTest::addColumn<QString>("leave");
        QTest::newRow("click on the Mapping Object tab") << u"tab"_s;
        QTest::newRow("access key of Ma&p") << u"map"_s;
    }
    void openEditSurvivesLeavingTheGrid()
    {
        QFETCH(QString, leave);
        QVERIFY(showRules());
        typeOver(1, u"typed.rule"_s);
        QVERIFY(host->overlay()->isVisible());
        if (leave == u"tab"_s) {
            host->clickTab(0);
            QCOMPARE(host->tabs()->currentIndex(), 0);
            host->clickTab(1);
        } else {
            // Nothing ticked: Ma&p says so, and the typed rule is in the grid first.
            host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
            QTest::keyClick(host->overlay(), Qt::Key_P, Qt::AltModifier);
            QTRY_COMPARE(host->modals.count(), 1);
        }
        QCOMPARE(host->rule(1), u"typed.rule"_s);
        QCOMPARE(host->document().dump(1).child(u"NAME"_s).text, u"typed.rule"_s);
    }

    // A rule still only in the grid gets a documentation number from the host,
    // which creates its element with TEXT alone; switching dumps must keep it.
    void ruleNumberedByTheHostBeforeItIsStored_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("the host's FieldMapping") << u"host"_s;
        QTest::newRow("typed into the last row, left by a focus loss") << u"typed"_s;
    }
    void ruleNumberedByTheHostBeforeItIsStored()
    {
        QFETCH(QString, how);
        const QString empty = u"<DUMP No=\"1\" TXT=\"First\"/><DUMP No=\"2\" TXT=\"Second\"/>"_s;
        QVERIFY(host->open(u"rules001"_s, rulesDocument(empty)));
        host->clickTab(1);
        if (how == u"host"_s) {
            clickCell(host->grid(), 9, 1);
            host->ctl->setProperty("FieldMapping", u"srcaa001.zip"_s);
        } else {
            typeOver(9, u"srcaa001.zip"_s);
            host->clickInto(u"lstSourceFields"_s);
        }
        QCOMPARE(host->rule(9), u"srcaa001.zip"_s);
        host->setRuleTextNumber(1, u"zip"_s, 12);
        host->chooseDump(2);
        host->chooseDump(1);
        QCOMPARE(host->rule(9), u"srcaa001.zip"_s);
        const XmlElement zip = host->document().dump(1).child(u"ZIP"_s);
        QCOMPARE(zip.attribute(u"No"_s), u"10"_s);
        QCOMPARE(zip.attribute(u"TEXT"_s), u"12"_s);
    }

    // ---- read-only is read-only -------------------------------------------------

    void readOnlyTypingChangesNothing_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::newRow("a letter") << u"q"_s;
        QTest::newRow("Alt and the letter of a disabled button") << u"alt g"_s;
        QTest::newRow("a letter, then Enter") << u"q enter"_s;
    }
    void readOnlyTypingChangesNothing()
    {
        QFETCH(QString, keys);
        QVERIFY(showRules(false));
        const QString before = host->xml();
        clickCell(host->grid(), 1, 1);
        for (const QString& key : keys.split(u' ')) {
            QWidget* target = QApplication::focusWidget();
            if (key == u"alt"_s)
                continue;
            if (key == u"enter"_s)
                QTest::keyClick(target, Qt::Key_Return);
            else
                QTest::keyClick(target, key.at(0).toLatin1(), keys.startsWith(u"alt"_s) ? Qt::AltModifier
                                                                                        : Qt::NoModifier);
        }
        clickCell(host->grid(), 5, 1);
        QCOMPARE(host->rule(1), QString());
        QCOMPARE(host->xml(), before);
    }

    // Replacing the text of the locked main query box must not lock it half way.
    void readOnlySecondMigrateSourceShowsItsQuery()
    {
        const QString xml = mappingObject(
            u"klmno001"_s,
            u"<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC>migrate pqrst002\nmigrate uvwxy003</PREC>"
            "<QUERY ST=\"pqrst002\">first query</QUERY><QUERY ST=\"uvwxy003\">second query</QUERY>"_s,
            u"<CUSTNO No=\"1\"/>"_s, {{u"pqrst002"_s, u"<A No=\"1\"/>"_s}, {u"uvwxy003"_s, u"<B No=\"1\"/>"_s}});
        QVERIFY(host->open(u"klmno001"_s, xml, false));
        QCOMPARE(host->text(u"txtMainQuery"_s), u"first query"_s);
        host->clickRow(u"lstMigrateSource"_s, 2);
        QCOMPARE(host->text(u"txtMainQuery"_s), u"second query"_s);
        QVERIFY(host->readOnly(u"txtMainQuery"_s));
    }

    // Writing back an unchanged text never creates a section.
    void cancelCreatesNoSection_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("closer");
        QTest::addColumn<bool>("edit");
        QTest::newRow("functions, Cancel") << u"CmdFunction"_s << u"CmdCancel"_s << true;
        QTest::newRow("variables, Cancel") << u"CmdVariables"_s << u"CmdCancel"_s << true;
        QTest::newRow("functions, OK without a change") << u"CmdFunction"_s << u"CmdOk"_s << true;
        QTest::newRow("variables, read-only") << u"CmdVariables"_s << u"CmdCancel"_s << false;
    }
    void cancelCreatesNoSection()
    {
        QFETCH(QString, button);
        QFETCH(QString, closer);
        QFETCH(bool, edit);
        QVERIFY(host->open(u"klmno001"_s, klmnoDocument(u"<PREC>p</PREC>"_s), edit));
        const QString before = host->xml();
        host->click(button);
        host->click(closer);
        QCOMPARE(host->xml(), before);
    }

    // ---- commands that must not run inside each other ---------------------------

    // The main query's documentation key pressed while the precondition's
    // dialog is still opening must not open a second dialog inside the first.
    void oneDocumentationDialogAtATime()
    {
        const QString xml =
            klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"pre\">migrate pqrst002</PREC>"
                          "<QUERY ST=\"pqrst002\" TEXT=\"query doc\">q</QUERY>"_s);
        QVERIFY(host->open(u"klmno001"_s, xml));
        // Access keys press their buttons a moment later; both are pressed
        // before either dialog opens.
        QWidget* focus = host->find(u"txtPreCondition"_s);
        host->modals.expect(ModalAnswerer::document(true, u"precondition text"_s));
        QTest::keyClick(focus, Qt::Key_T, Qt::AltModifier);
        QTest::keyClick(focus, Qt::Key_X, Qt::AltModifier);
        QTRY_COMPARE(host->modals.count(), 1);
        QTest::qWait(300);
        QCOMPARE(host->modals.count(), 1);
        const XmlElement doc = host->document();
        QCOMPARE(doc.child(u"PREC"_s).attribute(u"TEXT"_s), u"precondition text"_s);
        QCOMPARE(doc.child(u"QUERY"_s).attribute(u"TEXT"_s), u"query doc"_s);
    }

    // A migrate table whose valid name holds an apostrophe: its query cannot be
    // looked up (and its fields cannot be defined), but reading the document
    // never adds another QUERY for it.
    void apostropheInAMigrateTable()
    {
        const QString xml = mappingObject(u"klmno001"_s,
                                          u"<SRCTBL>ab'cd001</SRCTBL><PREC>migrate ab'cd001</PREC>"_s,
                                          u"<CUSTNO No=\"1\"/>"_s, {});
        QVERIFY(host->open(u"klmno001"_s, xml));
        host->replaceText(u"txtMainQuery"_s, u"select a"_s);
        const QString first = host->xml();

        QCOMPARE(parseXml(first).all(u"QUERY"_s).size(), 1);
        QCOMPARE(host->xml(), first);
        QCOMPARE(host->xml(), first);
    }
};

QTEST_MAIN(HostileTest)
#include "tst_hostile.moc"
