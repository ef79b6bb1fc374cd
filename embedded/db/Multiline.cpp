#include "embedded/db/Multiline.h"

#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/TagList.h"

namespace quoin::db {

namespace {

// Group codes of MLINE, as the DXF reference has them.
constexpr int kFlags = 71;
constexpr int kClosed = 2;
constexpr int kVertex = 11;
constexpr int kDirection = 12;
constexpr int kMiter = 13;
constexpr int kParameterCount = 74;
constexpr int kParameter = 41;

/// One vertex: the segment that begins there, and each element's parameters. The first is how far
/// along the miter the element lies; the others where along the segment it begins and pauses, in
/// turns.
struct Vertex {
  AcGePoint3d point;
  AcGeVector3d direction;
  AcGeVector3d miter;
  std::vector<std::vector<double>> elements;

  bool has(std::size_t element) const {
    return element < elements.size() && !elements[element].empty();
  }
  AcGePoint3d startOf(std::size_t element) const {
    return point + miter * elements[element].front();
  }
};

std::vector<Vertex> verticesOf(const TagList& tags, const TagRange& range) {
  std::vector<Vertex> vertices;
  const auto vectorAt = [&](std::size_t index, int code) {
    return tags.point(code, {index, range.last});
  };
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (!tags.isOwn(i)) {
      continue;
    }
    const int code = tags[i].code;
    if (code == kVertex) {
      vertices.push_back({vectorAt(i, code), {}, {}, {}});
    } else if (vertices.empty()) {
      continue;
    } else if (code == kDirection) {
      vertices.back().direction = vectorAt(i, code).asVector();
    } else if (code == kMiter) {
      vertices.back().miter = vectorAt(i, code).asVector();
    } else if (code == kParameterCount) {
      vertices.back().elements.emplace_back();
    } else if (code == kParameter && !vertices.back().elements.empty()) {
      vertices.back().elements.back().push_back(tags.doubleAt(i));
    }
  }
  return vertices;
}

}  // namespace

std::vector<std::pair<AcGePoint3d, AcGePoint3d>> multilineElements(const AcDbObjectId& id) {
  std::vector<std::pair<AcGePoint3d, AcGePoint3d>> lines;
  try {
    const AcDbStub* const stub = id.isValid() ? static_cast<AcDbStub*>(id) : nullptr;
    if (!stub || DatabaseImpl::of(*stub).kindOf(*stub) != "MLINE") {
      return lines;
    }
    const TagList tags = DatabaseImpl::of(*stub).tagsOf(*stub);
    const TagRange range = tags.subclass("AcDbMline");
    const std::vector<Vertex> vertices = verticesOf(tags, range);
    const bool isClosed = (tags.integer(kFlags, range, 0) & kClosed) != 0;
    const std::size_t segments = vertices.size() < 2 ? 0 : vertices.size() - (isClosed ? 0U : 1U);
    for (std::size_t i = 0; i < segments; ++i) {
      const Vertex& from = vertices[i];
      const Vertex& to = vertices[(i + 1) % vertices.size()];
      for (std::size_t element = 0; element < from.elements.size(); ++element) {
        if (!from.has(element) || !to.has(element)) {
          continue;
        }
        const std::vector<double>& parameters = from.elements[element];
        const AcGePoint3d start = from.startOf(element);
        const AcGePoint3d end = to.startOf(element);
        if (parameters.size() <= 2) {
          lines.emplace_back(start, end);
          continue;
        }
        for (std::size_t on = 1; on < parameters.size(); on += 2) {
          const bool isLast = on + 1 >= parameters.size();
          lines.emplace_back(start + from.direction * parameters[on],
                             isLast ? end : start + from.direction * parameters[on + 1]);
        }
      }
    }
  } catch (...) {
    statusOfException();
    lines.clear();
  }
  return lines;
}

}  // namespace quoin::db
