#include "Command.h"

namespace fbtool {

const QList<Command>& Commands()
{
    static const QList<Command> commands{
        {"check", "The problems of the mapping; exit 1 when one is an error", &RunCheck},
        {"suggest", "Source fields for the target fields of each dump, ranked, as JSON", &RunSuggest},
        {"report", "The mapping report as HTML, Markdown or CSV", &RunReport},
    };
    return commands;
}

} // namespace fbtool
