#include "commands/picture/DrawList.h"

#include <algorithm>
#include <cmath>

#include "dbents.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr std::size_t kArcNumbers = 8;

bool isFinite(const AcGePoint3d& point) {
  return std::isfinite(point.x) && std::isfinite(point.y);
}
bool isFinite(const AcGeVector3d& vector) {
  return std::isfinite(vector.x) && std::isfinite(vector.y);
}

std::size_t hashOf(const DrawList::Look& look) {
  std::size_t hash = 1469598103934665603ULL;
  const auto mix = [&](std::size_t value) { hash = (hash ^ value) * 1099511628211ULL; };
  for (const unsigned char part : {look.color.red, look.color.green, look.color.blue}) {
    mix(part);
  }
  mix(look.color.isForeground ? 1U : 0U);
  mix(std::hash<float>()(look.lineWeight));
  mix(std::hash<float>()(look.opacity));
  mix(static_cast<std::size_t>(look.layer.asOldId()));
  for (const double dash : look.dashes) {
    mix(std::hash<double>()(dash));
  }
  return hash;
}

bool isSameColor(const hostx::DrawColor& a, const hostx::DrawColor& b) {
  return a.red == b.red && a.green == b.green && a.blue == b.blue &&
         a.isForeground == b.isForeground;
}

}  // namespace

Box boxOfArc(const double* numbers) {
  const auto at = [&](double angle) {
    return AcGePoint2d(numbers[0] + numbers[2] * std::cos(angle) + numbers[4] * std::sin(angle),
                       numbers[1] + numbers[3] * std::cos(angle) + numbers[5] * std::sin(angle));
  };
  const double start = numbers[6];
  const double sweep = numbers[7];
  Box box;
  box.add(at(start));
  box.add(at(start + sweep));
  // Where x and y turn, a half turn apart each.
  for (const double turn :
       {std::atan2(numbers[4], numbers[2]), std::atan2(numbers[5], numbers[3])}) {
    const double low = std::min(start, start + sweep);
    const double high = std::max(start, start + sweep);
    double angle = turn + kPi * std::ceil((low - turn) / kPi);
    for (int i = 0; i < 2 && angle <= high; ++i, angle += kPi) {
      box.add(at(angle));
    }
  }
  return box;
}

bool DrawList::Look::operator==(const Look& other) const {
  return isSameColor(color, other.color) && lineWeight == other.lineWeight &&
         opacity == other.opacity && layer == other.layer && dashes == other.dashes;
}

AcGePoint2d DrawList::Text::start() const {
  return position - along * (width * alongShare) - up * upShare;
}

Box DrawList::Text::box() const {
  // Of the height of capitals: how far g hangs down, and accents stand up.
  constexpr double kBelow = 0.3;
  constexpr double kAbove = 1.2;
  const AcGePoint2d from = start();
  Box box;
  for (const double x : {0.0, width}) {
    for (const double y : {-kBelow, kAbove}) {
      box.add(from + along * x + up * y);
    }
  }
  return box;
}

bool DrawList::Reader::next() {
  if (m_item == m_list.m_items.size()) {
    return false;
  }
  m_verb += m_path.verbCount;
  for (std::size_t i = 0; i < m_path.verbCount; ++i) {
    m_number += m_path.verbs[i] == Verb::Arc ? kArcNumbers : m_path.verbs[i] == Verb::Close ? 0 : 2;
  }
  const Item& item = m_list.m_items[m_item++];
  m_path = {m_list.m_verbs.data() + m_verb, item.verbs(), m_list.m_numbers.data() + m_number};
  m_text += item.kind() == Kind::Text ? 1 : 0;
  m_image += item.kind() == Kind::Image ? 1 : 0;
  return true;
}

void DrawList::setLayers(std::set<AcDbObjectId> layers) {
  m_layers = std::move(layers);
  m_isByLayer = true;
}

bool DrawList::beginEntity(const AcDbObjectId& entity) {
  if (m_takesEntity && !m_takesEntity(entity)) {
    return false;
  }
  if (m_isByLayer) {
    // What is wiped has no look; it counts to the entity's own layer.
    const AcDbObjectPointer<AcDbEntity> opened(entity, AcDb::kForRead);
    m_isWipeTaken = opened.openStatus() == Acad::eOk && m_layers.count(opened->layerId()) != 0;
  }
  return true;
}

bool DrawList::takes(const hostx::DrawLook& look) const {
  return !m_isByLayer || m_layers.count(look.layer) != 0;
}

std::uint32_t DrawList::lookIndex(const hostx::DrawLook& look) {
  if (!m_looks.empty()) {
    const Look& last = m_looks[m_lastLook];
    if (last.layer == look.layer && isSameColor(last.color, look.color) &&
        last.lineWeight == static_cast<float>(look.lineWeight) &&
        last.opacity == static_cast<float>(look.opacity) && last.dashes == look.dashes) {
      return m_lastLook;
    }
  }
  Look made{look.color, static_cast<float>(look.lineWeight), static_cast<float>(look.opacity),
            look.dashes, look.layer};
  const std::size_t hash = hashOf(made);
  const auto [first, last] = m_lookOfHash.equal_range(hash);
  for (auto known = first; known != last; ++known) {
    if (m_looks[known->second] == made) {
      return m_lastLook = known->second;
    }
  }
  m_lastLook = static_cast<std::uint32_t>(m_looks.size());
  m_lookOfHash.emplace(hash, m_lastLook);
  m_looks.push_back(std::move(made));
  return m_lastLook;
}

void DrawList::addPoint(Verb verb, double x, double y) {
  m_verbs.push_back(verb);
  m_numbers.push_back(x);
  m_numbers.push_back(y);
}

void DrawList::addPath(const hostx::DrawPath& path) {
  if (!isFinite(path.start)) {
    return;
  }
  addPoint(Verb::Move, path.start.x, path.start.y);
  for (const hostx::DrawPiece& piece : path.pieces) {
    if (piece.kind == hostx::DrawPiece::Kind::Line) {
      if (isFinite(piece.end)) {
        addPoint(Verb::Line, piece.end.x, piece.end.y);
      }
    } else if (isFinite(piece.center) && isFinite(piece.u) && isFinite(piece.v) &&
               std::isfinite(piece.start) && std::isfinite(piece.sweep)) {
      m_verbs.push_back(Verb::Arc);
      // More than a turn shows nothing more.
      const double sweep = std::clamp(piece.sweep, -2.0 * kPi, 2.0 * kPi);
      for (const double number : {piece.center.x, piece.center.y, piece.u.x, piece.u.y, piece.v.x,
                                  piece.v.y, std::fmod(piece.start, 2.0 * kPi), sweep}) {
        m_numbers.push_back(number);
      }
    }
  }
  if (path.isClosed) {
    m_verbs.push_back(Verb::Close);
  }
}

DrawList::PathView DrawList::viewFrom(std::size_t firstVerb, std::size_t firstNumber) const {
  return {m_verbs.data() + firstVerb, m_verbs.size() - firstVerb, m_numbers.data() + firstNumber};
}

void DrawList::addItem(Kind kind, std::uint32_t look, std::size_t firstVerb) {
  const std::size_t verbs = m_verbs.size() - firstVerb;
  m_items.push_back({look, static_cast<std::uint32_t>(verbs << Item::kKindBits) |
                               static_cast<std::uint32_t>(kind)});
}

void DrawList::stroke(const hostx::DrawPath& path, const hostx::DrawLook& look) {
  const std::size_t firstVerb = m_verbs.size();
  const std::size_t firstNumber = m_numbers.size();
  if (takes(look)) {
    addPath(path);
  }
  if (m_verbs.size() > firstVerb) {
    addItem(Kind::Stroke, lookIndex(look), firstVerb);
    addExtents(boxOf(viewFrom(firstVerb, firstNumber)));
  }
}

void DrawList::fill(const std::vector<hostx::DrawPath>& paths, const hostx::DrawLook& look) {
  const std::size_t firstVerb = m_verbs.size();
  const std::size_t firstNumber = m_numbers.size();
  if (takes(look)) {
    for (const hostx::DrawPath& path : paths) {
      addPath(path);
    }
  }
  if (m_verbs.size() > firstVerb) {
    addItem(Kind::Fill, lookIndex(look), firstVerb);
    addExtents(boxOf(viewFrom(firstVerb, firstNumber)));
  }
}

void DrawList::wipe(const hostx::DrawPath& path) {
  const std::size_t firstVerb = m_verbs.size();
  if (m_isWipeTaken) {
    addPath(path);
  }
  if (m_verbs.size() > firstVerb) {
    addItem(Kind::Wipe, lookIndex({}), firstVerb);
  }
}

void DrawList::text(const hostx::DrawText& text, const hostx::DrawLook& look) {
  const bool isDrawable = isFinite(text.position) && isFinite(text.along) && isFinite(text.up) &&
                          std::isfinite(text.width) && !text.text.empty();
  if (!isDrawable || !takes(look)) {
    return;
  }
  Text made;
  made.text = os::toUtf8(text.text);
  made.position = {text.position.x, text.position.y};
  made.along = {text.along.x, text.along.y};
  made.up = {text.up.x, text.up.y};
  made.alongShare = static_cast<float>(text.alongShare);
  made.upShare = static_cast<float>(text.upShare);
  made.width = text.width;
  made.flags = static_cast<std::uint8_t>(
      (text.isBold ? Text::kBold : 0) | (text.isItalic ? Text::kItalic : 0) |
      (text.isUnderlined ? Text::kUnderlined : 0) | (text.isOverlined ? Text::kOverlined : 0) |
      (text.isStruckThrough ? Text::kStruckThrough : 0));
  const auto [font, isNew] =
      m_fontOf.emplace(text.font, static_cast<std::uint32_t>(m_fonts.size()));
  if (isNew) {
    m_fonts.push_back(text.font);
  }
  made.font = font->second;
  addExtents(made.box());
  m_texts.push_back(std::move(made));
  addItem(Kind::Text, lookIndex(look), m_verbs.size());
}

void DrawList::image(const hostx::DrawImage& image, const hostx::DrawLook& look) {
  if (!isFinite(image.origin) || !isFinite(image.u) || !isFinite(image.v) || !takes(look)) {
    return;
  }
  Image made;
  made.path = os::toUtf8(image.path);
  made.origin = {image.origin.x, image.origin.y};
  made.u = {image.u.x, image.u.y};
  made.v = {image.v.x, image.v.y};
  for (const AcGePoint3d& corner : image.clip) {
    if (isFinite(corner)) {
      made.clip.emplace_back(corner.x, corner.y);
    }
  }
  made.isClipped = made.clip.size() >= 3;
  if (!made.isClipped) {
    made.clip = {made.origin, made.origin + made.u, made.origin + made.u + made.v,
                 made.origin + made.v};
  }
  Box box;
  for (const AcGePoint2d& corner : made.clip) {
    box.add(corner);
  }
  addExtents(box);
  m_images.push_back(std::move(made));
  addItem(Kind::Image, lookIndex(look), m_verbs.size());
}

void DrawList::beginClip(const hostx::DrawPath& path) {
  const std::size_t firstVerb = m_verbs.size();
  const std::size_t firstNumber = m_numbers.size();
  addPath(path);
  addItem(Kind::BeginClip, lookIndex({}), firstVerb);
  Box box = boxOf(viewFrom(firstVerb, firstNumber));
  if (!m_clips.empty()) {
    const Box& outer = m_clips.back();
    box = {std::max(box.minX, outer.minX), std::max(box.minY, outer.minY),
           std::min(box.maxX, outer.maxX), std::min(box.maxY, outer.maxY)};
  }
  m_clips.push_back(box);
}

void DrawList::endClip() {
  if (!m_clips.empty()) {
    m_clips.pop_back();
    addItem(Kind::EndClip, lookIndex({}), m_verbs.size());
  }
}

void DrawList::addExtents(const Box& box) {
  if (m_clips.empty()) {
    m_extents.add(box);
  } else if (m_clips.back().touches(box)) {
    const Box& clip = m_clips.back();
    m_extents.add(Box{std::max(box.minX, clip.minX), std::max(box.minY, clip.minY),
                      std::min(box.maxX, clip.maxX), std::min(box.maxY, clip.maxY)});
  }
}

Box DrawList::boxOf(const PathView& path) {
  Box box;
  const double* numbers = path.numbers;
  for (std::size_t i = 0; i < path.verbCount; ++i) {
    if (path.verbs[i] == Verb::Arc) {
      box.add(boxOfArc(numbers));
      numbers += kArcNumbers;
    } else if (path.verbs[i] != Verb::Close) {
      box.add(numbers[0], numbers[1]);
      numbers += 2;
    }
  }
  return box;
}

std::map<std::string, std::size_t> DrawList::imagePaths() const {
  std::map<std::string, std::size_t> paths;
  for (const Image& image : m_images) {
    ++paths[image.path];
  }
  return paths;
}

std::size_t DrawList::countIn(const Box& box) const {
  std::size_t count = 0;
  for (Reader reader(*this); reader.next();) {
    Box own;
    if (reader.kind() == Kind::Text) {
      own = reader.text().box();
    } else if (reader.kind() == Kind::Image) {
      for (const AcGePoint2d& corner : reader.image().clip) {
        own.add(corner);
      }
    } else {
      own = boxOf(reader.path());
    }
    count += !own.isEmpty() && box.touches(own) ? 1 : 0;
  }
  return count;
}

}  // namespace quoin::commands
