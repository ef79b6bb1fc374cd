#include "acarray.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

AcArray<int> arrayOf(std::initializer_list<int> items) {
  AcArray<int> array;
  for (int item : items) {
    array.append(item);
  }
  return array;
}

TEST(Array, DefaultIsEmptyWithGrowthStepEight) {
  const AcArray<int> array;
  EXPECT_TRUE(array.isEmpty());
  EXPECT_EQ(array.length(), 0);
  EXPECT_EQ(array.physicalLength(), 0);
  EXPECT_EQ(array.growLength(), 8);
}

TEST(Array, AppendReturnsTheIndexAndGrowsByTheStep) {
  AcArray<int> array(0, 3);
  EXPECT_EQ(array.append(5), 0);
  EXPECT_EQ(array.physicalLength(), 3);
  EXPECT_EQ(array.append(6), 1);
  EXPECT_EQ(array.append(7), 2);
  EXPECT_EQ(array.append(8), 3);
  EXPECT_EQ(array.physicalLength(), 6);
  EXPECT_EQ(array.last(), 8);
  EXPECT_EQ(array.first(), 5);
}

TEST(Array, AppendsGrowTheRoomSeldom) {
  AcArray<int> array;
  int growths = 0;
  for (int i = 0; i < 100000; ++i) {
    const int room = array.physicalLength();
    array.append(i);
    growths += array.physicalLength() != room ? 1 : 0;
  }
  EXPECT_EQ(growths, 15);  // 8, 16, 32, ... 131072
  EXPECT_EQ(array[99999], 99999);
}

TEST(Array, AppendingAnArrayMakesTheRoomExactlyTheNewLength) {
  AcArray<int> array = arrayOf({1, 2, 3});
  array.setPhysicalLength(3);
  array.append(arrayOf({4, 5}));
  EXPECT_EQ(array.length(), 5);
  EXPECT_EQ(array.physicalLength(), 5);
  EXPECT_EQ(array, arrayOf({1, 2, 3, 4, 5}));
}

TEST(Array, AppendingAnArrayThatFitsKeepsTheRoom) {
  AcArray<int> array(20);
  array.append(arrayOf({4, 5}));
  EXPECT_EQ(array.physicalLength(), 20);
}

TEST(Array, AppendingItselfDoublesIt) {
  AcArray<int> array = arrayOf({1, 2});
  array.append(array);
  EXPECT_EQ(array, arrayOf({1, 2, 1, 2}));
  array.setPhysicalLength(array.length());
  array.append(array[0]);
  EXPECT_EQ(array.last(), 1);
}

TEST(Array, CopiesAreDeep) {
  AcArray<std::string> array;
  array.append("wall");
  AcArray<std::string> copy(array);
  copy[0] = "door";
  EXPECT_EQ(array[0], "wall");
  array = copy;
  EXPECT_EQ(array[0], "door");
}

TEST(Array, InsertAndRemoveKeepTheOrderOfTheOthers) {
  AcArray<int> array = arrayOf({1, 2, 4});
  array.insertAt(2, 3);
  array.insertAt(0, 0);
  EXPECT_EQ(array, arrayOf({0, 1, 2, 3, 4}));
  array.removeAt(1);
  EXPECT_TRUE(array.remove(4));
  EXPECT_FALSE(array.remove(9));
  EXPECT_EQ(array, arrayOf({0, 2, 3}));
  array.removeFirst().removeLast();
  EXPECT_EQ(array, arrayOf({2}));
  array = arrayOf({0, 1, 2, 3, 4});
  array.removeSubArray(1, 3);
  EXPECT_EQ(array, arrayOf({0, 4}));
}

TEST(Array, FindTellsTheFirstEqualElementFromAStart) {
  const AcArray<int> array = arrayOf({5, 6, 5});
  int index = -7;
  EXPECT_TRUE(array.find(5, index, 1));
  EXPECT_EQ(index, 2);
  EXPECT_FALSE(array.find(9, index));
  EXPECT_EQ(index, 2);
  EXPECT_TRUE(array.contains(6));
  EXPECT_FALSE(array.contains(5, 3));
}

TEST(Array, LengthsCanBeSet) {
  AcArray<int> array = arrayOf({1, 2, 3});
  array.setLogicalLength(5);
  EXPECT_EQ(array, arrayOf({1, 2, 3, 0, 0}));
  array.setLogicalLength(2);
  EXPECT_EQ(array, arrayOf({1, 2}));
  array.setPhysicalLength(1);
  EXPECT_EQ(array, arrayOf({1}));
  array.removeAll();
  EXPECT_TRUE(array.isEmpty());
  array.setGrowLength(0);
  EXPECT_EQ(array.growLength(), 8);
}

TEST(Array, RemovedElementsAreReleased) {
  AcArray<std::shared_ptr<int>> array;
  const auto item = std::make_shared<int>(1);
  array.append(item);
  array.append(item);
  array.removeAt(0);
  EXPECT_EQ(item.use_count(), 2);
  array.removeAll();
  EXPECT_EQ(item.use_count(), 1);
}

TEST(Array, IteratesReversesAndSwaps) {
  AcArray<int> array = arrayOf({1, 2, 3});
  EXPECT_EQ(std::vector<int>(array.begin(), array.end()), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(array.reverse(), arrayOf({3, 2, 1}));
  EXPECT_EQ(array.swap(0, 2), arrayOf({1, 2, 3}));
  array.setAt(1, 9).setAll(4);
  EXPECT_EQ(array, arrayOf({4, 4, 4}));
}

}  // namespace
