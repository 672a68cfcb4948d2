#pragma once

#include <QString>
#include <optional>

namespace fb {

// Starts the external editor on the file and waits until it ends. The
// editor is the Editor setting split into a program and its arguments (no
// shell is involved) with the file's path as one argument of its own, or,
// when the setting is blank, the system's plain text editor. Its exit code
// (a crash counts as -1), or nullopt when it could not be started.
std::optional<int> RunEditor(const QString& editorSetting, const QString& path);

} // namespace fb
