// The fieldbridge tool run as a pipeline runs it: what each command line
// exits with, that errors are one line on stderr, and the JSON of suggest.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const char* const kMapping = R"(<abcde001>
  <SRCTBL>srcaa001,srcbb002</SRCTBL>
  <PREC>dump 2 b dump 1 a</PREC>
  <DUMP No="2" TT="taryy002"/>
  <DUMP No="1" TT="tarxx001"/>
  <MSCRIPT><tarxx001/><taryy002/></MSCRIPT>
  <TARTAB>
    <TARXX001><CUSTNO No="1" TYPE="S" LENG="10"/><QTY__2 No="2" TYPE="L" DIGB="9"/><NAME No="3" TYPE="S" LENG="40"/></TARXX001>
    <TARYY002><ORDER_DATE No="1" TYPE="T"/></TARYY002>
  </TARTAB>
  <SRCTAB>
    <SRCAA001><CUST_NO No="1" TYPE="S" LENG="8"/><QUANTITY__2 No="2" TYPE="I" DIGB="4"/></SRCAA001>
    <SRCBB002><ORDER_DT No="1" TYPE="K"/><CUSTOMER_NUMBER No="2" TYPE="S" LENG="8"/></SRCBB002>
  </SRCTAB>
</abcde001>)";

struct Run {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

Run run(const QStringList& args)
{
    QProcess p;
    p.start(QStringLiteral(FIELDBRIDGE_TOOL), args);
    Run r;
    if (!p.waitForFinished(60000) || p.exitStatus() != QProcess::NormalExit)
        return r;
    r.exitCode = p.exitCode();
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

} // namespace

class FieldbridgeToolTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }
    void write(const QString& name, const QByteArray& text)
    {
        QFile f(path(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(text);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        write(u"mapping.xml"_s, kMapping);
        write(u"broken.xml"_s, "<abcde001><SRCTBL>srcaa001</abcde001>");
        write(u"short.xml"_s, "<abc><SRCTBL/></abc>");
        write(u"latin1.xml"_s,
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<abcde001><PREC>dump 1 x</PREC>"
              "<DUMP No=\"1\" TT=\"abcde001\"/><TARTAB><ABCDE001><F No=\"1\" DSCA=\"Stra\xdf"
              "e\"/></ABCDE001></TARTAB></abcde001>");
        write(u"deep.xml"_s, "<abcde001>" + QByteArray("<a>").repeated(1200) +
                                 QByteArray("</a>").repeated(1200) + "</abcde001>");
        QByteArray errors = kMapping;
        errors.replace("<DUMP No=\"1\" TT=\"tarxx001\"/>",
                       "<PREC>dump 1 x</PREC><DUMP No=\"1\" TT=\"tarxx001\"><NAME No=\"3\">srcxx001.a &amp; "
                       "\"=x\"</NAME></DUMP>");
        write(u"errors.xml"_s, errors);
    }

    // Placeholders in the arguments: @ stands for the scratch folder.
    void exitStatus_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("says"); // a piece of the output, or of the error line
        QTest::newRow("overview") << u"--help"_s << 0 << u"suggest"_s;
        QTest::newRow("help of a command") << u"suggest --help"_s << 0 << u"Usage: fieldbridge suggest"_s;
        QTest::newRow("help COMMAND") << u"help suggest"_s << 0 << u"Usage: fieldbridge suggest"_s;
        QTest::newRow("suggestions") << u"suggest @/mapping.xml"_s << 0 << u"\"dumps\""_s;
        QTest::newRow("no command") << QString() << 2 << QString();
        QTest::newRow("unknown command") << u"frobnicate @/mapping.xml"_s << 2 << QString();
        QTest::newRow("no file") << u"suggest"_s << 2 << QString();
        QTest::newRow("two files") << u"suggest @/mapping.xml @/mapping.xml"_s << 2 << QString();
        QTest::newRow("unknown option") << u"suggest @/mapping.xml --bogus"_s << 2 << QString();
        QTest::newRow("top of nought") << u"suggest @/mapping.xml --top 0"_s << 2 << QString();
        QTest::newRow("dump that is no number") << u"suggest @/mapping.xml --dump x"_s << 2 << QString();
        QTest::newRow("dump number beyond 999")
            << u"suggest @/mapping.xml --dump 1000"_s << 2 << u"1 to 999"_s;
        QTest::newRow("missing file") << u"suggest @/missing.xml"_s << 2 << QString();
        QTest::newRow("a folder") << u"suggest @"_s << 2 << QString();
        QTest::newRow("not well-formed") << u"suggest @/broken.xml"_s << 2 << u"line 1, column"_s;
        QTest::newRow("nested too deep") << u"check @/deep.xml"_s << 2 << u"nested deeper than 1000"_s;
        QTest::newRow("root is no table name") << u"suggest @/short.xml"_s << 2 << u"<abc>"_s;
        QTest::newRow("no such dump") << u"suggest @/mapping.xml --dump 9"_s << 1 << QString();
        QTest::newRow("check, nothing wrong") << u"check @/mapping.xml"_s << 0 << QString();
        QTest::newRow("check, unknown format") << u"check @/mapping.xml --format xml"_s << 2 << QString();
        QTest::newRow("check, not well-formed") << u"check @/broken.xml"_s << 2 << QString();
        QTest::newRow("report as CSV") << u"report @/errors.xml --format csv"_s << 0 << u"srcxx001.a"_s;
        QTest::newRow("report without format") << u"report @/mapping.xml"_s << 2 << QString();
        QTest::newRow("empty file name") << u"check ''"_s << 2 << u"no file name given"_s;
        QTest::newRow("encoding the file declares")
            << u"report @/latin1.xml --format csv"_s << 0 << u"Stra\u00dfe"_s;
        QTest::newRow("report into a folder")
            << u"report @/mapping.xml --format md -o @"_s << 1 << u"folder"_s;
        QTest::newRow("report into a new folder")
            << u"report @/mapping.xml --format md -o @/new/"_s << 1 << u"it is a folder"_s;
        QTest::newRow("report into a missing folder")
            << u"report @/mapping.xml --format md -o @/missing/out.md"_s << 1 << u"does not exist"_s;
    }

    // Output that cannot arrive is an error, and an OUT that is a pipe gets
    // the text through it and stays a pipe.
    void outputThatCannotArrive()
    {
        QProcess p;
        p.setStandardOutputFile(u"/dev/full"_s);
        p.start(QStringLiteral(FIELDBRIDGE_TOOL),
                {u"report"_s, path(u"mapping.xml"_s), u"--format"_s, u"md"_s});
        QVERIFY(p.waitForFinished(60000));
        QCOMPARE(p.exitCode(), 1);
        QVERIFY(p.readAllStandardError().contains("cannot write to standard output"));
    }
    // Qt takes a name that begins with ":" for a resource path; to the tool
    // it is a file in the current folder, read and written there.
    void namesBeginningWithAColon()
    {
        QVERIFY(QFile::copy(path(u"mapping.xml"_s), m_dir.path() + u"/:in.xml"_s));
        QProcess p;
        p.setWorkingDirectory(m_dir.path());
        p.start(QStringLiteral(FIELDBRIDGE_TOOL),
                {u"report"_s, u":in.xml"_s, u"--format"_s, u"md"_s, u"-o"_s, u":out.md"_s});
        QVERIFY(p.waitForFinished(60000));
        QCOMPARE(p.exitCode(), 0);
        QFile out(m_dir.path() + u"/:out.md"_s);
        QVERIFY(out.open(QIODevice::ReadOnly) && out.readAll().startsWith("# Mapping report: abcde001"));
        QVERIFY(!QFileInfo::exists(m_dir.path() + u"/:"_s)); // no folder made on the way
    }

    // A file name in another encoding than UTF-8 cannot be passed on
    // unchanged: it is refused as such, not reported missing.
    void fileNameThatIsNotUtf8()
    {
        QProcess p;
        p.start(u"/bin/sh"_s, {u"-c"_s, u"exec \"$0\" check \"$(printf 'caf\\351.xml')\""_s,
                               QStringLiteral(FIELDBRIDGE_TOOL)});
        QVERIFY(p.waitForFinished(60000));
        QCOMPARE(p.exitCode(), 2);
        QVERIFY(p.readAllStandardError().contains("argument 2 is not valid UTF-8"));
    }
    void outIntoAPipe()
    {
        const QString fifo = path(u"pipe"_s);
        QVERIFY(::mkfifo(QFile::encodeName(fifo).constData(), 0600) == 0);
        const int reader = ::open(QFile::encodeName(fifo).constData(), O_RDONLY | O_NONBLOCK);
        QVERIFY(reader >= 0);
        const Run shown = run({u"report"_s, path(u"mapping.xml"_s), u"--format"_s, u"md"_s});
        const Run r = run({u"report"_s, path(u"mapping.xml"_s), u"--format"_s, u"md"_s, u"-o"_s, fifo});
        QByteArray received(shown.out.size() + 1, '\0');
        const ssize_t n = ::read(reader, received.data(), size_t(received.size()));
        ::close(reader);
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(received.left(qsizetype(n)), shown.out);
        struct stat st {};
        QVERIFY(::stat(QFile::encodeName(fifo).constData(), &st) == 0 && S_ISFIFO(st.st_mode));
    }

    // An error found: the listing on stdout and exit 1; a report written
    // to a file holds what stdout would have shown.
    void checkAndReportFiles()
    {
        Run r = run({u"check"_s, path(u"errors.xml"_s), u"--format"_s, u"json"_s});
        QCOMPARE(r.exitCode, 1);
        const QJsonArray problems = QJsonDocument::fromJson(r.out).array();
        QVERIFY2(!problems.isEmpty() && problems[0][u"kind"_s] == u"unknown-table"_s, r.out.constData());
        QCOMPARE(problems[0][u"dump"_s].toInt(), 1);
        const Run shown = run({u"report"_s, path(u"errors.xml"_s), u"--format"_s, u"html"_s});
        r = run({u"report"_s, path(u"errors.xml"_s), u"--format"_s, u"html"_s, u"-o"_s, path(u"out.html"_s)});
        QCOMPARE(r.exitCode, 0);
        QFile out(path(u"out.html"_s));
        QVERIFY(out.open(QIODevice::ReadOnly));
        QCOMPARE(out.readAll(), shown.out);
        QVERIFY(shown.out.contains("&amp;"));
    }
    void exitStatus()
    {
        QFETCH(QString, args);
        QFETCH(int, exitCode);
        QFETCH(QString, says);
        QStringList list = args.split(u' ', Qt::SkipEmptyParts);
        for (QString& a : list)
            a = a == u"''" ? QString() : a.replace(u'@', m_dir.path());
        const Run r = run(list);
        QCOMPARE(r.exitCode, exitCode);
        if (exitCode == 0) {
            QVERIFY(r.err.isEmpty());
            QVERIFY2(QString::fromUtf8(r.out).contains(says), r.out.constData());
        } else {
            // One clear line, naming the tool; nothing on stdout.
            QVERIFY(r.out.isEmpty());
            QVERIFY2(r.err.startsWith("fieldbridge") && r.err.endsWith('\n') && r.err.count('\n') == 1 &&
                         QString::fromUtf8(r.err).contains(says),
                     r.err.constData());
        }
    }

    void suggestionsJson_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<QList<int>>("dumps");
        QTest::addColumn<int>("top");
        QTest::newRow("all dumps, three candidates") << QString() << QList<int>{2, 1} << 3;
        QTest::newRow("one dump, one candidate") << u"--dump 1 --top 1"_s << QList<int>{1} << 1;
    }
    void suggestionsJson()
    {
        QFETCH(QString, args);
        QFETCH(QList<int>, dumps);
        QFETCH(int, top);
        const Run r =
            run(QStringList{u"suggest"_s, path(u"mapping.xml"_s)} + args.split(u' ', Qt::SkipEmptyParts));
        QCOMPARE(r.exitCode, 0);
        QJsonParseError error;
        const QJsonDocument json = QJsonDocument::fromJson(r.out, &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        const QSet<QString> sources{u"srcaa001.cust_no"_s, u"srcaa001.quantity(2)"_s, u"srcbb002.order_dt"_s,
                                    u"srcbb002.customer_number"_s};
        QList<int> seenDumps;
        for (const QJsonValue& d : json[u"dumps"_s].toArray()) {
            seenDumps.append(d[u"dump"_s].toInt());
            QCOMPARE(d[u"targetTable"_s].toString(),
                     d[u"dump"_s].toInt() == 1 ? u"tarxx001"_s : u"taryy002"_s);
            QSet<QString> fields;
            for (const QJsonValue& f : d[u"fields"_s].toArray()) {
                const QString name = f[u"field"_s].toString();
                QVERIFY2(!name.isEmpty() && !fields.contains(name), qPrintable(name));
                fields.insert(name);
                const QJsonArray candidates = f[u"candidates"_s].toArray();
                QVERIFY(candidates.size() <= top);
                double previous = 1.0;
                for (const QJsonValue& c : candidates) {
                    QVERIFY(sources.contains(c[u"source"_s].toString()));
                    const double score = c[u"score"_s].toDouble(-1);
                    QVERIFY(score >= 0.0 && score <= previous);
                    previous = score;
                    QVERIFY(c[u"reasons"_s].isArray() && !c[u"reasons"_s].toArray().isEmpty());
                }
            }
            if (d[u"dump"_s].toInt() == 1)
                QCOMPARE(fields, (QSet<QString>{u"custno"_s, u"qty(2)"_s, u"name"_s}));
        }
        QCOMPARE(seenDumps, dumps);
    }
};

QTEST_GUILESS_MAIN(FieldbridgeToolTest)
#include "tst_fieldbridge.moc"
