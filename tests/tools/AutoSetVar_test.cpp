#include "AutoSetVar.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <type_traits>

#include "acedads.h"
#include "acutmem.h"
#include "adscodes.h"
#include "support/RunningHost.h"

// The guard frees nothing that it reads, so a text variable's text is lost by contract; leak
// checkers are told so.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
  return "leak:CAutoSetVar::CAutoSetVar\n";
}

namespace {

static_assert(std::is_convertible_v<const CString&, CAutoSetVar>);

CAutoSetVar guardOf(const CString& name) {
  return name;  // a name is enough where a guard is wanted
}

short osmode() {
  resbuf value = {};
  EXPECT_EQ(acedGetVar(L"OSMODE", &value), RTNORM);
  return value.resval.rint;
}

resbuf shortValue(short number) {
  resbuf value = {};
  value.restype = RTSHORT;
  value.resval.rint = number;
  return value;
}

void setOsmode(short number) {
  const resbuf value = shortValue(number);
  ASSERT_EQ(acedSetVar(L"OSMODE", &value), RTNORM);
}

TEST(AutoSetVar, GuardsTheObjectSnapModeByDefault) {
  quoin::test::RunningHost host;
  setOsmode(37);
  {
    CAutoSetVar guard;
    const resbuf off = shortValue(0);
    guard.SetVar(&off);
    EXPECT_EQ(osmode(), 0);
  }
  EXPECT_EQ(osmode(), 37);
}

TEST(AutoSetVar, IsMadeOfANameWhereAGuardIsWanted) {
  quoin::test::RunningHost host;
  setOsmode(12);
  {
    CAutoSetVar guard = guardOf("OSMODE");
    const resbuf off = shortValue(0);
    guard.SetVar(&off);
    EXPECT_EQ(osmode(), 0);
  }
  EXPECT_EQ(osmode(), 12);
}

TEST(AutoSetVar, RestoresWhenAnExceptionPassesThrough) {
  quoin::test::RunningHost host;
  setOsmode(5);
  try {
    CAutoSetVar guard("OSMODE");
    const resbuf off = shortValue(0);
    guard.SetVar(&off);
    throw std::runtime_error("cancelled");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(osmode(), 5);
  }
}

TEST(AutoSetVar, CopiesRestoreTheSameValueOnceMore) {
  quoin::test::RunningHost host;
  setOsmode(3);
  std::optional<CAutoSetVar> copy;
  {
    const CAutoSetVar guard;
    copy.emplace(guard);
  }
  setOsmode(9);
  copy.reset();
  EXPECT_EQ(osmode(), 3);
}

TEST(AutoSetVar, AnAssignedGuardRestoresWhatTheOtherSaved) {
  quoin::test::RunningHost host;
  setOsmode(3);
  {
    CAutoSetVar first;
    setOsmode(4);
    const CAutoSetVar second;
    setOsmode(5);
    first = second;
  }
  EXPECT_EQ(osmode(), 4);
}

TEST(AutoSetVar, SharesTheTextOfATextVariable) {
  quoin::test::RunningHost host;
  resbuf layer = {};
  ASSERT_EQ(acedGetVar(L"CLAYER", &layer), RTNORM);
  ASSERT_EQ(layer.restype, RTSTR);
  {
    const CAutoSetVar guard("CLAYER");
    CAutoSetVar copy(guard);
    copy.SetVar(&layer);
  }
  resbuf after = {};
  ASSERT_EQ(acedGetVar(L"CLAYER", &after), RTNORM);
  EXPECT_STREQ(after.resval.rstring, layer.resval.rstring);
  acutDelString(layer.resval.rstring);
  acutDelString(after.resval.rstring);
}

TEST(AutoSetVar, AVariableThatIsNoneDoesNoHarm) {
  quoin::test::RunningHost host;
  setOsmode(3);
  {
    CAutoSetVar guard("NOSUCHVARIABLE");
    const resbuf off = shortValue(0);
    guard.SetVar(&off);
    guard.SetVar(nullptr);
  }
  EXPECT_EQ(osmode(), 3);
}

}  // namespace
