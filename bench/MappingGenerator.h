#pragma once

#include <QString>

namespace fb::bench {

// Shape of a generated mapping object.
struct MappingShape {
    int sourceTables = 10;
    int fieldsPerSource = 1000;  // 10 x 1000 = 10,000 source fields
    int targetFields = 400;
    int dumps = 50;
    int rulesPerDump = 400;
    int queryLines = 200;
};

// A well-formed single-target mapping object of root "klmno001" with the
// given shape: source fields share names with target fields in part (some
// of them in several tables), array fields, every type letter.
QString GenerateMapping(const MappingShape& shape);

} // namespace fb::bench
