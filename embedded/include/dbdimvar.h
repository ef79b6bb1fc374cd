// The dimension variables as data: accessors, group code in files, first release whose files
// have the variable, and the value of a record that does not name it (which is that of the
// host's own, imperial, beginnings). AcDbDimStyleTableRecord declares and defines its members
// from these lists; a new variable is a row here.
#pragma once

// X(getter, setter, group code, since, value where missing)
#define ACDB_DIMENSION_NUMBERS(X)          \
  X(dimscale, setDimscale, 40, R10, 1.0)   \
  X(dimasz, setDimasz, 41, R10, 0.18)      \
  X(dimexo, setDimexo, 42, R10, 0.0625)    \
  X(dimdli, setDimdli, 43, R10, 0.38)      \
  X(dimexe, setDimexe, 44, R10, 0.18)      \
  X(dimrnd, setDimrnd, 45, R10, 0.0)       \
  X(dimdle, setDimdle, 46, R10, 0.0)       \
  X(dimtp, setDimtp, 47, R10, 0.0)         \
  X(dimtm, setDimtm, 48, R10, 0.0)         \
  X(dimfxlen, setDimfxlen, 49, R2007, 1.0) \
  X(dimtxt, setDimtxt, 140, R10, 0.18)     \
  X(dimcen, setDimcen, 141, R10, 0.09)     \
  X(dimtsz, setDimtsz, 142, R10, 0.0)      \
  X(dimaltf, setDimaltf, 143, R10, 25.4)   \
  X(dimlfac, setDimlfac, 144, R10, 1.0)    \
  X(dimtvp, setDimtvp, 145, R10, 0.0)      \
  X(dimtfac, setDimtfac, 146, R10, 1.0)    \
  X(dimgap, setDimgap, 147, R10, 0.09)     \
  X(dimaltrnd, setDimaltrnd, 148, R2000, 0.0)

// X(getter, setter, group code, since, value where missing, least, greatest)
#define ACDB_DIMENSION_INTEGERS(X)               \
  X(dimtad, setDimtad, 77, R10, 0, 0, 4)         \
  X(dimzin, setDimzin, 78, R10, 0, 0, 15)        \
  X(dimazin, setDimazin, 79, R2000, 0, 0, 3)     \
  X(dimarcsym, setDimarcsym, 90, R2007, 0, 0, 2) \
  X(dimaltd, setDimaltd, 171, R10, 2, 0, 8)      \
  X(dimadec, setDimadec, 179, R2000, 0, -1, 8)   \
  X(dimdec, setDimdec, 271, R13, 4, 0, 8)        \
  X(dimtdec, setDimtdec, 272, R13, 4, 0, 8)      \
  X(dimaltu, setDimaltu, 273, R13, 2, 1, 8)      \
  X(dimalttd, setDimalttd, 274, R13, 2, 0, 8)    \
  X(dimaunit, setDimaunit, 275, R13, 0, 0, 4)    \
  X(dimfrac, setDimfrac, 276, R2000, 0, 0, 2)    \
  X(dimlunit, setDimlunit, 277, R2000, 2, 1, 6)  \
  X(dimtmove, setDimtmove, 279, R2000, 0, 0, 2)  \
  X(dimjust, setDimjust, 280, R13, 0, 0, 4)      \
  X(dimtolj, setDimtolj, 283, R13, 1, 0, 2)      \
  X(dimtzin, setDimtzin, 284, R13, 0, 0, 15)     \
  X(dimaltz, setDimaltz, 285, R13, 0, 0, 15)     \
  X(dimalttz, setDimalttz, 286, R13, 0, 0, 15)   \
  X(dimfit, setDimfit, 287, R13, 3, 0, 5)        \
  X(dimatfit, setDimatfit, 289, R2000, 3, 0, 3)

// X(getter, setter, group code, since, value where missing)
#define ACDB_DIMENSION_FLAGS(X)           \
  X(dimtol, setDimtol, 71, R10, false)    \
  X(dimlim, setDimlim, 72, R10, false)    \
  X(dimtih, setDimtih, 73, R10, true)     \
  X(dimtoh, setDimtoh, 74, R10, true)     \
  X(dimse1, setDimse1, 75, R10, false)    \
  X(dimse2, setDimse2, 76, R10, false)    \
  X(dimalt, setDimalt, 170, R10, false)   \
  X(dimtofl, setDimtofl, 172, R10, false) \
  X(dimsah, setDimsah, 173, R10, false)   \
  X(dimtix, setDimtix, 174, R10, false)   \
  X(dimsoxd, setDimsoxd, 175, R10, false) \
  X(dimsd1, setDimsd1, 281, R13, false)   \
  X(dimsd2, setDimsd2, 282, R13, false)   \
  X(dimupt, setDimupt, 288, R13, false)   \
  X(dimfxlenOn, setDimfxlenOn, 290, R2007, false)

// Colours (by block where missing): X(getter, setter, group code)
#define ACDB_DIMENSION_COLORS(X) \
  X(dimclrd, setDimclrd, 176)    \
  X(dimclre, setDimclre, 177)    \
  X(dimclrt, setDimclrt, 178)

// Line weights (by block where missing), since R2000: X(getter, setter, group code)
#define ACDB_DIMENSION_WEIGHTS(X) \
  X(dimlwd, setDimlwd, 371)       \
  X(dimlwe, setDimlwe, 372)

// Texts (empty where missing): X(getter, setter, group code)
#define ACDB_DIMENSION_TEXTS(X) \
  X(dimpost, setDimpost, 3)     \
  X(dimapost, setDimapost, 4)

// Arrow blocks. Files before R2000 name the first three by text, R2000 and later by handle.
// X(getter, setter, group code, group code before R2000 or 0)
#define ACDB_DIMENSION_BLOCKS(X) \
  X(dimblk, setDimblk, 342, 5)   \
  X(dimblk1, setDimblk1, 343, 6) \
  X(dimblk2, setDimblk2, 344, 7) \
  X(dimldrblk, setDimldrblk, 341, 0)
