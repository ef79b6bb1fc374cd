// Types of the host's plain-function interface: points, entity names and the result buffer
// that values of any kind travel in.
#pragma once

#include "adesk.h"

using ads_real = double;
using ads_point = ads_real[3];
using ads_matrix = ads_real[4][4];
using ads_name = Adesk::LongPtr[2];

// Indices into a point.
enum { X = 0, Y = 1, Z = 2 };

struct ads_binary {
  short clen;
  char* buf;
};

/// A value; the restype of the buffer around it says which member holds.
union ads_u_val {
  ads_real rreal;
  ads_real rpoint[3];
  short rint;
  ACHAR* rstring;
  Adesk::LongPtr rlname[2];
  Adesk::Int32 rlong;
  Adesk::Int64 mnInt64;
  ads_binary rbinary;
  unsigned char ihandle[8];
};

/// One link of a list of values.
struct resbuf {
  resbuf* rbnext;
  short restype;
  ads_u_val resval;
};
