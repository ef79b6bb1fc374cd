// AcArray: the host's growable array, a plain value type. Appending one element to a full
// array grows it by the larger of its growth step and its length (so appends cost constant
// time on average); appending an array makes the room exactly as long as needed. Elements
// must be default-constructible and copyable: the room beyond the length holds default ones.
#pragma once

#include <algorithm>
#include <cassert>
#include <memory>
#include <utility>

template <class T>
class AcArray {
 public:
  /// An empty array with room for `initPhysicalLength` elements and this growth step.
  explicit AcArray(int initPhysicalLength = 0, int initGrowLength = 8)
      : m_growLength(std::max(initGrowLength, 1)) {
    setPhysicalLength(initPhysicalLength);
  }
  AcArray(const AcArray& other) : m_growLength(other.m_growLength) {
    setPhysicalLength(other.m_logicalLength);
    std::copy(other.begin(), other.end(), m_items.get());
    m_logicalLength = other.m_logicalLength;
  }
  AcArray(AcArray&& other) noexcept { swap(other); }
  AcArray& operator=(AcArray other) noexcept {
    swap(other);
    return *this;
  }
  ~AcArray() = default;

  /// Appends one element and returns its index. `item` may be an element of this array.
  int append(const T& item) {
    T copy(item);
    if (m_logicalLength == m_physicalLength) {
      setPhysicalLength(m_physicalLength + std::max(m_growLength, m_logicalLength));
    }
    m_items[static_cast<std::size_t>(m_logicalLength)] = std::move(copy);
    return m_logicalLength++;
  }
  /// Appends all elements of `other` in order; if that needs more room, the physical length
  /// becomes exactly the new length. `other` may be this array.
  AcArray& append(const AcArray& other) {
    const int added = other.m_logicalLength;
    const int total = m_logicalLength + added;
    if (total > m_physicalLength) {
      setPhysicalLength(total);
    }
    std::copy_n(other.m_items.get(), added, m_items.get() + m_logicalLength);
    m_logicalLength = total;
    return *this;
  }

  /// Element access; the index must be inside [0, length()).
  T& operator[](int index) { return at(index); }
  const T& operator[](int index) const { return at(index); }
  T& at(int index) {
    assert(isValid(index));
    return m_items[static_cast<std::size_t>(index)];
  }
  const T& at(int index) const {
    assert(isValid(index));
    return m_items[static_cast<std::size_t>(index)];
  }
  AcArray& setAt(int index, const T& value) {
    at(index) = value;
    return *this;
  }
  AcArray& setAll(const T& value) {
    std::fill(begin(), end(), T(value));
    return *this;
  }
  T& first() { return at(0); }
  const T& first() const { return at(0); }
  T& last() { return at(m_logicalLength - 1); }
  const T& last() const { return at(m_logicalLength - 1); }

  /// Inserts before `index` (0 to length()).
  AcArray& insertAt(int index, const T& item) {
    append(item);
    std::rotate(begin() + index, end() - 1, end());
    return *this;
  }
  AcArray& removeAt(int index) {
    assert(isValid(index));
    std::move(begin() + index + 1, end(), begin() + index);
    m_items[static_cast<std::size_t>(--m_logicalLength)] = T();
    return *this;
  }
  /// Removes the first element equal to `item`; false if there is none.
  bool remove(const T& item, int start = 0) {
    const int index = findFrom(item, start);
    if (index < 0) {
      return false;
    }
    removeAt(index);
    return true;
  }
  AcArray& removeFirst() { return removeAt(0); }
  AcArray& removeLast() { return removeAt(m_logicalLength - 1); }
  AcArray& removeAll() { return setLogicalLength(0); }
  AcArray& removeSubArray(int first, int last) {
    assert(isValid(first) && isValid(last) && first <= last);
    std::move(begin() + last + 1, end(), begin() + first);
    return setLogicalLength(m_logicalLength - (last - first + 1));
  }

  bool contains(const T& item, int start = 0) const { return findFrom(item, start) >= 0; }
  bool find(const T& item, int& index, int start = 0) const {
    const int found = findFrom(item, start);
    if (found >= 0) {
      index = found;
    }
    return found >= 0;
  }
  /// Index of the first equal element at or behind `start`, -1 if there is none.
  int findFrom(const T& item, int start = 0) const {
    for (int i = start; i < m_logicalLength; ++i) {
      if (at(i) == item) {
        return i;
      }
    }
    return -1;
  }

  bool isEmpty() const { return m_logicalLength == 0; }
  int length() const { return m_logicalLength; }
  int logicalLength() const { return m_logicalLength; }
  int physicalLength() const { return m_physicalLength; }
  int growLength() const { return m_growLength; }
  /// The step must be positive; anything else leaves it as it is.
  AcArray& setGrowLength(int growLength) {
    if (growLength > 0) {
      m_growLength = growLength;
    }
    return *this;
  }
  /// Shortens the array or fills it up with default elements.
  AcArray& setLogicalLength(int length) {
    length = std::max(length, 0);
    if (length > m_physicalLength) {
      setPhysicalLength(m_physicalLength + std::max(m_growLength, length - m_physicalLength));
    }
    if (length < m_logicalLength) {
      std::fill(begin() + length, end(), T());
    }
    m_logicalLength = length;
    return *this;
  }
  /// Sets the room; a room below the length cuts the array.
  AcArray& setPhysicalLength(int length) {
    length = std::max(length, 0);
    if (length == m_physicalLength) {
      return *this;
    }
    std::unique_ptr<T[]> items(length > 0 ? std::make_unique<T[]>(static_cast<std::size_t>(length))
                                          : nullptr);
    m_logicalLength = std::min(m_logicalLength, length);
    std::move(m_items.get(), m_items.get() + m_logicalLength, items.get());
    m_items = std::move(items);
    m_physicalLength = length;
    return *this;
  }

  AcArray& reverse() {
    std::reverse(begin(), end());
    return *this;
  }
  AcArray& swap(int i, int j) {
    std::swap(at(i), at(j));
    return *this;
  }
  void swap(AcArray& other) noexcept {
    std::swap(m_items, other.m_items);
    std::swap(m_logicalLength, other.m_logicalLength);
    std::swap(m_physicalLength, other.m_physicalLength);
    std::swap(m_growLength, other.m_growLength);
  }

  bool operator==(const AcArray& other) const {
    return std::equal(begin(), end(), other.begin(), other.end());
  }

  T* asArrayPtr() { return m_items.get(); }
  const T* asArrayPtr() const { return m_items.get(); }
  T* begin() { return m_items.get(); }
  T* end() { return m_items.get() + m_logicalLength; }
  const T* begin() const { return m_items.get(); }
  const T* end() const { return m_items.get() + m_logicalLength; }

 private:
  bool isValid(int index) const { return index >= 0 && index < m_logicalLength; }

  std::unique_ptr<T[]> m_items;
  int m_logicalLength = 0;
  int m_physicalLength = 0;
  int m_growLength = 8;
};
