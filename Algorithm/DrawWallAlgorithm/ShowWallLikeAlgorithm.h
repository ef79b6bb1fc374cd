// How one wall, the show wall, is displayed among the walls that exist: its two side lines,
// the lines that close its free ends and, where it meets other walls, mitred corners or short
// connecting records. Fill GetShowWall() and GetAllWallRect(), call CalcShowWall() (or
// CalcShowWallPrepareFor3d() for a 3D body), read the results. Everything lies in the XY
// plane, with Z as the normal.
#pragma once

#include <vector>

#include "afxext.h"
#include "geline3d.h"

/// A wall: its reference line and the distances of its faces from it.
struct WallEntityLikeRect {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  double dLeftWidth = 0.0;   // to the left of the direction from start to end
  double dRightWidth = 0.0;  // to the right
};

/// One straight line of the displayed outline.
struct WallDrawingSeg {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
};

/// The end faces of a wall, for building it as a body. Left and right are those of the wall's
/// own direction at both ends.
struct PrepareFrom2dTo3dData {
  bool bHasStartWall = false;  // no other wall meets the start: the face is free
  AcGePoint3d ptStartLeft;
  AcGePoint3d ptStartMid;
  AcGePoint3d ptStartRight;
  bool bHasEndWall = false;
  AcGePoint3d ptEndLeft;
  AcGePoint3d ptEndMid;
  AcGePoint3d ptEndRight;
};

/// Owns:  the records of GetAllWallRect() and of the two terminal arrays; the destructor
///        deletes them. The show wall is allocated here but deleted only if the caller puts
///        it into GetAllWallRect() too. Copies share the records.
class AFX_EXT_CLASS CShowWallLikeAlgorithm {
 public:
  CShowWallLikeAlgorithm();
  CShowWallLikeAlgorithm(const CShowWallLikeAlgorithm& other);
  CShowWallLikeAlgorithm& operator=(const CShowWallLikeAlgorithm& other);
  ~CShowWallLikeAlgorithm();

  /// All walls that the show wall may meet, for filling; null entries are skipped.
  std::vector<WallEntityLikeRect*>& GetAllWallRect();
  /// The wall to show, for filling.
  WallEntityLikeRect* GetShowWall();
  /// The side lines, each from the start corner to the end corner.
  WallDrawingSeg* GetLeftWall();
  WallDrawingSeg* GetRightWall();
  /// The lines that close the ends; null where another wall meets the end.
  WallDrawingSeg* GetStartWall();
  WallDrawingSeg* GetEndWall();
  /// Connecting records at the ends. They are never emptied: every computation adds its own.
  const std::vector<WallEntityLikeRect*>& GetStartWallArray() const;
  const std::vector<WallEntityLikeRect*>& GetEndWallArray() const;

  /// Computes the four outline lines and the connecting records.
  void CalcShowWall();
  /// Computes the end faces. Const though it is, it sets which ends are free and adds the
  /// connecting records to the object, as CalcShowWall() does; the outline stays as it was.
  PrepareFrom2dTo3dData CalcShowWallPrepareFor3d() const;

 protected:
  /// The treatment of one end. Left and right are seen from the terminal, along the wall.
  /// The show wall is added to `vecMeetWalls`, which comes back sorted by out angle.
  void ProcessWallTerminalDrawing(const AcGePoint3d& ptTerminal, bool& bHasTerminalWall,
                                  AcGePoint3d& ptLeftCorner, AcGePoint3d& ptRightCorner,
                                  std::vector<WallEntityLikeRect*>& vecMeetWalls,
                                  std::vector<WallEntityLikeRect*>& vecTerminalWallArray);
  /// The same with the middle point of the end face: where the face's line crosses the
  /// reference line of the wall clockwise next to the show wall.
  void ProcessWallTerminalDrawingFor3d(const AcGePoint3d& ptTerminal, bool& bHasTerminalWall,
                                       AcGePoint3d& ptLeftCorner, AcGePoint3d& ptMidPoint,
                                       AcGePoint3d& ptRightCorner,
                                       std::vector<WallEntityLikeRect*>& vecMeetWalls,
                                       std::vector<WallEntityLikeRect*>& vecTerminalWallArray);
  /// Moves `ptResult` to where `line` crosses the record's reference line; a null record or
  /// lines that do not cross leave it.
  void GetTerminalStartMidPt(AcGePoint3d& ptResult, WallEntityLikeRect* pRect, AcGeLine3d& line);
  /// Deletes every record and empties the array.
  void ClearWallRectArray(std::vector<WallEntityLikeRect*>& vec);

 private:
  std::vector<WallEntityLikeRect*> m_vecAllWallRect;
  WallEntityLikeRect* m_pShowWall;
  WallDrawingSeg m_leftWall;
  WallDrawingSeg m_rightWall;
  WallDrawingSeg m_startWall;
  WallDrawingSeg m_endWall;
  std::vector<WallEntityLikeRect*> m_vecStartWallArray;
  std::vector<WallEntityLikeRect*> m_vecEndWallArray;
  bool m_bHasStartWall;
  bool m_bHasEndWall;
};
