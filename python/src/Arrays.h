// NumPy arrays as rows of points, and rows of points as NumPy arrays.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "gepnt2d.h"
#include "gepnt3d.h"

namespace quoin::python {

namespace py = pybind11;

/// An array for reading, of which every row has as many numbers. The package's Python side has made
/// it contiguous and looked for what is not finite. May be read and dropped without the
/// interpreter's lock.
template <class Number>
class Rows {
 public:
  using Array = py::array_t<Number, py::array::c_style | py::array::forcecast>;

  explicit Rows(const Array& array)
      : m_array(new Array(array),
                [](Array* held) {
                  const py::gil_scoped_acquire acquire;
                  delete held;
                }),
        m_data(array.data()),
        m_count(static_cast<std::size_t>(array.ndim() > 0 ? array.shape(0) : 0)),
        m_columns(static_cast<std::size_t>(array.ndim() > 1 ? array.shape(1) : 1)) {
    if (array.ndim() > 2) {
      throw py::value_error("an array of at most two dimensions is wanted");
    }
  }

  std::size_t count() const { return m_count; }
  std::size_t columns() const { return m_columns; }
  const Number* row(std::size_t i) const { return m_data + i * m_columns; }
  Number operator[](std::size_t i) const { return *row(i); }

 private:
  std::shared_ptr<Array> m_array;
  const Number* m_data;
  std::size_t m_count;
  std::size_t m_columns;
};

/// Lines of four numbers in plan, or of six in space.
class Lines : public Rows<double> {
 public:
  explicit Lines(const Array& array) : Rows(array) {
    if (columns() != 4 && columns() != 6) {
      throw py::value_error("lines have four or six numbers each");
    }
  }

  bool isInSpace() const { return columns() == 6; }
  AcGePoint3d start(std::size_t i) const {
    const double* const at = row(i);
    return {at[0], at[1], isInSpace() ? at[2] : 0.0};
  }
  AcGePoint3d end(std::size_t i) const {
    const double* const at = row(i);
    return isInSpace() ? AcGePoint3d(at[3], at[4], at[5]) : AcGePoint3d(at[2], at[3], 0.0);
  }
};

/// An array that takes over the numbers, of rows with so many columns; 0 for a plain row.
template <class Number>
py::array_t<Number> toArray(std::vector<Number>&& numbers, std::size_t columns = 0) {
  auto* const held = new std::vector<Number>(std::move(numbers));
  const py::capsule owner(held,
                          [](void* vector) { delete static_cast<std::vector<Number>*>(vector); });
  std::vector<py::ssize_t> shape{static_cast<py::ssize_t>(held->size())};
  if (columns > 0) {
    shape = {static_cast<py::ssize_t>(held->size() / columns), static_cast<py::ssize_t>(columns)};
  }
  return py::array_t<Number>(shape, held->data(), owner);
}

/// Lines with the line that each comes from, to become arrays.
class FoundLines {
 public:
  explicit FoundLines(bool isInSpace) : m_isInSpace(isInSpace) {}

  void reserve(std::size_t count) {
    m_numbers.reserve(count * columns());
    m_source.reserve(count);
  }
  void add(const AcGePoint3d& start, const AcGePoint3d& end, std::size_t source) {
    add(start, end, static_cast<std::int64_t>(source));
  }
  /// -1 for a line that comes from none.
  void add(const AcGePoint3d& start, const AcGePoint3d& end, std::int64_t source) {
    if (m_isInSpace) {
      m_numbers.insert(m_numbers.end(), {start.x, start.y, start.z, end.x, end.y, end.z});
    } else {
      m_numbers.insert(m_numbers.end(), {start.x, start.y, end.x, end.y});
    }
    m_source.push_back(source);
  }

  std::size_t columns() const { return m_isInSpace ? 6 : 4; }
  py::array_t<double> lines() { return toArray(std::move(m_numbers), columns()); }
  py::array_t<std::int64_t> source() { return toArray(std::move(m_source)); }
  /// (lines, source)
  py::tuple arrays() { return py::make_tuple(lines(), source()); }

 private:
  bool m_isInSpace;
  std::vector<double> m_numbers;
  std::vector<std::int64_t> m_source;
};

}  // namespace quoin::python
