// A function object that paints entities in one true colour.
#pragma once

#include "afxext.h"

class AcDbEntity;

class AFX_EXT_CLASS CChangeEntityColor {
 public:
  CChangeEntityColor(unsigned char red, unsigned char green, unsigned char blue);
  CChangeEntityColor(const CChangeEntityColor&) = default;
  CChangeEntityColor& operator=(const CChangeEntityColor& other);

  /// Paints an entity that is open for write, its vertices or attributes included.
  void operator()(AcDbEntity* pEnt);

 private:
  unsigned char m_red;
  unsigned char m_green;
  unsigned char m_blue;
};
