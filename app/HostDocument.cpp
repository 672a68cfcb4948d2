#include "HostDocument.h"

#include "core/document/MappingDocument.h"
#include "core/document/TextCodec.h"
#include "core/document/TextFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>

namespace {

const int MaxRecentFiles = 8;

QString recentFilesKey()
{
    return QStringLiteral("recentFiles");
}

} // namespace

HostDocument::Decoded HostDocument::decode(const QByteArray& bytes)
{
    return fb::DecodeMappingFile(bytes);
}

QString HostDocument::sampleFileName()
{
    return QStringLiteral("klmno001.xml");
}

bool HostDocument::open(const QString& name, QString* error)
{
    const QString path = fb::LocalFilePath(name);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = tr("Cannot read %1:\n%2").arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    const QFileInfo info(path);
    if (!take(file.readAll(), info.absoluteFilePath(), info.fileName(), error))
        return false;
    addRecentFile(m_path);
    return true;
}

bool HostDocument::openSample(QString* error)
{
    const QString installed =
        QDir(QCoreApplication::applicationDirPath())
            .filePath(QString::fromUtf8(FIELDBRIDGE_EXAMPLES_FROM_BIN) + u'/' + sampleFileName());
    QFile file(QFileInfo::exists(installed) ? installed : QStringLiteral(":/samples/") + sampleFileName());
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = tr("The sample mapping object is missing.");
        return false;
    }
    return take(file.readAll(), QString(), tr("%1 (sample)").arg(sampleFileName()), error);
}

bool HostDocument::take(const QByteArray& bytes, const QString& path, const QString& displayName,
                        QString* error)
{
    const Decoded decoded = decode(bytes);
    MappingFile::Catalogue catalogue;
    QString reason;
    if (!MappingFile::readCatalogue(decoded.text, &catalogue, &reason)) {
        if (error)
            *error = tr("%1 is not a well-formed mapping object:\n%2").arg(displayName, reason);
        return false;
    }
    m_text = decoded.text;
    m_declarationRemoved = decoded.declarationRemoved;
    m_catalogue = catalogue;
    m_path = path;
    m_displayName = displayName;
    m_baseline.clear();
    return true;
}

bool HostDocument::save(const QString& controlText, const QString& name, QString* error)
{
    const QString path = fb::LocalFilePath(name);
    const auto fail = [&](const QString& file, const QString& why) {
        if (error)
            *error = tr("Cannot write %1:\n%2").arg(QDir::toNativeSeparators(file), why);
        return false;
    };
    if (!QFileInfo(path).absoluteDir().exists())
        return fail(path, tr("The folder does not exist."));
    // The previous content goes to the backup first: written anew (a link
    // planted under the backup's name is replaced, never followed).
    QFile previous(path);
    if (previous.exists() && QFileInfo(path).isFile()) {
        if (!previous.open(QIODevice::ReadOnly))
            return fail(path, previous.errorString());
        fb::TextFileWriter backup(backupPath(path));
        const QByteArray bytes = previous.readAll();
        backup.write(bytes.constData(), bytes.size());
        if (!backup.commit())
            return fail(backupPath(path), backup.error());
    }
    fb::MappingDocument indented;
    indented.LoadXml(controlText);
    const QString text = indented.IsEmpty() ? controlText : indented.SerializeIndented();
    const QByteArray bytes = text.toUtf8();
    fb::TextFileWriter file(path);
    file.write(bytes.constData(), bytes.size());
    if (!file.commit())
        return fail(path, file.error());
    const QFileInfo info(path);
    m_path = info.absoluteFilePath();
    m_displayName = info.fileName();
    m_baseline = controlText;
    addRecentFile(m_path);
    return true;
}

QStringList HostDocument::recentFiles() const
{
    return QSettings().value(recentFilesKey()).toStringList();
}

void HostDocument::addRecentFile(const QString& path)
{
    QStringList files = recentFiles();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > MaxRecentFiles)
        files.removeLast();
    QSettings().setValue(recentFilesKey(), files);
}

void HostDocument::forgetRecentFile(const QString& path)
{
    QStringList files = recentFiles();
    files.removeAll(path);
    QSettings().setValue(recentFilesKey(), files);
}

void HostDocument::clearRecentFiles()
{
    QSettings().remove(recentFilesKey());
}
