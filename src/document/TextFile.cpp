#include "TextFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

namespace fb {

namespace {

// True when path is a real directory (not a link) owned by this user and
// closed to everyone else, after making it so where it can.
bool isPrivateDir(const QString& path)
{
    struct stat st {};
    const QByteArray p = QFile::encodeName(path);
    if (::lstat(p.constData(), &st) != 0)
        return false;
    if (!S_ISDIR(st.st_mode) || st.st_uid != ::geteuid())
        return false;
    if ((st.st_mode & 0077) != 0 && ::chmod(p.constData(), 0700) != 0)
        return false;
    return true;
}

QString ensureTrailingSlash(QString path)
{
    if (!path.endsWith(u'/'))
        path += u'/';
    return path;
}

} // namespace

QString TempFolder()
{
    const QString configured = qEnvironmentVariable("FIELDBRIDGE_TEMP");
    if (!configured.isEmpty())
        return ensureTrailingSlash(configured);

    static std::unique_ptr<QTemporaryDir> fallback;
    if (fallback)
        return ensureTrailingSlash(fallback->path());

    const QString path =
        QDir::tempPath() + QStringLiteral("/fieldbridge-") + QString::number(::geteuid());
    const QByteArray p = QFile::encodeName(path);
    if (::mkdir(p.constData(), 0700) == 0 || isPrivateDir(path))
        return ensureTrailingSlash(path);

    // Someone else holds that name: use a fresh private folder instead.
    fallback = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/fieldbridge-XXXXXX"));
    return ensureTrailingSlash(fallback->path());
}

bool WriteTextFile(const QString& path, const QString& text, QString* error)
{
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir(folder).exists()) {
        // Asking for the temporary folder may itself create it again (it is
        // this user's private folder), so look once more before making it.
        const bool inTemp = ensureTrailingSlash(folder) == TempFolder();
        const bool made = QDir(folder).exists() ||
                          (QDir().mkpath(folder) &&
                           (!inTemp || ::chmod(QFile::encodeName(folder).constData(), 0700) == 0));
        if (!made) {
            if (error)
                *error = QStringLiteral("Cannot create the folder ") + folder;
            return false;
        }
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    file.write(text.toLocal8Bit());
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

QString ReadTextFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLocal8Bit(file.readAll());
}

} // namespace fb
