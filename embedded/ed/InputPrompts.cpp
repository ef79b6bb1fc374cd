#include "embedded/ed/InputPrompts.h"

namespace quoin::ed {

InputPrompts::InputPrompts() = default;
InputPrompts::~InputPrompts() = default;

void InputPrompts::begin(Prompt prompt, const PromptRequest& request) {
  if (m_pending.empty()) {
    notify([](AcEdInputContextReactor& reactor) { reactor.endQuiescentState(); });
  }
  m_pending.push_back(prompt);
  notifyBegin(prompt, request);
}

bool InputPrompts::end(PromptReply& reply) {
  if (m_pending.empty()) {
    return false;
  }
  const Prompt prompt = m_pending.back();
  m_pending.pop_back();
  notifyEnd(prompt, reply);
  if (m_pending.empty()) {
    notify([](AcEdInputContextReactor& reactor) { reactor.beginQuiescentState(); });
  }
  return true;
}

void InputPrompts::cancelAll() {
  PromptReply cancelled;
  cancelled.status = Acad::eCancel;
  while (end(cancelled)) {
  }
}

void InputPrompts::close() {
  cancelAll();
  m_pointManager.m_isClosed = true;
  m_pointManager.m_reactors.clear();
}

template <class Notification>
void InputPrompts::notify(const Notification& notification) {
  // A notified reactor may take itself or others off.
  const std::vector<AcEdInputContextReactor*> reactors = m_pointManager.m_reactors;
  for (AcEdInputContextReactor* const reactor : reactors) {
    if (m_pointManager.has(reactor)) {
      notification(*reactor);
    }
  }
}

void InputPrompts::notifyBegin(Prompt prompt, const PromptRequest& request) {
  const ACHAR* const text = request.text.c_str();
  const ACHAR* const keywords = request.keywords.c_str();
  const int flags = request.flags;
  const AcGePoint3d* const base = request.basePoint;
  notify([&](AcEdInputContextReactor& reactor) {
    switch (prompt) {
      case Prompt::Point:
        return reactor.beginGetPoint(base, text, flags, keywords);
      case Prompt::Angle:
        return reactor.beginGetAngle(base, text, flags, keywords);
      case Prompt::Distance:
        return reactor.beginGetDistance(base, text, flags, keywords);
      case Prompt::Orientation:
        return reactor.beginGetOrientation(base, text, flags, keywords);
      case Prompt::Corner:
        return reactor.beginGetCorner(base, text, flags, keywords);
      case Prompt::ScaleFactor:
        return reactor.beginGetScaleFactor(text, flags, keywords);
      case Prompt::String:
        return reactor.beginGetString(text, flags);
      case Prompt::Keyword:
        return reactor.beginGetKeyword(text, flags, keywords);
      case Prompt::Integer:
        return reactor.beginGetInteger(text, flags, keywords);
      case Prompt::Color:
        return reactor.beginGetColor(request.defaultColor, text, flags, keywords);
      case Prompt::Real:
        return reactor.beginGetReal(text, flags, keywords);
      case Prompt::Entity:
        return reactor.beginEntsel(text, flags, keywords);
      case Prompt::NestedEntity:
        return reactor.beginNentsel(text, request.picksByPoint, flags, keywords);
      case Prompt::Selection:
        return reactor.beginSSGet(text, flags, keywords, request.selectionPrompts.c_str(),
                                  request.selectionPoints, request.entityMask);
      case Prompt::Drag:
        return reactor.beginDragSequence(text);
    }
  });
}

void InputPrompts::notifyEnd(Prompt prompt, PromptReply& reply) {
  const ACHAR* keyword = reply.status == Acad::eKeyword ? reply.keyword.c_str() : nullptr;
  notify([&](AcEdInputContextReactor& reactor) {
    switch (prompt) {
      case Prompt::Point:
        return reactor.endGetPoint(reply.status, reply.point, keyword);
      case Prompt::Angle:
        return reactor.endGetAngle(reply.status, reply.number, keyword);
      case Prompt::Distance:
        return reactor.endGetDistance(reply.status, reply.number, keyword);
      case Prompt::Orientation:
        return reactor.endGetOrientation(reply.status, reply.number, keyword);
      case Prompt::Corner:
        return reactor.endGetCorner(reply.status, reply.point, keyword);
      case Prompt::ScaleFactor:
        return reactor.endGetScaleFactor(reply.status, reply.number, keyword);
      case Prompt::String: {
        ACHAR* text = reply.text.data();
        return reactor.endGetString(reply.status, text);
      }
      case Prompt::Keyword:
        return reactor.endGetKeyword(reply.status, keyword);
      case Prompt::Integer:
        return reactor.endGetInteger(reply.status, reply.integer, keyword);
      case Prompt::Color:
        return reactor.endGetColor(reply.status, reply.integer, keyword);
      case Prompt::Real:
        return reactor.endGetReal(reply.status, reply.number, keyword);
      case Prompt::Entity:
        return reactor.endEntsel(reply.status, reply.entity, reply.point, keyword);
      case Prompt::NestedEntity:
        return reactor.endNentsel(reply.status, reply.entity, reply.point, reply.transform,
                                  reply.references, keyword);
      case Prompt::Selection:
        return reactor.endSSGet(reply.status, reply.selection);
      case Prompt::Drag:
        return reactor.endDragSequence(reply.status, reply.point, reply.displacement);
    }
  });
}

}  // namespace quoin::ed
