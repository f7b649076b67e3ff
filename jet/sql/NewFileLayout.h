#pragma once
// The page map of a new, empty database: which page holds what, and where each of the 31
// usage maps of the system tables lives.
//
//   page  0       file header
//   page  1       global usage map
//   pages 2-5     definitions of MSysObjects, MSysACEs, MSysQueries, MSysRelationships
//   then          the pages of usage-map rows (one in Jet 4, three in Jet 3, whose
//                 pages take 15 rows of 133 bytes each)
//   then          the roots of the seven system indexes
//   last two      the first data pages of MSysObjects and MSysACEs
//
// Map k (in the order SystemTables.cpp lists them) is row k of the first map page in
// Jet 4, row k mod 15 of map page k / 15 in Jet 3.

#include <cstdint>

#include "format/DataPage.h"
#include "format/Format.h"

namespace jet {

struct NewFileLayout {
    static constexpr uint32_t mapCount = 31;
    static constexpr uint32_t indexCount = 7;
    static constexpr uint32_t firstMapPage = 6;

    uint32_t mapsPerPage;
    uint32_t mapPageCount;

    static NewFileLayout of(Version version) {
        return version == Version::Jet3 ? NewFileLayout{15, 3} : NewFileLayout{mapCount, 1};
    }

    RowLocation map(uint32_t k) const { return {firstMapPage + k / mapsPerPage, uint8_t(k % mapsPerPage)}; }
    uint32_t mapPointer(uint32_t k) const { return map(k).pointer(); }
    uint32_t indexRoot(uint32_t i) const { return firstMapPage + mapPageCount + i; }
    uint32_t objectsDataPage() const { return indexRoot(indexCount); }
    uint32_t acesDataPage() const { return objectsDataPage() + 1; }
    uint32_t pageCount() const { return acesDataPage() + 1; }
};

}  // namespace jet
