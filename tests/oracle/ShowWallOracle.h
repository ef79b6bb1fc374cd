// The outline of a wall among others, in plan and prepared for 3D, in its direct form.
#pragma once

#include <optional>
#include <vector>

#include "DrawWallAlgorithm/ShowWallLikeAlgorithm.h"

namespace quoin::oracle {

/// The lines of a connecting record: only its points mean something.
using Connection = WallDrawingSeg;

struct ShownWall {
  WallDrawingSeg left;
  WallDrawingSeg right;
  std::optional<WallDrawingSeg> start;  // absent where another wall meets the end
  std::optional<WallDrawingSeg> end;
  std::vector<Connection> startConnections;
  std::vector<Connection> endConnections;
};

struct PreparedWall {
  PrepareFrom2dTo3dData data;
  std::vector<Connection> startConnections;
  std::vector<Connection> endConnections;
};

/// `walls` are the others, without the show wall.
ShownWall showWall(const WallEntityLikeRect& show, const std::vector<WallEntityLikeRect>& walls,
                   double projectScale);
PreparedWall prepareWallFor3d(const WallEntityLikeRect& show,
                              const std::vector<WallEntityLikeRect>& walls, double projectScale);

}  // namespace quoin::oracle
