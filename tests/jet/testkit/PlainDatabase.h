#pragma once
// The smallest database the pager can open, for tests of the layers below the format:
// page 0 starts with "PLAINDB\0" and the page size, every other page n is filled with
// the byte n + 1, so that any stray or missing write shows.

#include <memory>
#include <span>
#include <string>

#include "jet/Pager.h"

namespace jet::testkit {

inline constexpr uint32_t plainPageSize = 2048;

// Writes the file directly (no Env, no journal) and returns nothing: the path is the caller's.
void makePlainDatabase(const std::string& path, uint32_t pages, uint32_t pageSize = plainPageSize);
// What page n of a fresh plain database holds.
std::string plainPage(uint32_t n, uint32_t pageSize = plainPageSize);
uint32_t plainProbe(std::span<const uint8_t> head);
std::unique_ptr<Pager> openPlain(Env& env, const std::string& path, OpenMode mode = OpenMode::ReadWrite);

}  // namespace jet::testkit
