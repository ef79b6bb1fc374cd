#include "commands/WallModel.h"

#include <fmt/format.h>

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/OutputFile.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// Wavefront OBJ: vertices counted through the file from 1, one group a wall.
std::string objText(const std::vector<WallPrism>& prisms) {
  std::string text = "# walls as closed prisms, one group a wall\n";
  std::size_t vertexCount = 0;
  for (const WallPrism& prism : prisms) {
    text += "g " + prism.name + "\n";
    // The twelve corners, each once, so that the faces share them.
    std::vector<AcGePoint3d> corners;
    std::vector<std::array<std::size_t, 4>> faces;
    for (const WallPrism::Face& face : prism.faces()) {
      std::array<std::size_t, 4> numbers{};
      for (std::size_t i = 0; i < face.size(); ++i) {
        const auto found =
            std::find_if(corners.begin(), corners.end(), [&](const AcGePoint3d& corner) {
              return corner.x == face[i].x && corner.y == face[i].y && corner.z == face[i].z;
            });
        numbers[i] = vertexCount + 1 + static_cast<std::size_t>(found - corners.begin());
        if (found == corners.end()) {
          corners.push_back(face[i]);
        }
      }
      faces.push_back(numbers);
    }
    for (const AcGePoint3d& corner : corners) {
      text += fmt::format("v {} {} {}\n", corner.x, corner.y, corner.z);
    }
    for (const std::array<std::size_t, 4>& face : faces) {
      text += "f";
      for (std::size_t i = 0; i < face.size(); ++i) {
        // A corner that falls on the one before it makes the quadrilateral a triangle.
        if (face[i] != face[(i + 3) % 4]) {
          text += fmt::format(" {}", face[i]);
        }
      }
      text += "\n";
    }
    vertexCount += corners.size();
  }
  return text;
}

/// A new drawing with a 3DFACE for every face.
void writeDxf(const std::vector<WallPrism>& prisms, const std::filesystem::path& file) {
  AcDbDatabase database(true, true);
  AcDbObjectPointer<AcDbBlockTableRecord> modelSpace(modelSpaceOf(database), AcDb::kForWrite);
  for (const WallPrism& prism : prisms) {
    for (const WallPrism::Face& face : prism.faces()) {
      auto entity = std::make_unique<AcDbFace>(face[0], face[1], face[2], face[3]);
      entity->setDatabaseDefaults(&database);
      entity->setLayer(os::fromUtf8(prism.layer).c_str());
      if (modelSpace.openStatus() != Acad::eOk ||
          modelSpace->appendAcDbEntity(entity.get()) != Acad::eOk) {
        throw CommandError(ExitCode::EntityFailed, "cannot add a face to the model");
      }
      entity.release()->close();
    }
  }
  modelSpace.close();
  if (database.saveAs(os::fromUtf8(file.string()).c_str()) != Acad::eOk) {
    throw CommandError(ExitCode::OutputUnwritable, os::toUtf8(hostx::lastFileError(&database)));
  }
}

}  // namespace

std::vector<WallPrism::Face> WallPrism::faces() const {
  const AcGeVector3d up(0.0, 0.0, height);
  const std::array<AcGePoint3d, 6> floor{startLeft, startMid, startRight,
                                         endRight,  endMid,   endLeft};
  std::vector<Face> faces;
  // Each half of the floor lies between the middle line and one side.
  const std::array<std::array<std::size_t, 4>, 2> halves{{{0, 1, 4, 5}, {1, 2, 3, 4}}};
  for (const std::array<std::size_t, 4>& half : halves) {
    // Counter-clockwise from above: the ceiling as it is, the floor turned round.
    faces.push_back(
        {floor[half[0]] + up, floor[half[1]] + up, floor[half[2]] + up, floor[half[3]] + up});
    faces.push_back({floor[half[3]], floor[half[2]], floor[half[1]], floor[half[0]]});
  }
  for (std::size_t i = 0; i < floor.size(); ++i) {
    const AcGePoint3d& from = floor[i];
    const AcGePoint3d& to = floor[(i + 1) % floor.size()];
    faces.push_back({from, to, to + up, from + up});
  }
  return faces;
}

bool WallPrism::isHiddenInJoint(std::size_t face) const {
  // Behind the four halves of floor and ceiling the sides follow in the outline's order.
  constexpr std::size_t kFirstSide = 4;
  const bool isAtStart = face == kFirstSide || face == kFirstSide + 1;
  const bool isAtEnd = face == kFirstSide + 3 || face == kFirstSide + 4;
  return (isAtStart && !isStartFree) || (isAtEnd && !isEndFree);
}

WallPrism makePrism(const BodyWall& wall, const PrepareFrom2dTo3dData& ends, double height) {
  WallPrism prism;
  prism.source = wall.line.entity;
  prism.layer = os::toUtf8(wall.line.layer());
  prism.name = prism.layer + "_" + handleText(wall.line.entity);
  if (wall.line.within) {
    prism.name += "_in_" + handleText(wall.line.within->entity);
  }
  if (wall.line.isPolylineSegment()) {
    prism.name += fmt::format("_{}", wall.line.segment);
  }
  std::replace(prism.name.begin(), prism.name.end(), ' ', '_');
  prism.startLeft = ends.ptStartLeft;
  prism.startMid = ends.ptStartMid;
  prism.startRight = ends.ptStartRight;
  prism.endRight = ends.ptEndRight;
  prism.endMid = ends.ptEndMid;
  prism.endLeft = ends.ptEndLeft;
  prism.height = height;
  prism.isStartFree = ends.bHasStartWall;
  prism.isEndFree = ends.bHasEndWall;
  return prism;
}

bool isModelFile(const std::filesystem::path& file) {
  const std::string extension = lowerCaseExtension(file);
  return extension == ".dxf" || extension == ".obj";
}

void writeModel(const std::vector<WallPrism>& prisms, const std::filesystem::path& file) {
  if (lowerCaseExtension(file) == ".obj") {
    writeWholeFile(objText(prisms), file, "write the model");
  } else {
    writeDxf(prisms, file);
  }
}

}  // namespace quoin::commands
