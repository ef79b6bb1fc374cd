// A module with commands of every behaviour, for the program's tests.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "acdocman.h"
#include "aced.h"
#include "afxext.h"
#include "arxEntryPoint.h"
#include "dbapserv.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "hostcommand.h"
#include "rxframe.h"

namespace {

AcDbBlockTableRecord* openModelSpace() {
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
  if (!database || database != curDoc()->database() ||
      database->getBlockTable(blocks, AcDb::kForRead) != Acad::eOk) {
    throw std::runtime_error("no drawing is current");
  }
  blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
  blocks->close();
  return space;
}

/// A line of the length that is answered, from the point that is answered.
AcDbLine* addLine() {
  ads_point start;
  double length = 0.0;
  if (acedGetPoint(nullptr, L"\nStart point: ", start) != RTNORM ||
      acedGetReal(L"\nLength: ", &length) != RTNORM) {
    return nullptr;
  }
  const AcGePoint3d from(start[0], start[1], start[2]);
  auto* const line = new AcDbLine(from, from + AcGeVector3d::kXAxis * length);
  AcDbBlockTableRecord* const space = openModelSpace();
  space->appendAcDbEntity(line);
  space->close();
  return line;
}

void add() {
  if (AcDbLine* const line = addLine()) {
    line->close();
  }
}

void leaveOpen() {
  addLine();
}

void tell() {
  for (const std::wstring& word : hostx::commandArguments()) {
    std::printf("argument %ls\n", word.c_str());
  }
}

void addAndThrow() {
  add();
  std::printf("before the end\n");
  throw std::runtime_error("the roof is missing");
}

void throwNumber() {
  throw 5;
}

void crash() {
  std::raise(SIGSEGV);
}

void hang() {
  for (;;) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

constexpr AcRxCommandEntry kCommands[] = {
    {L"TESTS", L"ADDLINE", L"ADDLINE", ACRX_CMD_MODAL, &add},
    {L"TESTS", L"LEAVEOPEN", L"LEAVEOPEN", ACRX_CMD_MODAL, &leaveOpen},
    {L"TESTS", L"TELL", L"TELL", ACRX_CMD_MODAL, &tell},
    {L"TESTS", L"ADDANDTHROW", L"ADDANDTHROW", ACRX_CMD_MODAL, &addAndThrow},
    {L"TESTS", L"THROWNUMBER", L"THROWNUMBER", ACRX_CMD_MODAL, &throwNumber},
    {L"TESTS", L"CRASH", L"CRASH", ACRX_CMD_MODAL, &crash},
    {L"TESTS", L"HANG", L"HANG", ACRX_CMD_MODAL, &hang}};

class CommandsApp : public AcRxArxApp {
 public:
  CommandsApp() {
    m_bUnlocked = true;
    m_bMDIAware = true;
    m_commandMap = kCommands;
  }
  void RegisterServerComponents() override {}
};

CommandsApp s_app;

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  return s_app.dispatch(msg, pkt);
}

extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
