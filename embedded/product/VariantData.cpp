#include <cwchar>

#include "host/ProjectModel.h"

double CVariantData::NumberOfText() const {
  wchar_t* end = nullptr;
  const double number = std::wcstod(m_text.GetString(), &end);
  const bool isWholeText = end != m_text.GetString() && *end == 0;
  return isWholeText ? number : 0.0;
}
