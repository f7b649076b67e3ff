#pragma once
// Values that fit a column, for tests that fill real tables: every type, text within the
// declared length (Latin-1 letters in Jet 4, ASCII in Jet 3, so every text index can key
// them), memo and OLE values of every size class. `unique` makes values differ between
// rows, so unique indexes take them.

#include <cstdint>
#include <random>

#include "format/TableDef.h"
#include "jet/Variant.h"

namespace jet::testkit {

Variant sampleValue(const Column& column, Version version, std::mt19937_64& rng, uint64_t unique);

}  // namespace jet::testkit
