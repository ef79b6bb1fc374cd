#include "acadstrc.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(ErrorStatusText, IsTheNameOfTheCode) {
  EXPECT_EQ(std::wstring(acadErrorStatusText(Acad::eOk)), L"eOk");
  EXPECT_EQ(std::wstring(acadErrorStatusText(Acad::eWasErased)), L"eWasErased");
  EXPECT_EQ(std::wstring(acadErrorStatusText(Acad::eUserBreak)), L"eUserBreak");
}

TEST(ErrorStatusText, EveryCodeHasANameOfItsOwn) {
  std::set<std::wstring> names;
  for (int code = Acad::eOk; code <= Acad::eUserBreak; ++code) {
    const std::wstring name = acadErrorStatusText(static_cast<Acad::ErrorStatus>(code));
    EXPECT_NE(name, L"eUnknown") << code;
    EXPECT_TRUE(names.insert(name).second) << code;
  }
}

TEST(ErrorStatusText, AValueThatIsNoCodeIsUnknown) {
  const auto past = static_cast<Acad::ErrorStatus>(Acad::eUserBreak + 1);
  EXPECT_EQ(std::wstring(acadErrorStatusText(past)), L"eUnknown");
}

}  // namespace
