// The fieldbridge-host program as a user or a script starts it: the usage
// text without a display, unattended rendering of both tabs, exit codes.
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString kSample = qEnvironmentVariable("FIELDBRIDGE_EXAMPLES") + u"/klmno001.xml"_s;

struct Run {
    int exitCode = -1;
    QStringList out;
    QString err;
};

Run runHost(const QStringList& arguments, bool display = true)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!display)
        for (const QString& name : {u"QT_QPA_PLATFORM"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s})
            environment.remove(name);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(qEnvironmentVariable("FIELDBRIDGE_HOST"), arguments);
    Run run;
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
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
    void answersWithoutADisplay_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<QString>("answer");
        QTest::newRow("--help") << u"--help"_s << u"--screenshot <DIR>"_s;
        QTest::newRow("--version") << u"--version"_s << u"fieldbridge-host "_s;
    }
    void answersWithoutADisplay()
    {
        QFETCH(QString, argument);
        QFETCH(QString, answer);
        const Run run = runHost({kSample, argument}, false);
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        QVERIFY2(run.out.join(u'\n').contains(answer), qPrintable(run.out.join(u'\n')));
    }

    void rendersBothTabs_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("bundled sample") << QStringList{};
        QTest::newRow("multi target, view mode")
            << QStringList{u"--view"_s, QString(kSample).replace(u"klmno001"_s, u"fghij100"_s)};
    }
    void rendersBothTabs()
    {
        QFETCH(QStringList, arguments);
        QTemporaryDir dir;
        const QString target = dir.filePath(u"shots"_s);
        const Run run = runHost(QStringList{u"--screenshot"_s, target} + arguments);
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        QVERIFY2(!run.err.contains(u"did not become current"_s), qPrintable(run.err));
        QCOMPARE(run.out.mid(0, 2),
                 (QStringList{target + u"/mapping-object.png"_s, target + u"/define-dumps.png"_s}));
        // The review of suggestions writes rules: only in edit mode.
        QCOMPARE(run.out.mid(2), arguments.contains(u"--view"_s)
                                     ? QStringList()
                                     : QStringList{target + u"/suggestions.png"_s});
        QImage pages[2];
        for (int i = 0; i < 2; ++i) {
            QVERIFY2(pages[i].load(run.out.at(i)), qPrintable(run.out.at(i)));
            QVERIFY(qAbs(pages[i].width() - 1280) <= 64 && qAbs(pages[i].height() - 800) <= 64);
            QSet<QRgb> colours; // not a blank canvas
            for (int y = 0; y < pages[i].height(); y += 7)
                for (int x = 0; x < pages[i].width(); x += 7)
                    colours.insert(pages[i].pixel(x, y));
            QVERIFY2(colours.size() > 8, qPrintable(run.out.at(i)));
        }
        QVERIFY(pages[0] != pages[1]);
    }

    // The problem goes to standard error: no box waits for a person.
    void failsOnMalformedInputWithoutWaiting()
    {
        QTemporaryDir dir;
        QFile file(dir.filePath(u"input.xml"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("<abcde001><PREC>") > 0);
        file.close();
        const Run run = runHost({u"--screenshot"_s, dir.filePath(u"shots"_s), file.fileName()});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.out.isEmpty());
        QVERIFY2(run.err.contains(u"input.xml is not a well-formed"_s), qPrintable(run.err));
    }
};

QTEST_GUILESS_MAIN(TestHostProgram)
#include "tst_hostprogram.moc"
