#include "ChangeEntityColor.h"

#include "dbmain.h"

CChangeEntityColor::CChangeEntityColor(unsigned char red, unsigned char green, unsigned char blue)
    : m_red(red), m_green(green), m_blue(blue) {}

CChangeEntityColor& CChangeEntityColor::operator=(const CChangeEntityColor&) = default;

void CChangeEntityColor::operator()(AcDbEntity* pEnt) {
  AcCmColor color;
  color.setRGB(m_red, m_green, m_blue);
  pEnt->setColor(color, true);
}
