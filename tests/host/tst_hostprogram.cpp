// The fieldbridge-host program as a user or a script starts it: the
// command line, unattended rendering of both tabs, and its exit codes.
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString hostProgram()
{
    return QString::fromLocal8Bit(qgetenv("FIELDBRIDGE_HOST"));
}

QString example(const QString& name)
{
    return QString::fromLocal8Bit(qgetenv("FIELDBRIDGE_EXAMPLES")) + u'/' + name;
}

struct Run {
    int exitCode = -1;
    QStringList out;
    QString err;
};

Run runHost(const QStringList& arguments)
{
    QProcess process;
    process.start(hostProgram(), arguments);
    Run run;
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        run.err = u"timed out"_s;
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromLocal8Bit(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    run.err = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}

} // namespace

class TestHostProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rendersBothTabs_data();
    void rendersBothTabs();
    void failsOnUnreadableInput_data();
    void failsOnUnreadableInput();
};

void TestHostProgram::rendersBothTabs_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("bundled sample") << QStringList{};
    QTest::newRow("single target") << QStringList{example(u"klmno001.xml"_s)};
    QTest::newRow("multi target") << QStringList{example(u"fghij100.xml"_s)};
    QTest::newRow("view mode") << QStringList{u"--view"_s, example(u"klmno001.xml"_s)};
}

void TestHostProgram::rendersBothTabs()
{
    QFETCH(QStringList, arguments);

    QTemporaryDir dir;
    const QString target = dir.filePath(u"shots"_s);
    const Run run = runHost(QStringList{u"--screenshot"_s, target} + arguments);
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QVERIFY2(!run.err.contains(u"did not become current"_s), qPrintable(run.err));
    QCOMPARE(run.out, (QStringList{target + u"/mapping-object.png"_s, target + u"/define-dumps.png"_s}));

    QImage pages[2];
    for (int i = 0; i < 2; ++i) {
        QVERIFY2(pages[i].load(run.out.at(i)), qPrintable(run.out.at(i)));
        QVERIFY(qAbs(pages[i].width() - 1280) <= 64);
        QVERIFY(qAbs(pages[i].height() - 800) <= 64);
        // Not a blank canvas: far more than a handful of colours.
        QSet<QRgb> colours;
        for (int y = 0; y < pages[i].height(); y += 7)
            for (int x = 0; x < pages[i].width(); x += 7)
                colours.insert(pages[i].pixel(x, y));
        QVERIFY2(colours.size() > 8, qPrintable(run.out.at(i)));
    }
    QVERIFY(pages[0] != pages[1]);
}

void TestHostProgram::failsOnUnreadableInput_data()
{
    QTest::addColumn<QString>("content");

    QTest::newRow("missing file") << QString();
    QTest::newRow("malformed XML") << u"<abcde001><PREC>"_s;
}

void TestHostProgram::failsOnUnreadableInput()
{
    QFETCH(QString, content);

    QTemporaryDir dir;
    const QString file = dir.filePath(u"input.xml"_s);
    if (!content.isNull()) {
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(content.toUtf8());
    }
    // The error box must not wait for a person: the program is unattended.
    const Run run = runHost({u"--screenshot"_s, dir.filePath(u"shots"_s), file});
    QVERIFY(run.exitCode != 0);
    QVERIFY(run.out.isEmpty());
    QVERIFY(!QFile::exists(dir.filePath(u"shots/mapping-object.png"_s)));
}

QTEST_MAIN(TestHostProgram)
#include "tst_hostprogram.moc"
