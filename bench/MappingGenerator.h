#pragma once

#include <QString>
#include <cstdint>
#include <string>

namespace fb::bench {

// Shape of a generated mapping object.
struct MappingShape {
    int sourceTables = 10;
    int fieldsPerSource = 1000; // 10 x 1000 = 10,000 source fields
    int targetFields = 400;
    int dumps = 50;
    int rulesPerDump = 400;
    int queryLines = 200;
};

// A well-formed single-target mapping object of root "klmno001" with the
// given shape: source fields share names with target fields in part (some
// of them in several tables), array fields, every type letter.
QString GenerateMapping(const MappingShape& shape);

// Shape of a generated multi-target mapping object. Dump numbers run from 1
// to 999 at most (a script cannot reference a dump number of four digits),
// and a dump holds at most one rule per field of its target table.
struct MultiTargetShape {
    int sourceTables = 50;
    int fieldsPerSource = 200;
    int targetTables = 20;
    int fieldsPerTarget = 400;
    int dumps = 500;
    int rulesPerDump = 200;
    std::uint64_t seed = 20240611;

    // About 8 MB: 10,000 source fields, 20 x 400 target fields, 500 dumps of
    // 200 rules (100,000 rules).
    static MultiTargetShape Large();
    // Four times large, about 33 MB: 40,000 source fields, 80 x 400 target
    // fields, and 999 dumps of 400 rules (399,600 rules): 2,000 dumps cannot
    // be numbered, so the dumps stop at 999 and carry twice the rules.
    static MultiTargetShape Huge();
};

// The document's own table (the root element and the first target table).
inline constexpr const char* kMultiTargetRoot = "klmno001";

// A well-formed multi-target mapping object of root kMultiTargetRoot, the
// same text for the same shape and seed: source tables "src??nnn", target
// tables "klmno001" and "tar??nnn" listed in MSCRIPT, dumps bound to the
// target tables in turn (TT), each referenced once from the precondition or a
// main query, rules of one or several lines, array fields, every type letter,
// texts in several scripts. About half of each source table's field names are
// target field names too, so that guessing finds rules.
std::string GenerateMultiTargetUtf8(const MultiTargetShape& shape);
QString GenerateMultiTarget(const MultiTargetShape& shape);

} // namespace fb::bench
