#include "commands/picture/SheetPath.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quoin::commands {

namespace {

constexpr double kPi = 3.14159265358979323846;
/// How far outside the page paths are drawn as they are; libraries count in small numbers.
constexpr double kNearReach = 20'000.0;  // points
/// How far a curve may be from the true one.
constexpr double kTolerance = 0.02;  // points
/// The error of a quarter of a unit circle as one cubic curve; it falls with the sixth power of
/// the angle.
constexpr double kQuarterError = 2.73e-4;
constexpr int kMostHalvings = 40;

std::size_t numbersOf(DrawList::Verb verb) {
  return verb == DrawList::Verb::Arc ? 8 : verb == DrawList::Verb::Close ? 0 : 2;
}

}  // namespace

SheetPath::SheetPath(Canvas& canvas, const SheetView& view, double apart)
    : m_canvas(canvas), m_view(view), m_apart(apart), m_near(view.clip.grownBy(kNearReach)) {}

Box SheetPath::onSheet(const Box& box) const {
  return {m_view.x(box.minX), m_view.y(box.maxY), m_view.x(box.maxX), m_view.y(box.minY)};
}

void SheetPath::lineTo(double x, double y) {
  m_at = {x, y};
  if (std::fabs(x - m_drawn.x) >= m_apart || std::fabs(y - m_drawn.y) >= m_apart) {
    m_canvas.lineTo(x, y);
    m_drawn = m_at;
  }
}

void SheetPath::addArc(const double* numbers) {
  const double scale = m_view.scale;
  const Point center{m_view.x(numbers[0]), m_view.y(numbers[1])};
  const Point u{numbers[2] * scale, -numbers[3] * scale};
  const Point v{numbers[4] * scale, -numbers[5] * scale};
  const double radius = std::max(std::hypot(u.x, u.y), std::hypot(v.x, v.y));
  const double share = std::pow(kTolerance / (kQuarterError * std::max(radius, 1e-3)), 1.0 / 6.0);
  const double step = 0.5 * kPi * std::min(1.0, share);
  const double sweep = numbers[7];
  const int pieces = std::max(1, static_cast<int>(std::ceil(std::fabs(sweep) / step - 1e-9)));
  const double turn = sweep / pieces;
  const double handle = 4.0 / 3.0 * std::tan(0.25 * turn);
  const auto at = [&](double cosine, double sine) {
    return Point{center.x + u.x * cosine + v.x * sine, center.y + u.y * cosine + v.y * sine};
  };
  double cosine = std::cos(numbers[6]);
  double sine = std::sin(numbers[6]);
  const Point first = at(cosine, sine);
  // Where the path has come to and where its arc begins are one point but for rounding.
  if (std::hypot(first.x - m_drawn.x, first.y - m_drawn.y) > kTolerance) {
    m_canvas.lineTo(first.x, first.y);
  }
  for (int i = 1; i <= pieces; ++i) {
    const double angle = numbers[6] + turn * i;
    const double nextCosine = std::cos(angle);
    const double nextSine = std::sin(angle);
    const Point a = at(cosine - handle * sine, sine + handle * cosine);
    const Point b = at(nextCosine + handle * nextSine, nextSine - handle * nextCosine);
    m_at = at(nextCosine, nextSine);
    m_canvas.curveTo(a.x, a.y, b.x, b.y, m_at.x, m_at.y);
    cosine = nextCosine;
    sine = nextSine;
  }
  m_drawn = m_at;
}

std::size_t SheetPath::draw(const DrawList::PathView& path) {
  const double* numbers = path.numbers;
  const auto finish = [&] {
    // The last point counts, near as it may be; and a dot is a line to itself.
    if (m_at.x != m_drawn.x || m_at.y != m_drawn.y) {
      m_canvas.lineTo(m_at.x, m_at.y);
      m_drawn = m_at;
    }
  };
  for (std::size_t i = 0; i < path.verbCount; ++i) {
    switch (path.verbs[i]) {
      case DrawList::Verb::Move: {
        finish();
        m_at = m_drawn = {m_view.x(numbers[0]), m_view.y(numbers[1])};
        m_canvas.moveTo(m_at.x, m_at.y);
        const bool isDot = i + 1 == path.verbCount || path.verbs[i + 1] == DrawList::Verb::Move;
        if (isDot) {
          m_canvas.lineTo(m_at.x, m_at.y);
        }
        break;
      }
      case DrawList::Verb::Line:
        lineTo(m_view.x(numbers[0]), m_view.y(numbers[1]));
        break;
      case DrawList::Verb::Arc:
        addArc(numbers);
        break;
      case DrawList::Verb::Close:
        finish();
        m_canvas.closePath();
        break;
    }
    numbers += numbersOf(path.verbs[i]);
  }
  finish();
  return path.verbCount;
}

SheetPath::Point SheetPath::arcPoint(const double* numbers, double angle) const {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {m_view.x(numbers[0] + numbers[2] * cosine + numbers[4] * sine),
          m_view.y(numbers[1] + numbers[3] * cosine + numbers[5] * sine)};
}

void SheetPath::addChords(Course& course, const double* numbers, double from, double to,
                          int depth) const {
  std::array<double, 8> part;
  std::copy(numbers, numbers + 8, part.begin());
  part[6] = from;
  part[7] = to - from;
  const Point middle = arcPoint(numbers, 0.5 * (from + to));
  const Point end = arcPoint(numbers, to);
  const Point chord{0.5 * (course.back().x + end.x), 0.5 * (course.back().y + end.y)};
  const bool isFine = std::fabs(to - from) < 0.5 * kPi &&
                      std::hypot(middle.x - chord.x, middle.y - chord.y) < 5.0 * kTolerance;
  if (isFine || depth == 0 || !m_view.clip.grownBy(100.0).touches(onSheet(boxOfArc(part.data())))) {
    course.push_back(end);
    return;
  }
  const double half = 0.5 * (from + to);
  addChords(course, numbers, from, half, depth - 1);
  addChords(course, numbers, half, to, depth - 1);
}

std::vector<SheetPath::Course> SheetPath::coursesOf(const DrawList::PathView& path) const {
  std::vector<Course> courses;
  const double* numbers = path.numbers;
  for (std::size_t i = 0; i < path.verbCount; ++i) {
    switch (path.verbs[i]) {
      case DrawList::Verb::Move:
        courses.push_back({{m_view.x(numbers[0]), m_view.y(numbers[1])}});
        break;
      case DrawList::Verb::Line:
        courses.back().push_back({m_view.x(numbers[0]), m_view.y(numbers[1])});
        break;
      case DrawList::Verb::Arc:
        addChords(courses.back(), numbers, numbers[6], numbers[6] + numbers[7], kMostHalvings);
        break;
      case DrawList::Verb::Close:
        courses.back().push_back(courses.back().front());
        break;
    }
    numbers += numbersOf(path.verbs[i]);
  }
  for (Course& course : courses) {
    std::erase_if(course, [](const Point& point) {
      return !std::isfinite(point.x) || !std::isfinite(point.y);
    });
  }
  return courses;
}

void SheetPath::strokeFar(const DrawList::PathView& path, const Pen& pen) {
  double period = 0.0;
  for (const double dash : pen.dashes) {
    period += dash;
  }
  for (const Course& course : coursesOf(path)) {
    double walked = 0.0;
    for (std::size_t i = 1; i < course.size(); ++i) {
      const Point& from = course[i - 1];
      const Point& to = course[i];
      const double dx = to.x - from.x;
      const double dy = to.y - from.y;
      const double length = std::hypot(dx, dy);
      // The part within the box, by its shares of the segment.
      double first = 0.0;
      double last = 1.0;
      const auto keep = [&](double begin, double step, double low, double high) {
        if (step == 0.0) {
          last = begin < low || begin > high ? -1.0 : last;
          return;
        }
        const double a = (low - begin) / step;
        const double b = (high - begin) / step;
        first = std::max(first, std::min(a, b));
        last = std::min(last, std::max(a, b));
      };
      keep(from.x, dx, m_near.minX, m_near.maxX);
      keep(from.y, dy, m_near.minY, m_near.maxY);
      if (first <= last && std::isfinite(length)) {
        m_canvas.moveTo(from.x + dx * first, from.y + dy * first);
        m_canvas.lineTo(from.x + dx * last, from.y + dy * last);
        Pen own = pen;
        own.dashStart =
            period > 0.0 ? std::fmod(pen.dashStart + walked + length * first, period) : 0.0;
        m_canvas.stroke(own);
      }
      walked += length;
    }
  }
}

void SheetPath::drawFarFill(const DrawList::PathView& path) {
  for (Course course : coursesOf(path)) {
    // One side of the box after another.
    for (int side = 0; side < 4 && !course.empty(); ++side) {
      const auto depth = [&](const Point& point) {
        return side == 0   ? point.x - m_near.minX
               : side == 1 ? m_near.maxX - point.x
               : side == 2 ? point.y - m_near.minY
                           : m_near.maxY - point.y;
      };
      Course kept;
      for (std::size_t i = 0; i < course.size(); ++i) {
        const Point& from = course[i == 0 ? course.size() - 1 : i - 1];
        const Point& to = course[i];
        const double a = depth(from);
        const double b = depth(to);
        if ((a < 0.0) != (b < 0.0)) {
          const double share = a / (a - b);
          kept.push_back({from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share});
        }
        if (b >= 0.0) {
          kept.push_back(to);
        }
      }
      course = std::move(kept);
    }
    for (std::size_t i = 0; i < course.size(); ++i) {
      i == 0 ? m_canvas.moveTo(course[i].x, course[i].y)
             : m_canvas.lineTo(course[i].x, course[i].y);
    }
    if (!course.empty()) {
      m_canvas.closePath();
    }
  }
}

}  // namespace quoin::commands
