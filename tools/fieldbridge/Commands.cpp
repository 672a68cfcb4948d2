#include "Command.h"

namespace fbtool {

const QList<Command>& Commands()
{
    static const QList<Command> commands{
        {"suggest", "Source fields for the target fields of each dump, ranked, as JSON", &RunSuggest},
    };
    return commands;
}

} // namespace fbtool
