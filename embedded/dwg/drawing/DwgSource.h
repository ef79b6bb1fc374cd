// The DWG file behind a record store: kept beside it, since saving writes the changes into it.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "embedded/dwg/drawing/DwgDrawing.h"
#include "embedded/dxf/DrawingSource.h"

namespace quoin::dwg {

class DwgSource : public dxf::DrawingSource {
 public:
  explicit DwgSource(std::unique_ptr<DwgDrawing> drawing) : m_drawing(std::move(drawing)) {}

  const char* formatName() const override { return "DWG"; }
  std::size_t fileSize() const override { return m_drawing->file().bytes().size(); }
  std::string savedBy() const override { return m_drawing->file().savedBy(); }
  std::string whyReadOnly() const override { return m_drawing->file().whyReadOnly(); }
  bool isRead(std::uint64_t handle) const override { return m_drawing->isRead(handle); }
  bool canEdit(std::uint64_t handle) const override { return m_drawing->canEdit(handle); }
  std::vector<dxf::UnreadKind> unread() const override { return m_drawing->unread(); }
  std::vector<dxf::UnreadKind> partlyRead() const override { return m_drawing->partlyRead(); }

  DwgDrawing& drawing() { return *m_drawing; }
  const DwgDrawing& drawing() const { return *m_drawing; }

 private:
  std::unique_ptr<DwgDrawing> m_drawing;
};

}  // namespace quoin::dwg
