#pragma once

#include <QString>
#include <memory>

class QTemporaryFile;

// The fixed temporary folder and the whole-file text routines used for the
// export of the mapping object and the external-editor round trip.
namespace fb {

// $FIELDBRIDGE_TEMP when set; otherwise a folder of this user's own under the
// system's temporary folder, created with mode 0700. A folder of that name
// that is not this user's private directory, or that was ever open to
// others, is never used: a fresh private folder takes its place for the life
// of the process. Ends with "/".
QString TempFolder();

// The file name part that the 8-character table name gives: the name as it
// is (blanks kept) when it can be a plain file name; otherwise each "/" and
// each control character in it becomes "%" and its two hexadecimal digits,
// so that no table name can reach outside the temporary folder.
QString TableFileName(const QString& tableName);

// The temporary file for a table: the temporary folder, the table's file
// name part and the suffix (".xml", "Rule.qbx", ...).
QString TempFilePath(const QString& tableName, const QString& suffix);

// Writes the whole text in the locale's encoding (UTF-8 on Linux, so no
// character of any script is lost). The file is replaced in one step by a
// new file of this user's: a reader sees the old content or the new, and a
// link planted at the path is replaced, never written through. Creates the
// temporary folder when it is missing; any other folder must exist. Returns
// false (with the reason in error, when given) when the file cannot be
// written.
bool WriteTextFile(const QString& path, const QString& text, QString* error = nullptr);

// A file written as WriteTextFile writes it, in pieces: the pieces go into
// a new file of this user's beside the target, and commit() renames it over
// the target. Nothing is left behind when it is not committed.
class TextFileWriter {
public:
    explicit TextFileWriter(const QString& path);
    ~TextFileWriter();
    TextFileWriter(const TextFileWriter&) = delete;
    TextFileWriter& operator=(const TextFileWriter&) = delete;

    // False (with the reason in error()) once a piece could not be written.
    bool write(const char* data, qsizetype size);
    bool commit();
    QString error() const { return m_error; }

private:
    bool fail(const QString& reason);

    QString m_path;
    std::unique_ptr<QTemporaryFile> m_file;
    QString m_error;
};

// A path as the file system reads it. Qt takes a path that begins with ":"
// for one into the application's resources; here it names a file in the
// current folder, as it does for every other program.
QString LocalFilePath(const QString& path);

// The whole file; "" for an empty file. A link or a file that cannot be
// read gives "" with ok false.
QString ReadTextFile(const QString& path, bool* ok = nullptr);

} // namespace fb
