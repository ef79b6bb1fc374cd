#include "rxobject.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "rxdict.h"

namespace {

class Animal : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(Animal);
};
class Dog : public Animal {
 public:
  ACRX_DECLARE_MEMBERS(Dog);
};
class Cat : public Animal {
 public:
  ACRX_DECLARE_MEMBERS(Cat);
};
ACRX_NO_CONS_DEFINE_MEMBERS(Animal, AcRxObject)
ACRX_CONS_DEFINE_MEMBERS(Dog, Animal)
ACRX_DXF_CONS_DEFINE_MEMBERS(Cat, Animal, L"CAT", L"Test")

TEST(RxObject, KnowsItsClassAndAllItsAncestors) {
  const Dog dog;
  EXPECT_EQ(dog.isA(), Dog::desc());
  EXPECT_STREQ(dog.isA()->name(), L"Dog");
  EXPECT_TRUE(dog.isKindOf(Dog::desc()));
  EXPECT_TRUE(dog.isKindOf(Animal::desc()));
  EXPECT_TRUE(dog.isKindOf(AcRxObject::desc()));
  EXPECT_FALSE(dog.isKindOf(Cat::desc()));
  EXPECT_FALSE(dog.isKindOf(nullptr));
  EXPECT_EQ(Dog::desc()->myParent(), Animal::desc());
  EXPECT_EQ(AcRxObject::desc()->myParent(), nullptr);
}

TEST(RxObject, CastAnswersNullForAnotherKind) {
  Dog dog;
  AcRxObject* const object = &dog;
  EXPECT_EQ(Dog::cast(object), &dog);
  EXPECT_EQ(Animal::cast(object), &dog);
  EXPECT_EQ(AcRxObject::cast(object), &dog);
  EXPECT_EQ(Cat::cast(object), nullptr);
  EXPECT_EQ(Dog::cast(nullptr), nullptr);
}

TEST(RxObject, WithoutOverridesItHasNoCopiesAndEqualsItselfAlone) {
  Dog first;
  const Dog second;
  EXPECT_EQ(first.clone(), nullptr);
  EXPECT_EQ(first.copyFrom(&second), Acad::eNotApplicable);
  EXPECT_TRUE(first.isEqualTo(&first));
  EXPECT_FALSE(first.isEqualTo(&second));
}

TEST(RxClass, MakesObjectsOfConcreteClassesOnly) {
  const std::unique_ptr<AcRxObject> made(Dog::desc()->create());
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->isA(), Dog::desc());
  EXPECT_EQ(Animal::desc()->create(), nullptr);
}

TEST(RxClass, IsFoundByNameAndByDrawingFileName) {
  Cat::rxInit();
  EXPECT_EQ(acrxFindClass(L"Cat"), Cat::desc());
  EXPECT_EQ(acrxFindClassByDxfName(L"CAT"), Cat::desc());
  EXPECT_STREQ(Cat::desc()->dxfName(), L"CAT");
  EXPECT_STREQ(Cat::desc()->appName(), L"Test");
  EXPECT_EQ(Dog::desc()->dxfName(), nullptr);
  EXPECT_EQ(acrxFindClass(L"Unicorn"), nullptr);
  EXPECT_EQ(acrxFindClass(nullptr), nullptr);
  EXPECT_EQ(acrxFindClassByDxfName(L"UNICORN"), nullptr);
  EXPECT_EQ(acrxFindClassByDxfName(nullptr), nullptr);
}

TEST(RxClass, AParentKnownByNameIsLinkedWhenTheHierarchyIsBuilt) {
  AcRxClass* const child = newAcRxClass(L"LateChild", L"LateParent");
  ASSERT_NE(child, nullptr);
  acrxBuildClassHierarchy();
  EXPECT_EQ(child->myParent(), nullptr) << "the parent is not registered yet";
  AcRxClass* const parent = newAcRxClass(L"LateParent", L"AcRxObject");
  AcRxObject::desc();
  acrxBuildClassHierarchy();
  EXPECT_EQ(child->myParent(), parent);
  EXPECT_TRUE(child->isDerivedFrom(AcRxObject::desc()));
  EXPECT_EQ(newAcRxClass(L"LateChild", L"AcRxObject"), nullptr) << "the name is taken";

  deleteAcRxClass(parent);
  EXPECT_EQ(acrxFindClass(L"LateParent"), parent) << "a class with children stays";
  deleteAcRxClass(child);
  deleteAcRxClass(parent);
  EXPECT_EQ(acrxFindClass(L"LateParent"), nullptr);
  deleteAcRxClass(nullptr);
}

TEST(RxClass, ADeletedClassIsRegisteredAnewAtTheNextUse) {
  class Scratch : public AcRxObject {};
  static std::atomic<AcRxClass*> slot{nullptr};
  AcRxClass* const first = acrxDefineClass(slot, {.name = L"Scratch"}, AcRxObject::desc());
  EXPECT_EQ(slot.load(), first);
  deleteAcRxClass(first);
  EXPECT_EQ(slot.load(), nullptr);
  AcRxClass* const second = acrxDefineClass(slot, {.name = L"Scratch"}, AcRxObject::desc());
  EXPECT_EQ(acrxFindClass(L"Scratch"), second);
  deleteAcRxClass(second);
}

TEST(RxClass, TwoClassesOfOneNameBothStayUsable) {
  static std::atomic<AcRxClass*> firstSlot{nullptr};
  static std::atomic<AcRxClass*> secondSlot{nullptr};
  AcRxClass* const first = acrxDefineClass(firstSlot, {.name = L"Twin"}, AcRxObject::desc());
  AcRxClass* const second = acrxDefineClass(secondSlot, {.name = L"Twin"}, AcRxObject::desc());
  EXPECT_NE(first, second);
  EXPECT_STREQ(first->name(), L"Twin");
  EXPECT_EQ(acrxFindClass(L"Twin"), second);
  deleteAcRxClass(second);
}

TEST(RxClass, ThreadsThatAskFirstGetOneDescriptor) {
  class Contested : public AcRxObject {};
  static std::atomic<AcRxClass*> slot{nullptr};
  std::vector<AcRxClass*> answers(8);
  std::vector<std::thread> threads;
  for (AcRxClass*& answer : answers) {
    threads.emplace_back(
        [&answer] { answer = acrxDefineClass(slot, {.name = L"Contested"}, AcRxObject::desc()); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (AcRxClass* const answer : answers) {
    EXPECT_EQ(answer, slot.load());
  }
  deleteAcRxClass(slot.load());
}

TEST(RxClass, DescriptorsAreObjectsThemselves) {
  EXPECT_EQ(AcRxClass::cast(Dog::desc()), Dog::desc());
  const Dog dog;
  EXPECT_EQ(AcRxClass::cast(&dog), nullptr);
  EXPECT_TRUE(AcRxClass::desc()->isDerivedFrom(AcRxObject::desc()));
}

TEST(RxDictionary, HoldsObjectsUnderNames) {
  AcRxDictionary dictionary;
  Dog dog;
  Cat cat;
  EXPECT_EQ(dictionary.at(L"pet"), nullptr);
  EXPECT_EQ(dictionary.atPut(L"pet", &dog), nullptr);
  EXPECT_EQ(dictionary.atPut(L"pet", &cat), &dog);
  EXPECT_EQ(dictionary.at(L"pet"), &cat);
  EXPECT_EQ(dictionary.at(L"PET"), nullptr);
  EXPECT_TRUE(dictionary.has(L"pet"));
  EXPECT_EQ(dictionary.numEntries(), 1U);
  EXPECT_EQ(dictionary.remove(L"pet"), &cat);
  EXPECT_EQ(dictionary.remove(L"pet"), nullptr);
  EXPECT_EQ(dictionary.at(nullptr), nullptr);
}

}  // namespace
