// The workloads of this program.
#pragma once

namespace quoin::bench {

void registerBreak();
void registerMerge();
void registerDraw();
void registerShow();
void registerAxes();
void registerPolygon();
void registerFiles();

inline void registerAll() {
  registerBreak();
  registerMerge();
  registerDraw();
  registerShow();
  registerAxes();
  registerPolygon();
  registerFiles();
}

}  // namespace quoin::bench
