#include "TextFile.h"

#include "TextCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringConverter>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace fb {

namespace {

// True when path is a real directory (not a link) owned by this user and
// closed to everyone else. A folder that is open to others is not made
// private: whatever was planted in it meanwhile would stay.
bool isPrivateDir(const QString& path)
{
    struct stat st {};
    const QByteArray p = QFile::encodeName(path);
    if (::lstat(p.constData(), &st) != 0)
        return false;
    return S_ISDIR(st.st_mode) && st.st_uid == ::geteuid() && (st.st_mode & 0077) == 0;
}

QString ensureTrailingSlash(QString path)
{
    if (!path.endsWith(u'/'))
        path += u'/';
    return path;
}

bool isUnsafeInFileName(QChar c)
{
    return c == u'/' || c.unicode() < 0x20 || c.unicode() == 0x7F;
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

    const QString path = QDir::tempPath() + QStringLiteral("/fieldbridge-") + QString::number(::geteuid());
    const QByteArray p = QFile::encodeName(path);
    if (::mkdir(p.constData(), 0700) == 0 || isPrivateDir(path))
        return ensureTrailingSlash(path);

    // Someone else holds that name, or it was open to others: use a fresh
    // private folder instead.
    fallback = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/fieldbridge-XXXXXX"));
    return ensureTrailingSlash(fallback->path());
}

bool writeBytes(const QString& path, const QByteArray& bytes, QString* error);

QString TableFileName(const QString& tableName)
{
    if (std::none_of(tableName.cbegin(), tableName.cend(), isUnsafeInFileName))
        return tableName;
    QString safe;
    for (QChar c : tableName) {
        if (isUnsafeInFileName(c))
            safe += u'%' + QStringLiteral("%1").arg(c.unicode(), 2, 16, QChar(u'0')).toUpper();
        else
            safe += c;
    }
    return safe;
}

QString TempFilePath(const QString& tableName, const QString& suffix)
{
    return TempFolder() + TableFileName(tableName) + suffix;
}

bool WriteTextFile(const QString& path, const QString& text, QString* error)
{
    return writeBytes(path, text.toLocal8Bit(), error);
}

bool writeBytes(const QString& path, const QByteArray& bytes, QString* error)
{
    TextFileWriter file(path);
    const bool written = file.write(bytes.constData(), bytes.size()) && file.commit();
    if (!written && error)
        *error = file.error();
    return written;
}

QString LocalFilePath(const QString& path)
{
    return path.startsWith(u':') ? QStringLiteral("./") + path : path;
}

TextFileWriter::TextFileWriter(const QString& path) : m_path(LocalFilePath(path))
{
    const QString folder = QFileInfo(m_path).absolutePath();
    if (!QDir(folder).exists()) {
        // Asking for the temporary folder may itself create it again (it is
        // this user's private folder), so look once more before making it.
        // Only the temporary folder is made; any other folder that is
        // missing was mistyped or has gone, and nothing is made in its place.
        const bool inTemp = ensureTrailingSlash(folder) == TempFolder();
        const bool made =
            QDir(folder).exists() ||
            (inTemp && QDir().mkpath(folder) && ::chmod(QFile::encodeName(folder).constData(), 0700) == 0);
        if (!made) {
            fail(inTemp ? QStringLiteral("Cannot create the folder ") + folder
                        : QStringLiteral("The folder ") + folder + QStringLiteral(" does not exist"));
            return;
        }
    }
    // A new file of our own beside the target, renamed over it: the rename
    // replaces whatever entry stands at the path (a link included) instead of
    // writing into what it points to.
    m_file = std::make_unique<QTemporaryFile>(folder + QStringLiteral("/.fieldbridge-XXXXXX"));
    if (!m_file->open())
        fail(m_file->errorString());
}

TextFileWriter::~TextFileWriter() = default;

bool TextFileWriter::fail(const QString& reason)
{
    if (m_error.isEmpty())
        m_error = reason.isEmpty() ? QStringLiteral("Cannot write ") + m_path : reason;
    return false;
}

bool TextFileWriter::write(const char* data, qsizetype size)
{
    if (!m_error.isEmpty() || !m_file)
        return false;
    if (m_file->write(data, size) != size)
        return fail(m_file->errorString());
    return true;
}

namespace {

// The mode the new file takes: an existing file's own (a shared file stays
// shared), else what this process creates files with.
mode_t modeFor(const QByteArray& path)
{
    struct stat st {};
    if (::lstat(path.constData(), &st) == 0 && S_ISREG(st.st_mode))
        return st.st_mode & 07777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

bool TextFileWriter::commit()
{
    if (!m_error.isEmpty() || !m_file)
        return false;
    const QByteArray target = QFile::encodeName(m_path);
    // A file that may not be written is not replaced behind its back.
    struct stat st {};
    if (::lstat(target.constData(), &st) == 0 && S_ISREG(st.st_mode) &&
        ::access(target.constData(), W_OK) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    if (!m_file->flush())
        return fail(m_file->errorString());
    if (::fchmod(m_file->handle(), modeFor(target)) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    m_file->close();
    if (::rename(QFile::encodeName(m_file->fileName()).constData(), target.constData()) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    m_file->setAutoRemove(false); // it is the target now
    return true;
}

QString ReadTextFile(const QString& path, bool* ok)
{
    if (ok)
        *ok = false;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return QString();
    QFile file;
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return QString();
    }
    const QByteArray bytes = file.readAll();
    if (ok)
        *ok = file.error() == QFileDevice::NoError;
    return LocalText(bytes);
}

} // namespace fb
