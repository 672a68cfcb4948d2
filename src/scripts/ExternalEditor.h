#pragma once

#include <QString>

namespace fb {

struct ControlState;

// The round trip of a script through an external text editor: the text is
// written to a file in the temporary folder, the editor runs on it and the
// control waits for it to end; on exit code 0 the file is read back.

// The file of a round trip: temporary folder + 8-character table name + name.
QString EditorFilePath(const ControlState& s, const QString& fileName);

// Starts the editor on the file and waits for it; its exit code, or 0 when it
// could not be started (after the message "Unable to open editor").
qint16 OpenInEditor(ControlState& s, const QString& path);

// Writes text to the file, edits it, and on success replaces text by the
// file's content (CR LF line breaks). False when the edit is discarded.
bool EditExternally(ControlState& s, const QString& fileName, QString& text);

} // namespace fb
