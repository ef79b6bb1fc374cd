// The prompts of one document: begins and ends them as a user at the editor would, and tells
// the reactors of the document's input point manager. Prompts nest; the innermost one ends
// first. A document is quiescent while it has no prompt.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "acedinpt.h"
#include "gemat3d.h"
#include "gepnt3d.h"

namespace quoin::ed {

/// What the editor prompts for.
enum class Prompt : std::uint8_t {
  Point,
  Angle,
  Distance,
  Orientation,
  Corner,
  ScaleFactor,
  String,
  Keyword,
  Integer,
  Color,
  Real,
  Entity,
  NestedEntity,
  Selection,
  Drag
};

/// What a prompt begins with. Members that a prompt does not have are not looked at.
struct PromptRequest {
  std::wstring text;
  int flags = 0;
  std::wstring keywords;
  const AcGePoint3d* basePoint = nullptr;  // Point, Angle, Distance, Orientation, Corner
  const int* defaultColor = nullptr;       // Color
  bool picksByPoint = false;               // NestedEntity
  std::wstring selectionPrompts;           // Selection
  AcArray<AcGePoint3d> selectionPoints = AcArray<AcGePoint3d>();  // Selection
  const resbuf* entityMask = nullptr;                             // Selection
};

/// What the user answers. Reactors may change the values that they get by reference.
struct PromptReply {
  Acad::PromptStatus status = Acad::eNormal;
  std::wstring keyword;                // with status eKeyword
  AcGePoint3d point;                   // Point, Corner, Entity, NestedEntity, Drag
  double number = 0.0;                 // Angle, Distance, Orientation, ScaleFactor, Real
  int integer = 0;                     // Integer, Color
  std::wstring text;                   // String
  AcGeVector3d displacement;           // Drag
  AcGeMatrix3d transform;              // NestedEntity
  const resbuf* references = nullptr;  // NestedEntity
  AcDbObjectId entity;                 // Entity, NestedEntity
  AcDbObjectIdArray selection = AcDbObjectIdArray();  // Selection
};

class HOST_API InputPrompts {
 public:
  InputPrompts();
  ~InputPrompts();
  InputPrompts(const InputPrompts&) = delete;
  InputPrompts& operator=(const InputPrompts&) = delete;

  AcEdInputPointManager& pointManager() { return m_pointManager; }

  /// Begins a prompt; the document leaves the quiescent state with its first one.
  void begin(Prompt prompt, const PromptRequest& request = {});
  /// Ends the innermost prompt; the document is quiescent again after its last one.
  /// Fails: false when there is no prompt.
  bool end(PromptReply& reply);
  bool end() {
    PromptReply reply;
    return end(reply);
  }
  /// Ends all prompts as cancelled, innermost first.
  void cancelAll();

  /// The prompts under way, outermost first.
  const std::vector<Prompt>& pending() const { return m_pending; }
  bool isQuiescent() const { return m_pending.empty(); }
  int reactorCount() const { return static_cast<int>(m_pointManager.m_reactors.size()); }

  /// Cancels all prompts, takes all reactors off and takes no more.
  void close();

 private:
  /// Calls one notification of every reactor that is registered when its turn comes.
  template <class Notification>
  void notify(const Notification& notification);
  void notifyBegin(Prompt prompt, const PromptRequest& request);
  void notifyEnd(Prompt prompt, PromptReply& reply);

  AcEdInputPointManager m_pointManager;
  std::vector<Prompt> m_pending;
};

}  // namespace quoin::ed
