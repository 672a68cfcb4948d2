#pragma once

#include <Qt>

namespace fb {

// What the grid and the target list mark a target field with, beside its
// text: a rule it has, or a mandatory field still without one.
enum class FieldMark { None, Mapped, MandatoryOpen };

// The item data role that carries a field's FieldMark (as an int); asked of
// the first column of the grid and of the target list.
constexpr int kFieldMarkRole = Qt::UserRole + 1;

} // namespace fb
