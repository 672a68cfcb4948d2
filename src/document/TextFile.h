#pragma once

#include <QString>

// The fixed temporary folder and the whole-file text routines used for the
// export of the mapping object and the external-editor round trip.
namespace fb {

// $FIELDBRIDGE_TEMP when set; otherwise a folder of this user's own under the
// system's temporary folder, created with mode 0700. A folder of that name
// that is not this user's private directory is never used: a fresh private
// folder takes its place for the life of the process. Ends with "/".
QString TempFolder();

// Writes the whole text in the locale's encoding (UTF-8 on Linux, so no
// character of any script is lost). The file is replaced in one step: a
// reader sees the old content or the new, never half of it. Creates the
// temporary folder when the path lies in it and it is missing. Returns false
// (with the reason in error, when given) when the file cannot be written.
bool WriteTextFile(const QString& path, const QString& text, QString* error = nullptr);

// The whole file; "" for an empty or unreadable file.
QString ReadTextFile(const QString& path);

} // namespace fb
