// A function object that gives entities the properties of the drawing entity which represents
// a node of the project's model. The platform must be up at the first use.
#pragma once

#include "afxext.h"

class AcDbEntity;
class IModelNode;

class AFX_EXT_CLASS CChangeEntityProperty {
 public:
  /// Owns:  nothing; the node must outlive the functor's use.
  CChangeEntityProperty(IModelNode* pModelNode);
  CChangeEntityProperty(const CChangeEntityProperty&) = default;
  CChangeEntityProperty& operator=(const CChangeEntityProperty& other);

  /// SetSecEntityProperties() with the functor's node.
  void operator()(AcDbEntity* pEnt);
  /// Gives an entity that is open for write, with its vertices or attributes, the layer,
  /// colour index, line weight, linetype and material of the entity mapped to the node. A true
  /// colour comes along as its index only.
  /// Fails: leaves the entity as it is for null arguments, and when the node's entity is not
  ///        there, erased or cannot be opened; a property that cannot be set is passed over.
  void SetSecEntityProperties(AcDbEntity* pEnt, IModelNode* pModelNode);

 private:
  IModelNode* m_pModelNode;
};
